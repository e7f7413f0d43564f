// The variables of a SwissKnife or Converter formula: pVariable links to nodes (with the .Value,
// .Min, .Max and .Inc members), named Constants, named Expressions, and the TO/FROM values of
// converters.
#ifndef ORVAN_GENAPI_FORMULACONTEXT_H
#define ORVAN_GENAPI_FORMULACONTEXT_H

#include "NodeDescription.h"
#include "formula/Formula.h"

#include <GenApi/Types.h>

#include <memory>
#include <string>
#include <type_traits>
#include <vector>

namespace GenApi {
namespace detail {

class Node;

class FormulaContext : public FormulaVariables {
public:
    // Reads pVariable, Constant and Expression; `owner` records the links.
    void Link(Node& owner, const NodeDescription& description);
    // Parses the formula held by the element, with the extra names (TO, FROM) declared. An empty
    // element gives no formula; evaluating it then fails (see Evaluate*).
    std::unique_ptr<Formula> Parse(const Property& property,
                                   const std::vector<std::string>& extraNames) const;
    std::unique_ptr<Formula> Parse(const NodeDescription& description, const char* element,
                                   const std::vector<std::string>& extraNames) const;

    double EvaluateFloat(const std::unique_ptr<Formula>& formula);
    int64_t EvaluateInt(const std::unique_ptr<Formula>& formula);
    // In the arithmetic of the owner's value type.
    template <class T>
    T Evaluate(const std::unique_ptr<Formula>& formula) {
        if constexpr (std::is_integral_v<T>)
            return EvaluateInt(formula);
        else
            return EvaluateFloat(formula);
    }

    // Sets the value of TO or FROM for the next evaluation.
    void SetSpecial(const std::string& name, double floatValue, int64_t intValue);
    void SetSpecial(const std::string& name, int64_t value) {
        SetSpecial(name, static_cast<double>(value), value);
    }
    void SetSpecial(const std::string& name, double value);
    // Unavailable while any variable the formula needs cannot be read.
    EAccessMode VariablesAccessMode() const;
    bool CacheValid() const;

    double GetFloat(const std::string& name) override;
    int64_t GetInt(const std::string& name) override;

private:
    enum class Member { Value, Min, Max, Inc };
    struct Variable {
        std::string name;
        Node* node;
        Member member;
    };
    struct Constant {
        std::string name;
        double floatValue;
        int64_t intValue;
    };
    struct Expression {
        std::string name;
        std::string text;
        unsigned line;
        std::unique_ptr<Formula> formula;
    };

    std::vector<std::string> DeclaredNames(const std::vector<std::string>& extraNames) const;

    std::string m_owner;
    std::vector<Variable> m_variables;
    std::vector<Constant> m_constants;
    std::vector<Expression> m_expressions;
    std::vector<Constant> m_specials;
    int m_depth = 0;
};

} // namespace detail
} // namespace GenApi

#endif
