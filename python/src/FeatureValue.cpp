#include "FeatureValue.h"

#include <GenApi/AccessModeHelpers.h>
#include <GenApi/IBoolean.h>
#include <GenApi/ICommand.h>
#include <GenApi/IEnumEntry.h>
#include <GenApi/IEnumeration.h>
#include <GenApi/IFloat.h>
#include <GenApi/IInteger.h>
#include <GenApi/IString.h>
#include <GenApi/Pointer.h>
#include <Orvan/GenApiCustom.h>

#include <vector>

namespace py = pybind11;
using GenICam::gcstring;

namespace OrvanPy {
namespace {

// Node access may talk to the camera and may wait for the node map's lock, which an SDK thread
// can hold while it waits for the GIL: both happen without the GIL.
template <class F>
auto Unlocked(F&& access) {
    py::gil_scoped_release release;
    return access();
}

py::object ReadRegister(GenApi::INodeMap* nodeMap, const gcstring& name) {
    int64_t length = 0;
    Unlocked([&] {
        Orvan::GetNodeValue(nodeMap, name, nullptr, length);
        return 0;
    });
    std::vector<uint8_t> bytes(size_t(length > 0 ? length : 0));
    Unlocked([&] {
        Orvan::GetNodeValue(nodeMap, name, bytes.data(), length);
        return 0;
    });
    return py::bytes(reinterpret_cast<const char*>(bytes.data()), size_t(length));
}

template <class Py, class T>
T Required(py::handle value, const char* what, const std::string& name) {
    if (!py::isinstance<Py>(value))
        throw py::type_error("feature '" + name + "' takes " + what + ", not " +
                             std::string(py::str(py::type::of(value).attr("__name__"))));
    return value.cast<T>();
}

} // namespace

GenApi::INode* FindNode(GenApi::INodeMap* nodeMap, const std::string& name) {
    GenApi::INode* node = Unlocked([&] { return nodeMap->GetNode(name.c_str()); });
    if (!node)
        throw py::key_error("no feature named '" + name + "'");
    return node;
}

py::object ReadFeature(GenApi::INodeMap* nodeMap, const std::string& name) {
    const GenApi::EInterfaceType type = FindNode(nodeMap, name)->GetPrincipalInterfaceType();
    const gcstring key(name.c_str());
    switch (type) {
    case GenApi::intfIInteger:
        return py::int_(Unlocked([&] { return Orvan::GetNodeValue<int64_t>(nodeMap, key); }));
    case GenApi::intfIFloat:
        return py::float_(Unlocked([&] { return Orvan::GetNodeValue<double>(nodeMap, key); }));
    case GenApi::intfIBoolean:
        return py::bool_(Unlocked([&] { return Orvan::GetNodeValue<bool>(nodeMap, key); }));
    case GenApi::intfIString:
    case GenApi::intfIEnumeration:
        return py::str(
            Unlocked([&] { return Orvan::GetNodeValue<gcstring>(nodeMap, key); }).c_str());
    case GenApi::intfIRegister:
        return ReadRegister(nodeMap, key);
    default:
        throw py::type_error("feature '" + name + "' has no value (a command or a category)");
    }
}

void WriteFeature(GenApi::INodeMap* nodeMap, const std::string& name, py::handle value) {
    const GenApi::EInterfaceType type = FindNode(nodeMap, name)->GetPrincipalInterfaceType();
    const gcstring key(name.c_str());
    if (type == GenApi::intfIInteger && !py::isinstance<py::bool_>(value)) {
        const int64_t v = Required<py::int_, int64_t>(value, "an int", name);
        Unlocked([&] {
            Orvan::SetNodeValue<int64_t>(nodeMap, key, v);
            return 0;
        });
    } else if (type == GenApi::intfIFloat && !py::isinstance<py::bool_>(value)) {
        const double v = py::isinstance<py::int_>(value)
                             ? value.cast<double>()
                             : Required<py::float_, double>(value, "a float", name);
        Unlocked([&] {
            Orvan::SetNodeValue<double>(nodeMap, key, v);
            return 0;
        });
    } else if (type == GenApi::intfIBoolean) {
        const bool v = Required<py::bool_, bool>(value, "a bool", name);
        Unlocked([&] {
            Orvan::SetNodeValue<bool>(nodeMap, key, v);
            return 0;
        });
    } else if (type == GenApi::intfIString || type == GenApi::intfIEnumeration) {
        const gcstring v = Required<py::str, std::string>(value, "a str", name).c_str();
        Unlocked([&] {
            Orvan::SetNodeValue<gcstring>(nodeMap, key, v);
            return 0;
        });
    } else if (type == GenApi::intfIRegister) {
        std::string bytes = Required<py::bytes, std::string>(value, "bytes", name);
        int64_t length = int64_t(bytes.size());
        const auto* data = reinterpret_cast<const uint8_t*>(bytes.data());
        Unlocked([&] {
            Orvan::SetNodeValue(nodeMap, key, data, length);
            return 0;
        });
    } else {
        throw py::type_error("feature '" + name + "' has no value to set");
    }
}

py::object ReadNode(GenApi::INode* node) {
    const std::string name = node->GetName().c_str();
    if (!GenApi::IsReadable(node))
        throw py::key_error("chunk '" + name + "' is not readable in this image");
    switch (node->GetPrincipalInterfaceType()) {
    case GenApi::intfIInteger:
        return py::int_(GenApi::CIntegerPtr(node)->GetValue());
    case GenApi::intfIFloat:
        return py::float_(GenApi::CFloatPtr(node)->GetValue());
    case GenApi::intfIBoolean:
        return py::bool_(GenApi::CBooleanPtr(node)->GetValue());
    case GenApi::intfIString:
        return py::str(GenApi::CStringPtr(node)->GetValue().c_str());
    case GenApi::intfIEnumeration:
        return py::str(GenApi::CEnumerationPtr(node)->GetCurrentEntry()->GetSymbolic().c_str());
    default:
        throw py::type_error("chunk '" + name + "' has no value");
    }
}

} // namespace OrvanPy
