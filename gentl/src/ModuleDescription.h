// Declares a producer module's features once and makes from that declaration both the module's
// GenICam description (schema 1.1) and the registers behind it, each bound to a live value of
// the module, so the description and the register space cannot disagree.
#ifndef ORVAN_GENTL_MODULEDESCRIPTION_H
#define ORVAN_GENTL_MODULEDESCRIPTION_H

#include "RegisterSpace.h"

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace Orvan {
namespace Producer {

struct ModuleFeature {
    enum class Kind { Integer, Boolean, Float, String, Enumeration, Command };

    Kind kind = Kind::Integer;
    std::string name;
    std::string category;
    bool standard = true;
    std::string representation;
    std::string availableIf; // a Boolean or Integer node; the feature is NA while it is 0
    std::vector<std::string> selects;
    std::vector<std::pair<std::string, int64_t>> entries;
    std::function<int64_t()> getInt;
    std::function<void(int64_t)> setInt;
    std::function<double()> getFloat;
    std::function<void(double)> setFloat;
    std::function<std::string()> getString;
    std::function<int64_t()> getMax; // live maximum of an Integer

    ModuleFeature& Custom() { return standard = false, *this; }
    ModuleFeature& Ip() { return representation = "IPV4Address", *this; }
    ModuleFeature& Mac() { return representation = "MACAddress", *this; }
    ModuleFeature& Selects(const std::string& node) { return selects.push_back(node), *this; }
    ModuleFeature& AvailableIf(const std::string& node) { return availableIf = node, *this; }
    ModuleFeature& Max(std::function<int64_t()> max) { return getMax = std::move(max), *this; }
};

class ModuleDescription {
public:
    // model: the description's ModelName (also its file name); port: the Port node's name.
    ModuleDescription(std::string model, std::string port);

    void Category(const std::string& name) { m_categories.push_back(name); }

    ModuleFeature& Integer(const std::string& name, std::function<int64_t()> get,
                           std::function<void(int64_t)> set = nullptr);
    ModuleFeature& Boolean(const std::string& name, std::function<bool()> get,
                           std::function<void(bool)> set = nullptr);
    ModuleFeature& Float(const std::string& name, std::function<double()> get,
                         std::function<void(double)> set = nullptr);
    ModuleFeature& String(const std::string& name, std::function<std::string()> get);
    ModuleFeature& Enumeration(const std::string& name,
                               std::vector<std::pair<std::string, int64_t>> entries,
                               std::function<int64_t()> get,
                               std::function<void(int64_t)> set = nullptr);
    ModuleFeature& Command(const std::string& name, std::function<void()> execute);

    // Binds every register into space, places the description file there and returns the
    // "local:" URL of that file.
    std::string Build(RegisterSpace& space) const;

    static constexpr uint32_t kStringLength = 256;

private:
    ModuleFeature& Add(ModuleFeature::Kind kind, const std::string& name);
    std::string Xml() const;
    void Bind(RegisterSpace& space) const;

    std::string m_model;
    std::string m_port;
    std::vector<std::string> m_categories;
    std::vector<ModuleFeature> m_features;
};

} // namespace Producer
} // namespace Orvan

#endif
