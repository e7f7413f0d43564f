#include "FormulaContext.h"

#include "Node.h"
#include "TextParsing.h"
#include "ValueAccess.h"

#include <Base/GCException.h>
#include <GenApi/AccessModeHelpers.h>

#include <cstdlib>

namespace GenApi {
namespace detail {

namespace {

// Expressions may use each other; a description whose expressions refer to themselves must end
// in an exception, not in a stack overflow.
constexpr int kMaxExpressionDepth = 64;

class DepthGuard {
public:
    explicit DepthGuard(int& depth) : m_depth(depth) {
        if (++m_depth > kMaxExpressionDepth) {
            --m_depth;
            throw RUNTIME_EXCEPTION("Formula expressions nest too deeply");
        }
    }
    ~DepthGuard() { --m_depth; }
    DepthGuard(const DepthGuard&) = delete;
    DepthGuard& operator=(const DepthGuard&) = delete;

private:
    int& m_depth;
};

const char* const kMemberSuffixes[] = {".Value", ".Min", ".Max", ".Inc"};

} // namespace

void FormulaContext::Link(Node& owner, const NodeDescription& description) {
    m_owner = owner.Name();
    for (const auto& property : description.properties) {
        const std::string* name = property.Attribute("Name");
        if (property.name == "pVariable") {
            if (!name)
                throw RUNTIME_EXCEPTION("<pVariable> at line %u has no Name", property.line);
            Node* node = owner.Resolve(property);
            owner.AddVariableChild(node);
            m_variables.push_back({*name, node, Member::Value});
            for (int i = 0; i < 4; ++i)
                m_variables.push_back({*name + kMemberSuffixes[i], node, static_cast<Member>(i)});
        } else if (property.name == "Constant") {
            if (!name)
                throw RUNTIME_EXCEPTION("<Constant> at line %u has no Name", property.line);
            Constant constant{*name, ParseDouble(property), 0};
            if (!TryParseInt64(property.text, constant.intValue))
                constant.intValue = static_cast<int64_t>(constant.floatValue);
            m_constants.push_back(constant);
        } else if (property.name == "Expression") {
            if (!name)
                throw RUNTIME_EXCEPTION("<Expression> at line %u has no Name", property.line);
            m_expressions.push_back({*name, property.text, property.line, nullptr});
        }
    }
    for (auto& expression : m_expressions) {
        Property text{"Expression", expression.text, {}, expression.line};
        expression.formula = Parse(text, {});
    }
}

std::vector<std::string>
FormulaContext::DeclaredNames(const std::vector<std::string>& extraNames) const {
    std::vector<std::string> names(extraNames);
    for (const auto& variable : m_variables)
        names.push_back(variable.name);
    for (const auto& constant : m_constants)
        names.push_back(constant.name);
    for (const auto& expression : m_expressions)
        names.push_back(expression.name);
    return names;
}

std::unique_ptr<Formula> FormulaContext::Parse(const Property& property,
                                               const std::vector<std::string>& extraNames) const {
    if (property.text.empty())
        return nullptr;
    try {
        return std::make_unique<Formula>(property.text, DeclaredNames(extraNames));
    } catch (const GenICam::GenericException& e) {
        throw RUNTIME_EXCEPTION("Node '%s', <%s> at line %u: %s", m_owner.c_str(),
                                property.name.c_str(), property.line, e.GetDescription());
    }
}

std::unique_ptr<Formula> FormulaContext::Parse(const NodeDescription& description,
                                               const char* element,
                                               const std::vector<std::string>& extraNames) const {
    const Property* property = description.Find(element);
    if (!property)
        throw RUNTIME_EXCEPTION("Node '%s' at line %u has no <%s>", description.name.c_str(),
                                description.line, element);
    return Parse(*property, extraNames);
}

double FormulaContext::EvaluateFloat(const std::unique_ptr<Formula>& formula) {
    if (!formula)
        throw LOGICAL_ERROR_EXCEPTION("Node '%s' has an empty formula", m_owner.c_str());
    return formula->EvaluateFloat(*this);
}

int64_t FormulaContext::EvaluateInt(const std::unique_ptr<Formula>& formula) {
    if (!formula)
        throw LOGICAL_ERROR_EXCEPTION("Node '%s' has an empty formula", m_owner.c_str());
    return formula->EvaluateInt(*this);
}

void FormulaContext::SetSpecial(const std::string& name, double value) {
    SetSpecial(name, value, FloatToInt(value));
}

void FormulaContext::SetSpecial(const std::string& name, double floatValue, int64_t intValue) {
    for (auto& special : m_specials)
        if (special.name == name) {
            special.floatValue = floatValue;
            special.intValue = intValue;
            return;
        }
    m_specials.push_back({name, floatValue, intValue});
}

// A formula can be computed only while every variable can be read; the least available
// variable decides.
EAccessMode FormulaContext::VariablesAccessMode() const {
    EAccessMode result = RO;
    for (const auto& variable : m_variables) {
        if (variable.member != Member::Value)
            continue;
        EAccessMode mode = variable.node->GetAccessMode();
        if (mode == NI)
            return NI;
        if (!IsReadable(mode))
            result = NA;
    }
    return result;
}

bool FormulaContext::CacheValid() const {
    for (const auto& variable : m_variables)
        if (!variable.node->CacheValid())
            return false;
    return true;
}

double FormulaContext::GetFloat(const std::string& name) {
    for (const auto& special : m_specials)
        if (special.name == name)
            return special.floatValue;
    for (const auto& variable : m_variables)
        if (variable.name == name) {
            switch (variable.member) {
            case Member::Min:
                return ReadFloatMin(variable.node);
            case Member::Max:
                return ReadFloatMax(variable.node);
            case Member::Inc:
                return static_cast<double>(ReadIntInc(variable.node));
            case Member::Value:
                break;
            }
            return ReadFloat(variable.node, false, false);
        }
    for (const auto& constant : m_constants)
        if (constant.name == name)
            return constant.floatValue;
    for (const auto& expression : m_expressions)
        if (expression.name == name) {
            DepthGuard guard(m_depth);
            return EvaluateFloat(expression.formula);
        }
    throw RUNTIME_EXCEPTION("Node '%s': unknown formula variable '%s'", m_owner.c_str(),
                            name.c_str());
}

int64_t FormulaContext::GetInt(const std::string& name) {
    for (const auto& special : m_specials)
        if (special.name == name)
            return special.intValue;
    for (const auto& variable : m_variables)
        if (variable.name == name) {
            switch (variable.member) {
            case Member::Min:
                return ReadIntMin(variable.node);
            case Member::Max:
                return ReadIntMax(variable.node);
            case Member::Inc:
                return ReadIntInc(variable.node);
            case Member::Value:
                break;
            }
            return ReadInt(variable.node, false, false);
        }
    for (const auto& constant : m_constants)
        if (constant.name == name)
            return constant.intValue;
    for (const auto& expression : m_expressions)
        if (expression.name == name) {
            DepthGuard guard(m_depth);
            return EvaluateInt(expression.formula);
        }
    throw RUNTIME_EXCEPTION("Node '%s': unknown formula variable '%s'", m_owner.c_str(),
                            name.c_str());
}

} // namespace detail
} // namespace GenApi
