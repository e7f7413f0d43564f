#include <GenApi/EnumClasses.h>

#include <cstring>

namespace GenApi {

namespace {

template <class Enum>
struct Name {
    Enum value;
    const char* text;
};

template <class Enum, size_t N>
bool Lookup(const Name<Enum> (&names)[N], const gcstring& text, Enum* value) {
    if (!value)
        return false;
    for (const auto& name : names)
        if (std::strcmp(name.text, text.c_str()) == 0) {
            *value = name.value;
            return true;
        }
    return false;
}

template <class Enum, size_t N>
gcstring Lookup(const Name<Enum> (&names)[N], Enum value, const char* unknown) {
    for (const auto& name : names)
        if (name.value == value)
            return name.text;
    return unknown;
}

const Name<EAccessMode> kAccessModes[] = {
    {NI, "NI"}, {NA, "NA"}, {WO, "WO"}, {RO, "RO"}, {RW, "RW"}};
const Name<EVisibility> kVisibilities[] = {
    {Beginner, "Beginner"}, {Expert, "Expert"}, {Guru, "Guru"}, {Invisible, "Invisible"}};
const Name<ECachingMode> kCachingModes[] = {
    {NoCache, "NoCache"}, {WriteThrough, "WriteThrough"}, {WriteAround, "WriteAround"}};
const Name<ERepresentation> kRepresentations[] = {
    {Linear, "Linear"},         {Logarithmic, "Logarithmic"}, {Boolean, "Boolean"},
    {PureNumber, "PureNumber"}, {HexNumber, "HexNumber"},     {IPV4Address, "IPV4Address"},
    {MACAddress, "MACAddress"}};
const Name<EEndianess> kEndianesses[] = {{BigEndian, "BigEndian"}, {LittleEndian, "LittleEndian"}};
const Name<ESign> kSigns[] = {{Signed, "Signed"}, {Unsigned, "Unsigned"}};
const Name<ESlope> kSlopes[] = {{Increasing, "Increasing"},
                                {Decreasing, "Decreasing"},
                                {Varying, "Varying"},
                                {Automatic, "Automatic"}};
const Name<EDisplayNotation> kNotations[] = {
    {fnAutomatic, "Automatic"}, {fnFixed, "Fixed"}, {fnScientific, "Scientific"}};
const Name<ENameSpace> kNameSpaces[] = {{Custom, "Custom"}, {Standard, "Standard"}};
const Name<EYesNo> kYesNo[] = {{Yes, "Yes"}, {No, "No"}};
const Name<EInterfaceType> kInterfaces[] = {
    {intfIValue, "intfIValue"},         {intfIBase, "intfIBase"},
    {intfIInteger, "intfIInteger"},     {intfIBoolean, "intfIBoolean"},
    {intfICommand, "intfICommand"},     {intfIFloat, "intfIFloat"},
    {intfIString, "intfIString"},       {intfIRegister, "intfIRegister"},
    {intfICategory, "intfICategory"},   {intfIEnumeration, "intfIEnumeration"},
    {intfIEnumEntry, "intfIEnumEntry"}, {intfIPort, "intfIPort"}};
const Name<EIncMode> kIncModes[] = {{noIncrement, "noIncrement"},
                                    {fixedIncrement, "fixedIncrement"},
                                    {listIncrement, "listIncrement"}};

} // namespace

#define GENAPI_DEFINE_ENUM_CLASS(Class, Enum, table, unknown)                                      \
    bool Class::FromString(const gcstring& text, Enum* value) {                                    \
        return Lookup(table, text, value);                                                         \
    }                                                                                              \
    void Class::ToString(gcstring& text, Enum value) {                                             \
        text = Lookup(table, value, unknown);                                                      \
    }                                                                                              \
    gcstring Class::ToString(Enum value) {                                                         \
        return Lookup(table, value, unknown);                                                      \
    }

GENAPI_DEFINE_ENUM_CLASS(EAccessModeClass, EAccessMode, kAccessModes, "_UndefinedAccesMode")
GENAPI_DEFINE_ENUM_CLASS(EVisibilityClass, EVisibility, kVisibilities, "_UndefinedVisibility")
GENAPI_DEFINE_ENUM_CLASS(ECachingModeClass, ECachingMode, kCachingModes, "_UndefinedCachingMode")
GENAPI_DEFINE_ENUM_CLASS(ERepresentationClass, ERepresentation, kRepresentations,
                         "_UndefinedRepresentation")
GENAPI_DEFINE_ENUM_CLASS(EEndianessClass, EEndianess, kEndianesses, "_UndefinedEndian")
GENAPI_DEFINE_ENUM_CLASS(ESignClass, ESign, kSigns, "_UndefinedSign")
GENAPI_DEFINE_ENUM_CLASS(ESlopeClass, ESlope, kSlopes, "_UndefinedESlope")
GENAPI_DEFINE_ENUM_CLASS(EDisplayNotationClass, EDisplayNotation, kNotations,
                         "_UndefinedEDisplayNotation")
GENAPI_DEFINE_ENUM_CLASS(ENameSpaceClass, ENameSpace, kNameSpaces, "_UndefinedNameSpace")
GENAPI_DEFINE_ENUM_CLASS(EYesNoClass, EYesNo, kYesNo, "_UndefinedYesNo")
GENAPI_DEFINE_ENUM_CLASS(EInterfaceTypeClass, EInterfaceType, kInterfaces, "intfIUnknown")
GENAPI_DEFINE_ENUM_CLASS(EIncModeClass, EIncMode, kIncModes, "unknownIncrement")

#undef GENAPI_DEFINE_ENUM_CLASS

} // namespace GenApi
