// The formula language of SwissKnife, IntSwissKnife, Converter and IntConverter nodes: a parser
// that turns the text into a small stack program once, and two evaluators (floating point and
// 64-bit integer) that run that program.
//
// Language (GenICam SwissKnife grammar), operators from lowest to highest precedence:
//   ?:            conditional, right-associative: A ? B : C ? D : E  is  A ? B : (C ? D : E)
//   || && = <> < > <= >=
//                 logical or, logical and, equal, not equal, comparisons: ONE level,
//                 left-associative (result 1 or 0). This follows the GenICam reference
//                 implementation, not C: its results for real descriptions show "V = 3 || V = 1"
//                 computed as ((V = 3) || V) = 1 and "(S = 2) && F = 0" as ((S = 2) && F) = 0.
//                 Write parentheses to combine conditions: (A = 1) && (B = 2).
//   |             bitwise or
//   ^             bitwise exclusive or
//   &             bitwise and
//   <<  >>        shifts (>> is arithmetic: it keeps the sign)
//   +  -          addition, subtraction
//   *  /  %       multiplication, division, remainder
//   - + ~ !       unary minus, plus, bitwise not, logical not (prefix, may repeat)
//   **            power, right-associative: 2**3**2 is 2**(3**2) = 512. It binds tighter than a
//                 prefix operator on its left and accepts one on its right, as in mathematics:
//                 -2**2 is -(2**2) = -4 and 2**-1 is 0.5.
//   ( )           grouping; function calls NAME(x) and ROUND(x, digits)
// Binary operators other than ?: and ** are left-associative.
// Operands: decimal integers (42), decimal floating-point literals (1.5, .5, 2., 1e3, 1.5E-3,
// 1e+05), hexadecimal integers (0x1F, 0X1f), the declared variable names, the constants PI and E,
// and the functions SGN NEG ABS SQRT TRUNC FLOOR CEIL ROUND SIN COS TAN ASIN ACOS ATAN EXP LN LG.
// Built-in names are upper case and case-sensitive. A declared name always wins over a built-in
// constant or function of the same spelling; it is matched literally (the longest declared name
// that starts here and is not followed by a letter, digit, '_' or '.'). Blanks, tabs and line
// breaks may appear anywhere between tokens.
//
// Evaluation (both modes):
// - Every operand is evaluated: ?:, && and || choose their result after both sides are computed,
//   as the GenICam reference implementation does, so a division by zero in the branch that is not
//   taken still fails. Each used variable is read exactly once per evaluation, in first-use order.
// - Division or remainder by zero throws GenICam::LogicalErrorException (the exception the
//   reference implementation raises for it); nothing ever raises a signal.
// Floating-point mode (EvaluateFloat): IEEE double arithmetic; ** is pow(); the functions are the
// C library's (LN(0) is -inf, SQRT(-1) is NaN, no exception). The bitwise operators & | ^ ~ and
// the shifts work on 32-bit signed integers, as in the reference implementation: each operand is
// truncated toward zero; the operands of a shift must lie in the int32 range (else
// LogicalErrorException), while & | ^ ~ keep the low 32 bits of any operand in the int64 range
// (0xFFFFFFFC is -4 there; NaN, infinities and larger values fail); the result wraps around in
// 32 bits ((1441563418 << 16) >> 16 is -31974) and a shift count is taken modulo 32. % truncates
// its operands toward zero to int64 (NaN becomes 0, values beyond the range saturate) and gives the
// integer remainder. ROUND rounds half away from zero; ROUND(x, n) rounds to n decimal places (n
// truncated to an integer, may be negative). Integer mode (EvaluateInt): every value is an int64_t;
// + - * << and unary minus wrap around modulo 2**64; / truncates toward zero and INT64_MIN / -1 is
// INT64_MIN (its remainder 0); a shift count is taken modulo 64, as in the reference implementation
// (1 << 79 is 32768, a negative count -n shifts by 64 - n); ** is exact integer power with
// wrap-around (a negative exponent gives 1/x**n truncated: 1 for x=1, +-1 for x=-1, an exception
// for x=0, else 0). PI and E are truncated toward zero (3 and 2; a floating-point literal fails,
// see below); SGN NEG ABS are exact; TRUNC FLOOR CEIL ROUND(x) return x; ROUND(x, n) returns x for
// n >= 0, rounds half away from zero to a multiple of 10**-n for -18 <= n < 0 and gives 0 below;
// the other functions are computed in double on the converted argument and truncated back with
// saturation. Literals: an integer literal is kept exactly in integer mode (decimal values above
// INT64_MAX saturate; hexadecimal literals of up to 64 bits keep their bit pattern, so
// 0xFFFFFFFFFFFFFFFF is -1 in both modes); in floating-point mode it is converted to double.
//
// Two constructs parse but fail when evaluated, with GenICam::LogicalErrorException, because the
// GenICam reference implementation fails on them when the value is read (its results for real
// descriptions show it): a literal with a decimal point or an exponent (4.0, 1e3) in a formula
// evaluated in integer mode ("TO / 4.0" of an IntConverter), and a '-' sign directly after the
// '?' of a conditional ("C ? -(A + B) : B"; write "C ? NEG(A + B) : B" or "C ? 0-(A + B) : B").
//
// Errors: any syntax error, unknown name, wrong argument count or nesting deeper than
// kMaxNestingDepth throws GenICam::RuntimeException when the Formula is constructed; the text
// names the problem and its 1-based character position.
#ifndef ORVAN_GENAPI_FORMULA_FORMULA_H
#define ORVAN_GENAPI_FORMULA_FORMULA_H

#include <cstdint>
#include <string>
#include <vector>

namespace GenApi {
namespace detail {

// Supplies variable values while a formula is evaluated. The names are exactly those the
// formula was built with (declared variable names, which may contain dots such as "X.Min").
class FormulaVariables {
public:
    virtual ~FormulaVariables() = default;
    virtual double GetFloat(const std::string& name) = 0;
    virtual int64_t GetInt(const std::string& name) = 0;
};

class Formula {
public:
    // Deepest nesting of parentheses, function arguments, conditional branches, prefix operators
    // and exponents that a formula may have; deeper ones are rejected as a syntax error.
    static constexpr int kMaxNestingDepth = 256;

    // Parses once. variableNames are the names the description declares for this formula
    // (pVariable Name attributes, Constant and Expression names, TO/FROM for converters); they
    // take precedence over the built-in constants and function names. Throws
    // GenICam::RuntimeException with a text that names the problem and the position, for any
    // syntax error or unknown name.
    Formula(const std::string& text, const std::vector<std::string>& variableNames);

    // The declared names the formula actually uses, each once, in first-use order.
    const std::vector<std::string>& UsedVariables() const { return m_usedVariables; }
    // The text the formula was parsed from.
    const std::string& Text() const { return m_text; }

    // Floating-point evaluation (SwissKnife, Converter).
    double EvaluateFloat(FormulaVariables& variables) const;
    // Integer evaluation (IntSwissKnife, IntConverter): 64-bit integer arithmetic throughout.
    int64_t EvaluateInt(FormulaVariables& variables) const;

    // One step of the stack program (public for the parser's helpers; not an interface).
    enum class Op : uint8_t {
        Constant,
        Variable,
        Negate,
        BitNot,
        LogicalNot,
        Add,
        Subtract,
        Multiply,
        Divide,
        Remainder,
        Power,
        ShiftLeft,
        ShiftRight,
        Less,
        Greater,
        LessEqual,
        GreaterEqual,
        Equal,
        NotEqual,
        BitAnd,
        BitXor,
        BitOr,
        LogicalAnd,
        LogicalOr,
        Select,
        Sgn,
        Neg,
        Abs,
        Sqrt,
        Trunc,
        Floor,
        Ceil,
        Round,
        Round2,
        Sin,
        Cos,
        Tan,
        Asin,
        Acos,
        Atan,
        Exp,
        Ln,
        Lg
    };
    struct Instruction {
        Op op;
        uint32_t index; // Constant: into the constant tables; Variable: into UsedVariables()
    };

private:
    friend class FormulaParser;

    std::string m_text;
    std::vector<std::string> m_usedVariables;
    std::vector<Instruction> m_program;
    std::vector<double> m_floatConstants;
    std::vector<int64_t> m_intConstants;
    uint32_t m_maxStack = 0;
    // Constructs the reference implementation accepts when the description is loaded but fails
    // on when the value is read: evaluating then throws LogicalErrorException with this text.
    std::string m_evaluationError;  // both modes
    std::string m_integerModeError; // EvaluateInt only
};

} // namespace detail
} // namespace GenApi

#endif
