// Conversions between the enumerations and their names.
#ifndef GENAPI_ENUMCLASSES_H
#define GENAPI_ENUMCLASSES_H

#include <GenApi/Types.h>

namespace GenApi {

#define GENAPI_DECLARE_ENUM_CLASS(Class, Enum)                                                     \
    class Class {                                                                                  \
    public:                                                                                        \
        static bool FromString(const gcstring& text, Enum* value);                                 \
        static void ToString(gcstring& text, Enum value);                                          \
        static gcstring ToString(Enum value);                                                      \
    }

GENAPI_DECLARE_ENUM_CLASS(EAccessModeClass, EAccessMode);
GENAPI_DECLARE_ENUM_CLASS(EVisibilityClass, EVisibility);
GENAPI_DECLARE_ENUM_CLASS(ECachingModeClass, ECachingMode);
GENAPI_DECLARE_ENUM_CLASS(ERepresentationClass, ERepresentation);
GENAPI_DECLARE_ENUM_CLASS(EEndianessClass, EEndianess);
GENAPI_DECLARE_ENUM_CLASS(ESignClass, ESign);
GENAPI_DECLARE_ENUM_CLASS(ESlopeClass, ESlope);
GENAPI_DECLARE_ENUM_CLASS(EDisplayNotationClass, EDisplayNotation);
GENAPI_DECLARE_ENUM_CLASS(ENameSpaceClass, ENameSpace);
GENAPI_DECLARE_ENUM_CLASS(EYesNoClass, EYesNo);
GENAPI_DECLARE_ENUM_CLASS(EInterfaceTypeClass, EInterfaceType);
GENAPI_DECLARE_ENUM_CLASS(EIncModeClass, EIncMode);

#undef GENAPI_DECLARE_ENUM_CLASS

} // namespace GenApi

#endif
