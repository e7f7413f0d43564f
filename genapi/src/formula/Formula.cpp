// Parser and evaluators of the SwissKnife formula language; the language and its semantics are
// described in Formula.h.
#include "Formula.h"

#include <Base/GCException.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>
#include <system_error>

namespace GenApi {
namespace detail {

namespace {

using Op = Formula::Op;

constexpr double kPi = 3.14159265358979323846;
constexpr double kE = 2.71828182845904523536;

// The formula text as exception messages show it: at most 120 bytes.
std::string Shown(const std::string& text) {
    constexpr size_t kMax = 120;
    if (text.size() <= kMax)
        return text;
    return text.substr(0, kMax) + "...";
}

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}
bool IsAlpha(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}
bool IsHexDigit(char c) {
    return IsDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}
bool IsNameChar(char c) {
    return IsAlpha(c) || IsDigit(c) || c == '_' || c == '.';
}
bool IsSpace(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v';
}

int HexValue(char c) {
    if (IsDigit(c))
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return c - 'A' + 10;
}

// double -> int64 truncating toward zero; NaN gives 0, values outside the range saturate.
int64_t ToInt64(double value) {
    if (std::isnan(value))
        return 0;
    if (value >= 9223372036854775808.0)
        return std::numeric_limits<int64_t>::max();
    if (value < -9223372036854775808.0)
        return std::numeric_limits<int64_t>::min();
    return static_cast<int64_t>(value);
}

// Wrap-around integer arithmetic, done in uint64_t so that no overflow is undefined behaviour.
int64_t WrapAdd(int64_t a, int64_t b) {
    return static_cast<int64_t>(static_cast<uint64_t>(a) + static_cast<uint64_t>(b));
}
int64_t WrapSub(int64_t a, int64_t b) {
    return static_cast<int64_t>(static_cast<uint64_t>(a) - static_cast<uint64_t>(b));
}
int64_t WrapMul(int64_t a, int64_t b) {
    return static_cast<int64_t>(static_cast<uint64_t>(a) * static_cast<uint64_t>(b));
}
int64_t WrapNeg(int64_t a) {
    return static_cast<int64_t>(uint64_t{0} - static_cast<uint64_t>(a));
}

[[noreturn]] void ThrowDivisionByZero(const std::string& text) {
    throw LOGICAL_ERROR_EXCEPTION("Formula '%s': division by zero", Shown(text).c_str());
}

int64_t IntDivide(int64_t a, int64_t b, const std::string& text) {
    if (b == 0)
        ThrowDivisionByZero(text);
    if (b == -1)
        return WrapNeg(a); // INT64_MIN / -1 wraps to INT64_MIN
    return a / b;
}

int64_t IntRemainder(int64_t a, int64_t b, const std::string& text) {
    if (b == 0)
        ThrowDivisionByZero(text);
    if (b == -1)
        return 0;
    return a % b;
}

// Integer-mode shifts: the count is taken modulo 64 (its low six bits), as the reference
// implementation's results show (1 << 79 is 32768); >> is arithmetic.
int64_t IntShiftLeft(int64_t a, int64_t count) {
    return static_cast<int64_t>(static_cast<uint64_t>(a) << (static_cast<uint64_t>(count) & 63));
}

int64_t ArithmeticShiftRight(int64_t a, unsigned count) {
    // Written without relying on the implementation's signed right shift.
    return a >= 0 ? (a >> count) : ~(~a >> count);
}

int64_t IntShiftRight(int64_t a, int64_t count) {
    return ArithmeticShiftRight(a, static_cast<unsigned>(static_cast<uint64_t>(count) & 63));
}

// Floating-point-mode bitwise operators and shifts work on 32-bit signed integers, as the
// reference implementation's results show. An operand is truncated toward zero. A shift needs
// both operands in the int32 range (else LogicalErrorException); & | ^ ~ keep the low 32 bits of
// any operand in the int64 range, so a mask such as 0xFFFFFFFC or a value that outgrew 32 bits
// wraps around. The result wraps around in 32 bits and a shift count is taken modulo 32.
int32_t ToInt32Operand(double value, const std::string& text) {
    if (!(value > -2147483649.0 && value < 2147483648.0))
        throw LOGICAL_ERROR_EXCEPTION(
            "Formula '%s': operand %g of a shift is outside the 32-bit integer range",
            Shown(text).c_str(), value);
    return static_cast<int32_t>(value);
}

uint32_t LowBits(double value, const std::string& text) {
    if (!(value >= -9223372036854775808.0 && value < 9223372036854775808.0))
        throw LOGICAL_ERROR_EXCEPTION(
            "Formula '%s': operand %g of a bitwise operator is outside the 64-bit integer range",
            Shown(text).c_str(), value);
    return static_cast<uint32_t>(static_cast<uint64_t>(static_cast<int64_t>(value)));
}

double Int32Result(uint32_t bits) {
    // Two's complement reinterpretation without implementation-defined conversions.
    return bits >= 0x80000000u ? static_cast<double>(bits) - 4294967296.0
                               : static_cast<double>(bits);
}

double Float32Shift(Op op, double a, double b, const std::string& text) {
    int32_t left = ToInt32Operand(a, text);
    uint32_t count = static_cast<uint32_t>(ToInt32Operand(b, text)) & 31;
    if (op == Op::ShiftLeft)
        return Int32Result(static_cast<uint32_t>(left) << count);
    return static_cast<double>(ArithmeticShiftRight(left, count));
}

double Float32BitOp(Op op, double a, double b, const std::string& text) {
    if (op == Op::ShiftLeft || op == Op::ShiftRight)
        return Float32Shift(op, a, b, text);
    uint32_t x = LowBits(a, text);
    uint32_t y = LowBits(b, text);
    switch (op) {
    case Op::BitAnd:
        return Int32Result(x & y);
    case Op::BitOr:
        return Int32Result(x | y);
    default: // BitXor
        return Int32Result(x ^ y);
    }
}

int64_t IntPower(int64_t base, int64_t exponent, const std::string& text) {
    if (exponent < 0) {
        if (base == 1)
            return 1;
        if (base == -1)
            return (exponent & 1) ? -1 : 1;
        if (base == 0)
            ThrowDivisionByZero(text);
        return 0;
    }
    uint64_t result = 1;
    uint64_t factor = static_cast<uint64_t>(base);
    uint64_t e = static_cast<uint64_t>(exponent);
    while (e) {
        if (e & 1)
            result *= factor;
        factor *= factor;
        e >>= 1;
    }
    return static_cast<int64_t>(result);
}

int64_t IntSgn(int64_t a) {
    return a > 0 ? 1 : (a < 0 ? -1 : 0);
}
int64_t IntAbs(int64_t a) {
    return a < 0 ? WrapNeg(a) : a;
}

// ROUND(x, n) in integer mode: x for n >= 0, else x rounded half away from zero to a multiple of
// 10**-n (0 once 10**-n exceeds the int64 range).
int64_t IntRoundDigits(int64_t x, int64_t digits) {
    if (digits >= 0)
        return x;
    if (digits < -18)
        return 0;
    int64_t step = 1;
    for (int64_t i = 0; i < -digits; ++i)
        step *= 10;
    int64_t quotient = x / step;
    int64_t rest = x % step;
    if (rest >= step - rest)
        ++quotient;
    else if (-rest >= step + rest)
        --quotient;
    return WrapMul(quotient, step);
}

// ROUND(x, n) in floating-point mode: x rounded half away from zero to n decimal places.
double FloatRoundDigits(double x, double digitsValue) {
    if (!std::isfinite(x))
        return x;
    int64_t digits = std::clamp<int64_t>(ToInt64(digitsValue), -400, 400);
    if (digits >= 0) {
        double scale = std::pow(10.0, static_cast<double>(digits));
        double scaled = x * scale;
        if (!std::isfinite(scaled))
            return x; // finer than a double can resolve: x is already rounded
        return std::round(scaled) / scale;
    }
    double scale = std::pow(10.0, static_cast<double>(-digits));
    if (!std::isfinite(scale))
        return std::copysign(0.0, x);
    return std::round(x / scale) * scale;
}

double Bool(bool value) {
    return value ? 1.0 : 0.0;
}

struct FunctionInfo {
    const char* name;
    Op op;
};

constexpr FunctionInfo kFunctions[] = {
    {"SGN", Op::Sgn},     {"NEG", Op::Neg},     {"ABS", Op::Abs},   {"SQRT", Op::Sqrt},
    {"TRUNC", Op::Trunc}, {"FLOOR", Op::Floor}, {"CEIL", Op::Ceil}, {"ROUND", Op::Round},
    {"SIN", Op::Sin},     {"COS", Op::Cos},     {"TAN", Op::Tan},   {"ASIN", Op::Asin},
    {"ACOS", Op::Acos},   {"ATAN", Op::Atan},   {"EXP", Op::Exp},   {"LN", Op::Ln},
    {"LG", Op::Lg},
};

// Precedence levels of the left-associative binary operators, lowest first. The comparisons
// share the level of && and ||, as in the GenICam reference implementation: its results for
// real descriptions show "V = 3 || V = 1" evaluated as ((V = 3) || V) = 1 and
// "(S = 2) && F = 0" as ((S = 2) && F) = 0.
constexpr int kLevelLogic = 1;          // || && = <> < > <= >=
constexpr int kLevelBitOr = 2;          // |
constexpr int kLevelBitXor = 3;         // ^
constexpr int kLevelBitAnd = 4;         // &
constexpr int kLevelShift = 5;          // << >>
constexpr int kLevelAdditive = 6;       // + -
constexpr int kLevelMultiplicative = 7; // * / %

struct BinaryInfo {
    Op op;
    int precedence; // one of the kLevel* values
    size_t length;
};

// Small value stack: on the C++ stack when it fits, else on the heap.
template <class T>
class ValueBuffer {
public:
    explicit ValueBuffer(size_t size) {
        if (size > kInline) {
            m_heap.resize(size);
            m_data = m_heap.data();
        } else {
            m_data = m_inline;
        }
    }
    T* data() { return m_data; }

private:
    static constexpr size_t kInline = 32;
    T m_inline[kInline];
    std::vector<T> m_heap;
    T* m_data;
};

} // namespace

// Recursive-descent parser emitting the stack program; its recursion is bounded by
// Formula::kMaxNestingDepth times a constant.
class FormulaParser {
public:
    FormulaParser(Formula& formula, const std::vector<std::string>& names)
        : m_f(formula), m_text(formula.m_text), m_names(names), m_usedIndex(names.size(), -1) {}

    void Parse() {
        SkipSpace();
        if (AtEnd())
            Fail(m_pos, "the formula is empty");
        ParseConditional();
        SkipSpace();
        if (!AtEnd()) {
            if (m_text[m_pos] == ')')
                Fail(m_pos, "unbalanced ')'");
            Fail(m_pos, "expected an operator but found " + Describe(m_pos));
        }
    }

private:
    // ---- errors -------------------------------------------------------------------------
    [[noreturn]] void Fail(size_t pos, const std::string& problem) const {
        throw RUNTIME_EXCEPTION("Formula '%s': %s at position %zu", Shown(m_text).c_str(),
                                problem.c_str(), pos + 1);
    }

    std::string Describe(size_t pos) const {
        if (pos >= m_text.size())
            return "the end of the formula";
        unsigned char c = static_cast<unsigned char>(m_text[pos]);
        char buffer[32];
        if (c >= 0x21 && c <= 0x7E)
            std::snprintf(buffer, sizeof buffer, "'%c'", c);
        else
            std::snprintf(buffer, sizeof buffer, "byte 0x%02x", c);
        return buffer;
    }

    // ---- nesting ------------------------------------------------------------------------
    void Enter() {
        if (++m_depth > Formula::kMaxNestingDepth)
            Fail(m_pos,
                 "nesting deeper than " + std::to_string(Formula::kMaxNestingDepth) + " levels");
    }
    void Leave() { --m_depth; }

    // ---- characters ---------------------------------------------------------------------
    bool AtEnd() const { return m_pos >= m_text.size(); }
    char Peek(size_t ahead = 0) const {
        return m_pos + ahead < m_text.size() ? m_text[m_pos + ahead] : '\0';
    }
    void SkipSpace() {
        while (!AtEnd() && IsSpace(m_text[m_pos]))
            ++m_pos;
    }

    // ---- program ------------------------------------------------------------------------
    void Emit(Op op, uint32_t index = 0) {
        m_f.m_program.push_back(Formula::Instruction{op, index});
        switch (op) {
        case Op::Constant:
        case Op::Variable:
            ++m_stack;
            break;
        case Op::Add:
        case Op::Subtract:
        case Op::Multiply:
        case Op::Divide:
        case Op::Remainder:
        case Op::Power:
        case Op::ShiftLeft:
        case Op::ShiftRight:
        case Op::Less:
        case Op::Greater:
        case Op::LessEqual:
        case Op::GreaterEqual:
        case Op::Equal:
        case Op::NotEqual:
        case Op::BitAnd:
        case Op::BitXor:
        case Op::BitOr:
        case Op::LogicalAnd:
        case Op::LogicalOr:
        case Op::Round2:
            --m_stack;
            break;
        case Op::Select:
            m_stack -= 2;
            break;
        default:
            break;
        }
        m_f.m_maxStack = std::max(m_f.m_maxStack, m_stack);
    }

    void EmitConstant(double floatValue, int64_t intValue) {
        m_f.m_floatConstants.push_back(floatValue);
        m_f.m_intConstants.push_back(intValue);
        Emit(Op::Constant, static_cast<uint32_t>(m_f.m_floatConstants.size() - 1));
    }

    void EmitVariable(size_t declared) {
        if (m_usedIndex[declared] < 0) {
            m_usedIndex[declared] = static_cast<int>(m_f.m_usedVariables.size());
            m_f.m_usedVariables.push_back(m_names[declared]);
        }
        Emit(Op::Variable, static_cast<uint32_t>(m_usedIndex[declared]));
    }

    // ---- grammar ------------------------------------------------------------------------
    // conditional := binary(1) [ '?' conditional ':' conditional ]
    void ParseConditional() {
        Enter();
        ParseBinary(kLevelLogic);
        SkipSpace();
        if (Peek() == '?') {
            ++m_pos;
            SkipSpace();
            if (Peek() == '-' && m_f.m_evaluationError.empty())
                m_f.m_evaluationError = "Formula '" + Shown(m_text) +
                                        "': a '-' sign directly after '?' at position " +
                                        std::to_string(m_pos + 1) +
                                        " (the GenICam reference implementation rejects it; "
                                        "write NEG(x))";
            ParseConditional();
            SkipSpace();
            if (Peek() != ':')
                Fail(m_pos,
                     "expected ':' of the conditional operator but found " + Describe(m_pos));
            ++m_pos;
            ParseConditional();
            Emit(Op::Select);
        }
        Leave();
    }

    // The binary operator (other than ** ? :) at the current position, if any, with its
    // precedence level (see kLevel*).
    bool PeekBinary(BinaryInfo& info) const {
        char c = Peek();
        char d = Peek(1);
        switch (c) {
        case '|':
            info = d == '|' ? BinaryInfo{Op::LogicalOr, kLevelLogic, 2}
                            : BinaryInfo{Op::BitOr, kLevelBitOr, 1};
            return true;
        case '&':
            info = d == '&' ? BinaryInfo{Op::LogicalAnd, kLevelLogic, 2}
                            : BinaryInfo{Op::BitAnd, kLevelBitAnd, 1};
            return true;
        case '^':
            info = {Op::BitXor, kLevelBitXor, 1};
            return true;
        case '=':
            info = {Op::Equal, kLevelLogic, 1};
            return true;
        case '<':
            if (d == '>')
                info = {Op::NotEqual, kLevelLogic, 2};
            else if (d == '=')
                info = {Op::LessEqual, kLevelLogic, 2};
            else if (d == '<')
                info = {Op::ShiftLeft, kLevelShift, 2};
            else
                info = {Op::Less, kLevelLogic, 1};
            return true;
        case '>':
            if (d == '=')
                info = {Op::GreaterEqual, kLevelLogic, 2};
            else if (d == '>')
                info = {Op::ShiftRight, kLevelShift, 2};
            else
                info = {Op::Greater, kLevelLogic, 1};
            return true;
        case '+':
            info = {Op::Add, kLevelAdditive, 1};
            return true;
        case '-':
            info = {Op::Subtract, kLevelAdditive, 1};
            return true;
        case '*':
            if (d == '*')
                return false; // handled by ParsePower
            info = {Op::Multiply, kLevelMultiplicative, 1};
            return true;
        case '/':
            info = {Op::Divide, kLevelMultiplicative, 1};
            return true;
        case '%':
            info = {Op::Remainder, kLevelMultiplicative, 1};
            return true;
        default:
            return false;
        }
    }

    // Precedence climbing over the left-associative binary levels.
    void ParseBinary(int minPrecedence) {
        ParseUnary();
        for (;;) {
            SkipSpace();
            BinaryInfo info{};
            if (!PeekBinary(info) || info.precedence < minPrecedence)
                return;
            m_pos += info.length;
            ParseBinary(info.precedence + 1);
            Emit(info.op);
        }
    }

    // unary := ('-' | '+' | '~' | '!') unary | power
    void ParseUnary() {
        SkipSpace();
        char c = Peek();
        if (c == '-' || c == '+' || c == '~' || c == '!') {
            ++m_pos;
            Enter();
            ParseUnary();
            Leave();
            if (c == '-')
                Emit(Op::Negate);
            else if (c == '~')
                Emit(Op::BitNot);
            else if (c == '!')
                Emit(Op::LogicalNot);
            return;
        }
        ParsePower();
    }

    // power := primary [ '**' unary ]   (right-associative through unary -> power)
    void ParsePower() {
        ParsePrimary();
        SkipSpace();
        if (Peek() == '*' && Peek(1) == '*') {
            m_pos += 2;
            Enter();
            ParseUnary();
            Leave();
            Emit(Op::Power);
        }
    }

    void ParsePrimary() {
        SkipSpace();
        if (AtEnd())
            Fail(m_pos, "expected an operand but found the end of the formula");
        char c = Peek();
        if (c == '(') {
            size_t open = m_pos++;
            ParseConditional();
            SkipSpace();
            if (Peek() != ')') {
                if (AtEnd())
                    Fail(open, "unbalanced '(': no matching ')'");
                Fail(m_pos, "expected ')' but found " + Describe(m_pos));
            }
            ++m_pos;
            return;
        }
        if (MatchDeclaredName())
            return;
        if (IsDigit(c) || (c == '.' && IsDigit(Peek(1)))) {
            ParseNumber();
            return;
        }
        if (IsAlpha(c) || c == '_') {
            ParseBuiltinName();
            return;
        }
        if (c == ')')
            Fail(m_pos, "expected an operand but found ')'");
        Fail(m_pos, "expected an operand but found " + Describe(m_pos));
    }

    // The longest declared name that starts here and is not followed by another name character.
    bool MatchDeclaredName() {
        size_t best = m_names.size();
        size_t bestLength = 0;
        for (size_t i = 0; i < m_names.size(); ++i) {
            const std::string& name = m_names[i];
            if (name.empty() || name.size() <= bestLength)
                continue;
            if (m_text.compare(m_pos, name.size(), name) != 0)
                continue;
            size_t end = m_pos + name.size();
            if (end < m_text.size() && IsNameChar(m_text[end]))
                continue;
            best = i;
            bestLength = name.size();
        }
        if (best == m_names.size())
            return false;
        m_pos += bestLength;
        EmitVariable(best);
        return true;
    }

    void ParseBuiltinName() {
        size_t start = m_pos;
        while (!AtEnd() && IsNameChar(m_text[m_pos]))
            ++m_pos;
        std::string name = m_text.substr(start, m_pos - start);
        if (name == "PI") {
            EmitConstant(kPi, 3);
            return;
        }
        if (name == "E") {
            EmitConstant(kE, 2);
            return;
        }
        for (const FunctionInfo& function : kFunctions) {
            if (name == function.name) {
                ParseCall(function);
                return;
            }
        }
        Fail(start, "unknown name '" + Shown(name) + "'");
    }

    void ParseCall(const FunctionInfo& function) {
        SkipSpace();
        if (Peek() != '(')
            Fail(m_pos, std::string("function ") + function.name + " needs '(' but found " +
                            Describe(m_pos));
        size_t open = m_pos++;
        SkipSpace();
        if (Peek() == ')')
            Fail(m_pos, std::string("function ") + function.name + " needs an argument");
        ParseConditional();
        SkipSpace();
        int arguments = 1;
        if (Peek() == ',') {
            if (function.op != Op::Round)
                Fail(m_pos, std::string("function ") + function.name + " takes one argument");
            ++m_pos;
            ParseConditional();
            SkipSpace();
            arguments = 2;
        }
        if (Peek() != ')') {
            if (AtEnd())
                Fail(open, "unbalanced '(': no matching ')'");
            if (Peek() == ',')
                Fail(m_pos,
                     std::string("function ") + function.name + " takes at most two arguments");
            Fail(m_pos, "expected ')' but found " + Describe(m_pos));
        }
        ++m_pos;
        Emit(arguments == 2 ? Op::Round2 : function.op);
    }

    void ParseNumber() {
        size_t start = m_pos;
        if (Peek() == '0' && (Peek(1) == 'x' || Peek(1) == 'X')) {
            m_pos += 2;
            uint64_t value = 0;
            int significant = 0;
            size_t digitsStart = m_pos;
            while (!AtEnd() && IsHexDigit(m_text[m_pos])) {
                int digit = HexValue(m_text[m_pos]);
                if (significant > 0 || digit != 0)
                    ++significant;
                if (significant > 16)
                    Fail(start, "hexadecimal literal wider than 64 bits");
                value = (value << 4) | static_cast<uint64_t>(digit);
                ++m_pos;
            }
            if (m_pos == digitsStart)
                Fail(start, "hexadecimal literal without digits");
            int64_t intValue = static_cast<int64_t>(value);
            EmitConstant(static_cast<double>(intValue), intValue);
            return;
        }

        bool isInteger = true;
        bool overflow = false;
        uint64_t intValue = 0;
        while (!AtEnd() && IsDigit(m_text[m_pos])) {
            uint64_t digit = static_cast<uint64_t>(m_text[m_pos] - '0');
            if (intValue > (std::numeric_limits<uint64_t>::max() - digit) / 10)
                overflow = true;
            else
                intValue = intValue * 10 + digit;
            ++m_pos;
        }
        if (Peek() == '.') {
            isInteger = false;
            ++m_pos;
            while (!AtEnd() && IsDigit(m_text[m_pos]))
                ++m_pos;
        }
        bool negativeExponent = false;
        if (Peek() == 'e' || Peek() == 'E') {
            size_t exponentStart = m_pos + 1;
            if (exponentStart < m_text.size() &&
                (m_text[exponentStart] == '+' || m_text[exponentStart] == '-')) {
                negativeExponent = m_text[exponentStart] == '-';
                ++exponentStart;
            }
            if (exponentStart < m_text.size() && IsDigit(m_text[exponentStart])) {
                isInteger = false;
                m_pos = exponentStart;
                while (!AtEnd() && IsDigit(m_text[m_pos]))
                    ++m_pos;
            }
        }

        double floatValue = 0.0;
        const char* first = m_text.data() + start;
        const char* last = m_text.data() + m_pos;
        std::from_chars_result result = std::from_chars(first, last, floatValue);
        if (result.ec == std::errc::result_out_of_range) {
            floatValue = LargeOrTiny(start, m_pos, negativeExponent)
                             ? std::numeric_limits<double>::infinity()
                             : 0.0;
        } else if (result.ec != std::errc() || result.ptr != last) {
            Fail(start, "malformed number");
        }

        if (!isInteger && m_f.m_integerModeError.empty())
            m_f.m_integerModeError = "Formula '" + Shown(m_text) + "': the literal '" +
                                     Shown(m_text.substr(start, m_pos - start)) + "' at position " +
                                     std::to_string(start + 1) +
                                     " is not an integer, which an integer formula cannot hold";
        int64_t value;
        if (isInteger)
            value =
                (overflow || intValue > static_cast<uint64_t>(std::numeric_limits<int64_t>::max()))
                    ? std::numeric_limits<int64_t>::max()
                    : static_cast<int64_t>(intValue);
        else
            value = ToInt64(floatValue);
        EmitConstant(floatValue, value);
    }

    // For a literal out of the double range: true when it is too large, false when too small.
    bool LargeOrTiny(size_t start, size_t end, bool negativeExponent) const {
        // Decimal magnitude of the mantissa: digits before the point (after leading zeros), or
        // minus the zeros that follow the point.
        long magnitude = 0;
        size_t i = start;
        while (i < end && m_text[i] == '0')
            ++i;
        if (i < end && IsDigit(m_text[i])) {
            while (i < end && IsDigit(m_text[i])) {
                ++magnitude;
                ++i;
            }
        } else if (i < end && m_text[i] == '.') {
            ++i;
            while (i < end && m_text[i] == '0') {
                --magnitude;
                ++i;
            }
        }
        long exponent = 0;
        size_t e = m_text.find_first_of("eE", start);
        if (e != std::string::npos && e < end) {
            for (size_t k = e + 1; k < end; ++k)
                if (IsDigit(m_text[k]))
                    exponent = std::min(exponent * 10 + (m_text[k] - '0'), 100000000L);
            if (negativeExponent)
                exponent = -exponent;
        }
        return magnitude + exponent > 0;
    }

    Formula& m_f;
    const std::string& m_text;
    const std::vector<std::string>& m_names;
    std::vector<int> m_usedIndex;
    size_t m_pos = 0;
    int m_depth = 0;
    uint32_t m_stack = 0;
};

Formula::Formula(const std::string& text, const std::vector<std::string>& variableNames)
    : m_text(text) {
    FormulaParser parser(*this, variableNames);
    parser.Parse();
}

double Formula::EvaluateFloat(FormulaVariables& variables) const {
    if (!m_evaluationError.empty())
        throw LOGICAL_ERROR_EXCEPTION("%s", m_evaluationError.c_str());
    ValueBuffer<double> variableValues(m_usedVariables.size());
    double* vars = variableValues.data();
    for (size_t i = 0; i < m_usedVariables.size(); ++i)
        vars[i] = variables.GetFloat(m_usedVariables[i]);

    ValueBuffer<double> stack(m_maxStack);
    double* s = stack.data();
    s[0] = 0.0; // the program always leaves its result here; this only quiets the compiler
    size_t n = 0;
    for (const Instruction& in : m_program) {
        switch (in.op) {
        case Op::Constant:
            s[n++] = m_floatConstants[in.index];
            break;
        case Op::Variable:
            s[n++] = vars[in.index];
            break;
        case Op::Negate:
            s[n - 1] = -s[n - 1];
            break;
        case Op::BitNot:
            s[n - 1] = Int32Result(~LowBits(s[n - 1], m_text));
            break;
        case Op::LogicalNot:
            s[n - 1] = Bool(s[n - 1] == 0.0);
            break;
        case Op::Select:
            s[n - 3] = s[n - 3] != 0.0 ? s[n - 2] : s[n - 1];
            n -= 2;
            break;
        case Op::Sgn:
            s[n - 1] = s[n - 1] > 0.0 ? 1.0 : (s[n - 1] < 0.0 ? -1.0 : 0.0);
            break;
        case Op::Neg:
            s[n - 1] = -s[n - 1];
            break;
        case Op::Abs:
            s[n - 1] = std::fabs(s[n - 1]);
            break;
        case Op::Sqrt:
            s[n - 1] = std::sqrt(s[n - 1]);
            break;
        case Op::Trunc:
            s[n - 1] = std::trunc(s[n - 1]);
            break;
        case Op::Floor:
            s[n - 1] = std::floor(s[n - 1]);
            break;
        case Op::Ceil:
            s[n - 1] = std::ceil(s[n - 1]);
            break;
        case Op::Round:
            s[n - 1] = std::round(s[n - 1]);
            break;
        case Op::Sin:
            s[n - 1] = std::sin(s[n - 1]);
            break;
        case Op::Cos:
            s[n - 1] = std::cos(s[n - 1]);
            break;
        case Op::Tan:
            s[n - 1] = std::tan(s[n - 1]);
            break;
        case Op::Asin:
            s[n - 1] = std::asin(s[n - 1]);
            break;
        case Op::Acos:
            s[n - 1] = std::acos(s[n - 1]);
            break;
        case Op::Atan:
            s[n - 1] = std::atan(s[n - 1]);
            break;
        case Op::Exp:
            s[n - 1] = std::exp(s[n - 1]);
            break;
        case Op::Ln:
            s[n - 1] = std::log(s[n - 1]);
            break;
        case Op::Lg:
            s[n - 1] = std::log10(s[n - 1]);
            break;
        default: {
            double b = s[--n];
            double& a = s[n - 1];
            switch (in.op) {
            case Op::Add:
                a = a + b;
                break;
            case Op::Subtract:
                a = a - b;
                break;
            case Op::Multiply:
                a = a * b;
                break;
            case Op::Divide:
                if (b == 0.0)
                    ThrowDivisionByZero(m_text);
                a = a / b;
                break;
            case Op::Remainder:
                a = static_cast<double>(IntRemainder(ToInt64(a), ToInt64(b), m_text));
                break;
            case Op::Power:
                a = std::pow(a, b);
                break;
            case Op::ShiftLeft:
            case Op::ShiftRight:
            case Op::BitAnd:
            case Op::BitXor:
            case Op::BitOr:
                a = Float32BitOp(in.op, a, b, m_text);
                break;
            case Op::Less:
                a = Bool(a < b);
                break;
            case Op::Greater:
                a = Bool(a > b);
                break;
            case Op::LessEqual:
                a = Bool(a <= b);
                break;
            case Op::GreaterEqual:
                a = Bool(a >= b);
                break;
            case Op::Equal:
                a = Bool(a == b);
                break;
            case Op::NotEqual:
                a = Bool(a != b);
                break;
            case Op::LogicalAnd:
                a = Bool(a != 0.0 && b != 0.0);
                break;
            case Op::LogicalOr:
                a = Bool(a != 0.0 || b != 0.0);
                break;
            case Op::Round2:
                a = FloatRoundDigits(a, b);
                break;
            default:
                break;
            }
        }
        }
    }
    return s[0];
}

int64_t Formula::EvaluateInt(FormulaVariables& variables) const {
    if (!m_evaluationError.empty())
        throw LOGICAL_ERROR_EXCEPTION("%s", m_evaluationError.c_str());
    if (!m_integerModeError.empty())
        throw LOGICAL_ERROR_EXCEPTION("%s", m_integerModeError.c_str());
    ValueBuffer<int64_t> variableValues(m_usedVariables.size());
    int64_t* vars = variableValues.data();
    for (size_t i = 0; i < m_usedVariables.size(); ++i)
        vars[i] = variables.GetInt(m_usedVariables[i]);

    auto viaDouble = [](int64_t value, double (*function)(double)) {
        return ToInt64(function(static_cast<double>(value)));
    };

    ValueBuffer<int64_t> stack(m_maxStack);
    int64_t* s = stack.data();
    s[0] = 0;
    size_t n = 0;
    for (const Instruction& in : m_program) {
        switch (in.op) {
        case Op::Constant:
            s[n++] = m_intConstants[in.index];
            break;
        case Op::Variable:
            s[n++] = vars[in.index];
            break;
        case Op::Negate:
            s[n - 1] = WrapNeg(s[n - 1]);
            break;
        case Op::BitNot:
            s[n - 1] = ~s[n - 1];
            break;
        case Op::LogicalNot:
            s[n - 1] = s[n - 1] == 0 ? 1 : 0;
            break;
        case Op::Select:
            s[n - 3] = s[n - 3] != 0 ? s[n - 2] : s[n - 1];
            n -= 2;
            break;
        case Op::Sgn:
            s[n - 1] = IntSgn(s[n - 1]);
            break;
        case Op::Neg:
            s[n - 1] = WrapNeg(s[n - 1]);
            break;
        case Op::Abs:
            s[n - 1] = IntAbs(s[n - 1]);
            break;
        case Op::Trunc:
        case Op::Floor:
        case Op::Ceil:
        case Op::Round:
            break;
        case Op::Sqrt:
            s[n - 1] = viaDouble(s[n - 1], [](double x) { return std::sqrt(x); });
            break;
        case Op::Sin:
            s[n - 1] = viaDouble(s[n - 1], [](double x) { return std::sin(x); });
            break;
        case Op::Cos:
            s[n - 1] = viaDouble(s[n - 1], [](double x) { return std::cos(x); });
            break;
        case Op::Tan:
            s[n - 1] = viaDouble(s[n - 1], [](double x) { return std::tan(x); });
            break;
        case Op::Asin:
            s[n - 1] = viaDouble(s[n - 1], [](double x) { return std::asin(x); });
            break;
        case Op::Acos:
            s[n - 1] = viaDouble(s[n - 1], [](double x) { return std::acos(x); });
            break;
        case Op::Atan:
            s[n - 1] = viaDouble(s[n - 1], [](double x) { return std::atan(x); });
            break;
        case Op::Exp:
            s[n - 1] = viaDouble(s[n - 1], [](double x) { return std::exp(x); });
            break;
        case Op::Ln:
            s[n - 1] = viaDouble(s[n - 1], [](double x) { return std::log(x); });
            break;
        case Op::Lg:
            s[n - 1] = viaDouble(s[n - 1], [](double x) { return std::log10(x); });
            break;
        default: {
            int64_t b = s[--n];
            int64_t& a = s[n - 1];
            switch (in.op) {
            case Op::Add:
                a = WrapAdd(a, b);
                break;
            case Op::Subtract:
                a = WrapSub(a, b);
                break;
            case Op::Multiply:
                a = WrapMul(a, b);
                break;
            case Op::Divide:
                a = IntDivide(a, b, m_text);
                break;
            case Op::Remainder:
                a = IntRemainder(a, b, m_text);
                break;
            case Op::Power:
                a = IntPower(a, b, m_text);
                break;
            case Op::ShiftLeft:
                a = IntShiftLeft(a, b);
                break;
            case Op::ShiftRight:
                a = IntShiftRight(a, b);
                break;
            case Op::Less:
                a = a < b;
                break;
            case Op::Greater:
                a = a > b;
                break;
            case Op::LessEqual:
                a = a <= b;
                break;
            case Op::GreaterEqual:
                a = a >= b;
                break;
            case Op::Equal:
                a = a == b;
                break;
            case Op::NotEqual:
                a = a != b;
                break;
            case Op::BitAnd:
                a = a & b;
                break;
            case Op::BitXor:
                a = a ^ b;
                break;
            case Op::BitOr:
                a = a | b;
                break;
            case Op::LogicalAnd:
                a = (a != 0 && b != 0) ? 1 : 0;
                break;
            case Op::LogicalOr:
                a = (a != 0 || b != 0) ? 1 : 0;
                break;
            case Op::Round2:
                a = IntRoundDigits(a, b);
                break;
            default:
                break;
            }
        }
        }
    }
    return s[0];
}

} // namespace detail
} // namespace GenApi
