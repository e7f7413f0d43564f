#include "NodeDump.h"

#include <GenApi/GenApi.h>

#include <cinttypes>
#include <cstdio>
#include <functional>

using namespace GenApi;

std::string ExceptionClassName(const GenICam::GenericException& exception) {
    using namespace GenICam;
    if (dynamic_cast<const BadAllocException*>(&exception))
        return "BadAllocException";
    if (dynamic_cast<const InvalidArgumentException*>(&exception))
        return "InvalidArgumentException";
    if (dynamic_cast<const OutOfRangeException*>(&exception))
        return "OutOfRangeException";
    if (dynamic_cast<const PropertyException*>(&exception))
        return "PropertyException";
    if (dynamic_cast<const RuntimeException*>(&exception))
        return "RuntimeException";
    if (dynamic_cast<const LogicalErrorException*>(&exception))
        return "LogicalErrorException";
    if (dynamic_cast<const AccessException*>(&exception))
        return "AccessException";
    if (dynamic_cast<const TimeoutException*>(&exception))
        return "TimeoutException";
    if (dynamic_cast<const DynamicCastException*>(&exception))
        return "DynamicCastException";
    return "GenericException";
}

namespace {

std::string Escape(const std::string& text) {
    std::string escaped;
    for (unsigned char c : text) {
        if (c == '\\') {
            escaped += "\\\\";
        } else if (c < 0x20 || c > 0x7E) {
            char hex[5];
            std::snprintf(hex, sizeof hex, "\\x%02x", c);
            escaped += hex;
        } else {
            escaped += static_cast<char>(c);
        }
    }
    return escaped;
}

std::string Int(int64_t value) {
    char text[32];
    std::snprintf(text, sizeof text, "%" PRId64, value);
    return text;
}

std::string Float(double value) {
    char text[64];
    std::snprintf(text, sizeof text, "%.10g", value);
    return text;
}

// Runs one read; a failing read prints the exception's class instead of a value.
std::string Field(const std::function<std::string()>& read) {
    try {
        return read();
    } catch (const GenICam::GenericException& e) {
        return "EXC:" + ExceptionClassName(e);
    } catch (...) {
        return "EXC:Unknown";
    }
}

std::string Value(INode& node, EAccessMode mode) {
    if (mode != RO && mode != RW)
        return "-";
    return Field([&]() -> std::string {
        switch (node.GetPrincipalInterfaceType()) {
        case intfIInteger:
            return Int(dynamic_cast<IInteger&>(node).GetValue());
        case intfIFloat:
            return Float(dynamic_cast<IFloat&>(node).GetValue());
        case intfIBoolean:
            return dynamic_cast<IBoolean&>(node).GetValue() ? "1" : "0";
        case intfIString:
            return Escape(dynamic_cast<IString&>(node).GetValue().str());
        case intfIEnumeration:
            return Escape(dynamic_cast<IEnumeration&>(node).ToString().str());
        case intfIRegister:
            return Int(dynamic_cast<IRegister&>(node).GetLength());
        default:
            return "-";
        }
    });
}

} // namespace

std::string DumpNode(INode& node) {
    std::string line = node.GetName().str();
    EInterfaceType type = node.GetPrincipalInterfaceType();
    line += "\t" + EInterfaceTypeClass::ToString(type).str();
    EAccessMode mode = _UndefinedAccesMode;
    line += "\t" + Field([&] {
                mode = node.GetAccessMode();
                return EAccessModeClass::ToString(mode).str();
            });
    line += "\t" + Field([&] { return EVisibilityClass::ToString(node.GetVisibility()).str(); });
    line += "\t" + Field([&] { return ECachingModeClass::ToString(node.GetCachingMode()).str(); });
    line += "\t" + Field([&] { return std::string(node.IsStreamable() ? "1" : "0"); });
    line += "\t" + Value(node, mode);
    if (type == intfIInteger) {
        auto& integer = dynamic_cast<IInteger&>(node);
        line += "\t" + Field([&] { return Int(integer.GetMin()); });
        line += "\t" + Field([&] { return Int(integer.GetMax()); });
        line += "\t" + Field([&] { return Int(integer.GetInc()); });
    } else if (type == intfIFloat) {
        auto& real = dynamic_cast<IFloat&>(node);
        line += "\t" + Field([&] { return Float(real.GetMin()); });
        line += "\t" + Field([&] { return Float(real.GetMax()); });
        line += "\t" + Field([&] { return real.HasInc() ? Float(real.GetInc()) : "-"; });
    } else {
        line += "\t-\t-\t-";
    }
    return line;
}
