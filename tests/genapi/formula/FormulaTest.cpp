// The SwissKnife formula language (genapi/src/formula/Formula.h): every operator and function,
// precedence and associativity, integer versus floating-point evaluation, literals, variables,
// syntax errors, nesting limits, division by zero and wrap-around.
#include "formula/Formula.h"

#include <Base/GCException.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

using GenApi::detail::Formula;
using GenApi::detail::FormulaVariables;

namespace {

constexpr int64_t kMin = std::numeric_limits<int64_t>::min();
constexpr int64_t kMax = std::numeric_limits<int64_t>::max();
constexpr double kInf = std::numeric_limits<double>::infinity();
const double kPi = std::acos(-1.0);

// Variables from two maps; records every read.
class MapVariables : public FormulaVariables {
public:
    std::map<std::string, double> floats;
    std::map<std::string, int64_t> ints;
    std::vector<std::string> reads;

    double GetFloat(const std::string& name) override {
        reads.push_back("F:" + name);
        auto it = floats.find(name);
        if (it == floats.end())
            throw ACCESS_EXCEPTION("no float variable '%s'", name.c_str());
        return it->second;
    }
    int64_t GetInt(const std::string& name) override {
        reads.push_back("I:" + name);
        auto it = ints.find(name);
        if (it == ints.end())
            throw ACCESS_EXCEPTION("no integer variable '%s'", name.c_str());
        return it->second;
    }
};

double EvalFloat(const std::string& text, const std::vector<std::string>& names = {}) {
    MapVariables none;
    return Formula(text, names).EvaluateFloat(none);
}

int64_t EvalInt(const std::string& text, const std::vector<std::string>& names = {}) {
    MapVariables none;
    return Formula(text, names).EvaluateInt(none);
}

// One text, its floating-point result and its integer result (kFails: integer evaluation throws
// LogicalErrorException, as for every formula with a non-integer literal).
struct Case {
    const char* text;
    double floatResult;
    std::optional<int64_t> intResult;
};
const std::optional<int64_t> kFails;

void ExpectCases(const std::vector<Case>& cases) {
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        double f = 0;
        int64_t i = 0;
        ASSERT_NO_THROW(f = EvalFloat(c.text));
        if (c.intResult) {
            ASSERT_NO_THROW(i = EvalInt(c.text));
        } else {
            EXPECT_THROW(EvalInt(c.text), GenICam::LogicalErrorException);
        }
        if (std::isnan(c.floatResult)) {
            EXPECT_TRUE(std::isnan(f)) << f;
        } else if (std::isinf(c.floatResult)) {
            EXPECT_EQ(f, c.floatResult);
        } else {
            EXPECT_NEAR(f, c.floatResult, 1e-12 * std::max(1.0, std::fabs(c.floatResult)));
        }
        if (c.intResult) {
            EXPECT_EQ(i, *c.intResult);
        }
    }
}

// The description of the RuntimeException the text raises when parsed ("" when none).
std::string SyntaxError(const std::string& text, const std::vector<std::string>& names = {}) {
    try {
        Formula formula(text, names);
    } catch (const GenICam::RuntimeException& e) {
        return e.GetDescription();
    } catch (...) {
        return "wrong exception class";
    }
    return "";
}

} // namespace

TEST(Formula, ArithmeticOperators) {
    ExpectCases({
        {"1+2", 3, 3},        {"5-7", -2, -2},       {"6*7", 42, 42},
        {"7/2", 3.5, 3},      {"-7/2", -3.5, -3},    {"7/-2", -3.5, -3},
        {"7%3", 1, 1},        {"-7%3", -1, -1},      {"7%-3", 1, 1},
        {"7.9%3", 1, kFails}, {"2**10", 1024, 1024}, {"2**0.5", std::sqrt(2.0), kFails},
        {"2**-1", 0.5, 0},    {"(-2)**3", -8, -8},   {"1**-5", 1, 1},
        {"(-1)**-3", -1, -1}, {"(-1)**-4", 1, 1},    {"-5", -5, -5},
        {"+5", 5, 5},         {"--5", 5, 5},         {"-+-5", 5, 5},
    });
}

TEST(Formula, BitwiseAndShiftOperators) {
    ExpectCases({
        {"12&10", 8, 8},
        {"12|10", 14, 14},
        {"12^10", 6, 6},
        {"~0", -1, -1},
        {"~5", -6, -6},
        {"1<<4", 16, 16},
        {"256>>4", 16, 16},
        {"-16>>2", -4, -4},
        {"-1>>1", -1, -1},
        {"0x1F&0xF0", 16, 16},
        // floating-point operands are truncated toward zero to int64 first
        {"12.9&10.2", 8, kFails},
        {"-2.5|0", -2, kFails},
        {"~0.5", -1, kFails},
        {"1.9<<1.9", 2, kFails},
    });
}

TEST(Formula, ComparisonAndLogicalOperatorsYieldOneOrZero) {
    ExpectCases({
        {"3<5", 1, 1},
        {"5<3", 0, 0},
        {"3>5", 0, 0},
        {"5>3", 1, 1},
        {"3<=3", 1, 1},
        {"4<=3", 0, 0},
        {"3>=3", 1, 1},
        {"2>=3", 0, 0},
        {"3=3", 1, 1},
        {"3=4", 0, 0},
        {"3<>4", 1, 1},
        {"3<>3", 0, 0},
        {"2&&3", 1, 1},
        {"2&&0", 0, 0},
        {"0||0", 0, 0},
        {"0||5", 1, 1},
        {"!0", 1, 1},
        {"!7", 0, 0},
        {"!!7", 1, 1},
        {"!-3", 0, 0},
        {"1?2:3", 2, 2},
        {"0?2:3", 3, 3},
        {"-1?2:3", 2, 2},
        // the same text differs where a fraction is involved
        {"1.5<2", 1, kFails},
        {"0.5?10:20", 10, kFails},
        {"0.5&&1", 1, kFails},
        {"0.5||0", 1, kFails},
        {"!0.5", 0, kFails},
        {"2.5=2", 0, kFails},
    });
}

TEST(Formula, PrecedenceAndAssociativity) {
    ExpectCases({
        {"2+3*4", 14, 14},
        {"(2+3)*4", 20, 20},
        {"2*3+4", 10, 10},
        {"10-4-3", 3, 3},
        {"2-3+4", 3, 3},
        {"100/10/5", 2, 2},
        {"7%4*2", 6, 6},
        {"7*4%5", 3, 3},
        {"1-2*3%4", -1, -1},
        // ** : right-associative, above * and above a prefix operator on its left
        {"2**3**2", 512, 512},
        {"(2**3)**2", 64, 64},
        {"2*3**2", 18, 18},
        {"-2**2", -4, -4},
        {"(-2)**2", 4, 4},
        {"-2**2+1", -3, -3},
        {"2**-2", 0.25, 0},
        {"2**-1**2", 0.5, 0},
        {"~1+1", -1, -1},
        {"!0+1", 2, 2},
        {"-3*-3", 9, 9},
        // shifts below + -, comparisons below shifts
        {"1+2<<3", 24, 24},
        {"1<<2+3", 32, 32},
        {"1<<2<<3", 32, 32},
        {"1<<2<8", 1, 1},
        // & above ^ above |, all above the comparisons
        {"1|2^3&4", 3, 3},
        {"5&3|8", 9, 9},
        {"6^3&5", 7, 7},
        {"1|6^6", 1, 1},
        {"6&3=2", 1, 1},
        {"1|2=3", 1, 1},
        {"0&&0|1", 0, 0},
        {"2|1&&0", 0, 0},
        // comparisons, && and || share one level, left to right (the reference implementation's
        // order, not C's)
        {"1<2=1", 1, 1},
        {"2=2<1", 0, 0},
        {"5>3>0", 1, 1},
        {"3<2<1", 1, 1},
        {"5=3||5=1", 1, 1},   // ((5=3)||5)=1
        {"(0=2)&&0=0", 1, 1}, // ((0=2)&&0)=0
        {"1||0&&0", 0, 0},    // (1||0)&&0
        {"0&&1||1", 1, 1},
        {"2<>1&&0", 0, 0},
        {"0&&0<>1", 1, 1}, // (0&&0)<>1
        {"(1=1)&&(2=2)", 1, 1},
        // ?: lowest and right-associative
        {"1?2:0?3:4", 2, 2},
        {"0?2:0?3:4", 4, 4},
        {"0?2:1?3:4", 3, 3},
        {"1?0?5:6:7", 6, 6},
        {"0?1:2+3", 5, 5},
        {"1+1?10:20", 10, 10},
        {"3>2?1<<3:0", 8, 8},
        {"0||0?1:2", 2, 2},
        {"(0?1:2)*3", 6, 6},
    });
}

TEST(Formula, IntegerAndFloatingPointResultsOfTheSameText) {
    ExpectCases({
        {"1/3*3", 1, 0},
        {"10/4*4", 10, 8},
        {"PI", kPi, 3},
        {"E", std::exp(1.0), 2},
        {"2*PI", 2 * kPi, 6},
        {"1.5+1.5", 3, kFails},
        {"1e3", 1000, kFails},
        {"1.5e3", 1500, kFails},
        {"2.5e-1", 0.25, kFails},
        {"1e+05", 100000, kFails},
        {"1E2", 100, kFails},
        {".5", 0.5, kFails},
        {"2.", 2, kFails},
        {"SQRT(10)", std::sqrt(10.0), 3},
    });
}

TEST(Formula, HexadecimalLiterals) {
    ExpectCases({
        {"0x10", 16, 16},
        {"0XfF", 255, 255},
        {"0xabcdef", 0xabcdef, 0xabcdef},
        {"0x00000000000000000001", 1, 1},
        {"0x7FFFFFFFFFFFFFFF", 9223372036854775807.0, kMax},
        {"0x8000000000000000", -9223372036854775808.0, kMin},
        {"0xFFFFFFFFFFFFFFFF", -1, -1},
        {"0xFFFFFFFF", 4294967295.0, 4294967295LL},
        {"0x10+0x10", 32, 32},
    });
}

TEST(Formula, Functions) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    ExpectCases({
        {"SGN(-3.5)", -1, kFails},
        {"SGN(0)", 0, 0},
        {"SGN(2)", 1, 1},
        {"NEG(4)", -4, -4},
        {"NEG(-4)", 4, 4},
        {"ABS(-2.5)", 2.5, kFails},
        {"ABS(3)", 3, 3},
        {"SQRT(16)", 4, 4},
        {"SQRT(-1)", nan, 0},
        {"TRUNC(-2.7)", -2, kFails},
        {"TRUNC(2.7)", 2, kFails},
        {"FLOOR(-2.5)", -3, kFails},
        {"FLOOR(2.5)", 2, kFails},
        {"CEIL(2.1)", 3, kFails},
        {"CEIL(-2.1)", -2, kFails},
        {"ROUND(2.5)", 3, kFails},
        {"ROUND(-2.5)", -3, kFails},
        {"ROUND(2.4)", 2, kFails},
        {"ROUND(3.14159,2)", 3.14, kFails},
        {"ROUND(3.14159, 0)", 3, kFails},
        {"ROUND(-3.14159,3)", -3.142, kFails},
        {"ROUND(1250,-2)", 1300, 1300},
        {"ROUND(-1250,-2)", -1300, -1300},
        {"ROUND(1249,-2)", 1200, 1200},
        {"ROUND(5,-1)", 10, 10},
        {"ROUND(123,-25)", 0, 0},
        {"ROUND(1.5, 400)", 1.5, kFails},
        {"SIN(0)", 0, 0},
        {"SIN(PI/2)", 1, 0},
        {"COS(0)", 1, 1},
        {"TAN(0)", 0, 0},
        {"TAN(PI/4)", 1, 0}, // PI/4 is 0 in integer mode
        {"ASIN(1)", kPi / 2, 1},
        {"ACOS(1)", 0, 0},
        {"ACOS(-1)", kPi, 3},
        {"ATAN(1)", kPi / 4, 0},
        {"EXP(1)", std::exp(1.0), 2},
        {"EXP(0)", 1, 1},
        {"LN(E)", 1, 0},
        {"LN(1)", 0, 0},
        {"LN(0)", -kInf, kMin},
        {"LG(1000)", 3, 3},
        {"LG(0.01)", -2, kFails},
        {"EXP(1000)", kInf, kMax},
        {"SGN(NEG(ABS(-7)))", -1, -1},
        {"SIN(COS(TAN(0)))", std::sin(1.0), 0},
    });
}

TEST(Formula, RoundingFunctionsReturnIntegersUnchanged) {
    ExpectCases({
        {"TRUNC(-7)", -7, -7},
        {"FLOOR(7)", 7, 7},
        {"CEIL(-7)", -7, -7},
        {"ROUND(7)", 7, 7},
        {"ROUND(7, 3)", 7, 7},
        {"ROUND(-15, -1)", -20, -20},
        {"ROUND(-14, -1)", -10, -10},
        {"ROUND(9007199254740993, 0)", 9007199254740992.0, 9007199254740993LL},
    });
}

TEST(Formula, WhitespaceIsAllowedBetweenAllTokens) {
    ExpectCases({
        {" \t1 \n+\r\n 2\t", 3, 3},
        {"- 2", -2, -2},
        {"SIN (0)", 0, 0},
        {"ROUND ( 2.5 , 0 )", 3, kFails},
        {"( 1 ? 2 : 3 )", 2, 2},
        {"2 ** 3", 8, 8},
        {"1 << 2", 4, 4},
        {"1 <> 2", 1, 1},
    });
}

TEST(Formula, LiteralsBeyondTheRanges) {
    // decimal integers above INT64_MAX saturate in integer mode
    EXPECT_EQ(EvalInt("9223372036854775807"), kMax);
    EXPECT_EQ(EvalInt("9223372036854775808"), kMax);
    EXPECT_EQ(EvalInt("99999999999999999999999"), kMax);
    EXPECT_DOUBLE_EQ(EvalFloat("99999999999999999999999"), 1e23);
    EXPECT_EQ(EvalFloat("1e999"), kInf);
    EXPECT_EQ(EvalFloat("1e-999"), 0.0);
    EXPECT_EQ(EvalFloat("0.0000000000000000000000000001e-999"), 0.0);
    EXPECT_EQ(EvalFloat("-1e999"), -kInf);
    EXPECT_EQ(EvalFloat(std::string(400, '9')), kInf);
}

TEST(Formula, IntegerOverflowWrapsAround) {
    EXPECT_EQ(EvalInt("9223372036854775807+1"), kMin);
    EXPECT_EQ(EvalInt("-9223372036854775807-2"), kMax);
    EXPECT_EQ(EvalInt("4611686018427387904*2"), kMin);
    EXPECT_EQ(EvalInt("4611686018427387904*4"), 0);
    EXPECT_EQ(EvalInt("-(-9223372036854775807-1)"), kMin);
    EXPECT_EQ(EvalInt("NEG(-9223372036854775807-1)"), kMin);
    EXPECT_EQ(EvalInt("ABS(-9223372036854775807-1)"), kMin);
    EXPECT_EQ(EvalInt("(-9223372036854775807-1)/-1"), kMin);
    EXPECT_EQ(EvalInt("(-9223372036854775807-1)%-1"), 0);
    EXPECT_EQ(EvalInt("2**62"), int64_t{1} << 62);
    EXPECT_EQ(EvalInt("2**63"), kMin);
    EXPECT_EQ(EvalInt("2**64"), 0);
    EXPECT_EQ(EvalInt("3**40"), -6289078614652622815LL);
    EXPECT_EQ(EvalInt("7**9223372036854775807"), 7905747460161236407LL); // 7**(2**63-1) mod 2**64
    EXPECT_EQ(EvalInt("ROUND(9223372036854775807,-1)"), kMin + 2); // 9223372036854775810 wraps
    EXPECT_EQ(EvalInt("ROUND(-9223372036854775807-1,-18)"), -9000000000000000000LL);
    EXPECT_EQ(EvalInt("ROUND(5,-19)"), 0);
    EXPECT_EQ(EvalInt("ROUND(5,-9223372036854775807-1)"), 0);
    // floating point overflows to infinity, never to an exception
    EXPECT_EQ(EvalFloat("1e308*10"), kInf);
    EXPECT_EQ(EvalFloat("-1e308*10"), -kInf);
    EXPECT_EQ(EvalFloat("10**400"), kInf);
}

TEST(Formula, IntegerShiftCountsAreTakenModulo64) {
    EXPECT_EQ(EvalInt("1<<63"), kMin);
    EXPECT_EQ(EvalInt("1<<64"), 1);
    EXPECT_EQ(EvalInt("1<<79"), 32768);
    EXPECT_EQ(EvalInt("1<<100"), int64_t{1} << 36);
    EXPECT_EQ(EvalInt("1<<9223372036854775807"), kMin);
    EXPECT_EQ(EvalInt("-1<<63"), kMin);
    EXPECT_EQ(EvalInt("3<<62"), kMin / 2);
    EXPECT_EQ(EvalInt("1>>64"), 1);
    EXPECT_EQ(EvalInt("-1>>64"), -1);
    EXPECT_EQ(EvalInt("-1>>100"), -1);
    EXPECT_EQ(EvalInt("-8>>1"), -4);
    EXPECT_EQ(EvalInt("-8>>65"), -4);
    EXPECT_EQ(EvalInt("(-9223372036854775807-1)>>63"), -1);
    EXPECT_EQ(EvalInt("0x7FFFFFFFFFFFFFFF>>62"), 1);
    // a negative count -n is the count 64 - n
    EXPECT_EQ(EvalInt("1<<-1"), kMin);
    EXPECT_EQ(EvalInt("8<<-2"), 0);
    EXPECT_EQ(EvalInt("16>>-60"), 1);
    EXPECT_EQ(EvalInt("1<<(-9223372036854775807-1)"), 1);
    EXPECT_EQ(EvalInt("5>>(-9223372036854775807-1)"), 5);
}

TEST(Formula, FloatingPointBitOperationsUse32BitIntegers) {
    EXPECT_EQ(EvalFloat("1<<31"), -2147483648.0);
    EXPECT_EQ(EvalFloat("1<<32"), 1.0);
    EXPECT_EQ(EvalFloat("1<<64"), 1.0);
    EXPECT_EQ(EvalFloat("(1441563418<<16)>>16"), -31974.0);
    EXPECT_EQ(EvalFloat("-8>>1"), -4.0);
    EXPECT_EQ(EvalFloat("-1>>40"), -1.0);
    EXPECT_EQ(EvalFloat("2147483647|0"), 2147483647.0);
    EXPECT_EQ(EvalFloat("-2147483648|0"), -2147483648.0);
    EXPECT_EQ(EvalFloat("2147483647.9&-1"), 2147483647.0);
    EXPECT_EQ(EvalFloat("~2147483647"), -2147483648.0);
    EXPECT_EQ(EvalFloat("0x7FFFFFFF^0x0F"), 2147483632.0);
    // & | ^ ~ keep the low 32 bits of a wider operand: masks and values past 32 bits wrap
    EXPECT_EQ(EvalFloat("0xFFFFFFFF&1"), 1.0);
    EXPECT_EQ(EvalFloat("2147483648|0"), -2147483648.0);
    EXPECT_EQ(EvalFloat("-2147483649|0"), 2147483647.0);
    EXPECT_EQ(EvalFloat("~4294967296"), -1.0);
    EXPECT_EQ(EvalFloat("(4294967296+21)&0xFFFFFFFC"), 20.0);
    // shift operands outside the int32 range fail, as in the reference implementation, and so
    // does any operand beyond the int64 range
    for (const char* text : {"2147483648<<0", "1>>-2147483649", "1e300&1", "2637482850<<16",
                             "1<<1e300", "SQRT(-1)|0", "(1/0.0000000000000000000000000000001)^0"}) {
        SCOPED_TRACE(text);
        EXPECT_THROW(EvalFloat(text), GenICam::LogicalErrorException);
    }
    // integer mode has the full 64 bits
    EXPECT_EQ(EvalInt("0xFFFFFFFF&1"), 1);
    EXPECT_EQ(EvalInt("(1441563418<<16)>>16"), 1441563418);
    EXPECT_EQ(EvalInt("1<<31"), 2147483648LL);
}

TEST(Formula, DivisionByZeroThrowsLogicalErrorInBothModes) {
    for (const char* text : {"1/0", "1%0", "0/0", "-1/0", "1/(2-2)", "5%(3=4)"}) {
        SCOPED_TRACE(text);
        EXPECT_THROW(EvalFloat(text), GenICam::LogicalErrorException);
        EXPECT_THROW(EvalInt(text), GenICam::LogicalErrorException);
    }
    EXPECT_DOUBLE_EQ(EvalFloat("1/0.5"), 2.0);
    EXPECT_THROW(EvalFloat("5%0.5"), GenICam::LogicalErrorException); // % truncates 0.5 to 0
    EXPECT_THROW(EvalInt("0**-1"), GenICam::LogicalErrorException);
    EXPECT_EQ(EvalFloat("0**-1"), kInf);
    // every operand is evaluated, so the branch that is not taken still fails
    EXPECT_THROW(EvalFloat("1?2:1/0"), GenICam::LogicalErrorException);
    EXPECT_THROW(EvalInt("0&&(1/0)"), GenICam::LogicalErrorException);
    // variables
    MapVariables v;
    v.floats = {{"A", 1.0}, {"B", 0.0}};
    v.ints = {{"A", 1}, {"B", 0}};
    Formula formula("(B<>0)?(A/B):0", {"A", "B"});
    EXPECT_THROW(formula.EvaluateFloat(v), GenICam::LogicalErrorException);
    EXPECT_THROW(formula.EvaluateInt(v), GenICam::LogicalErrorException);
    try {
        formula.EvaluateInt(v);
    } catch (const GenICam::LogicalErrorException& e) {
        EXPECT_NE(std::string(e.GetDescription()).find("division by zero"), std::string::npos);
        EXPECT_NE(std::string(e.GetDescription()).find("(B<>0)?(A/B):0"), std::string::npos);
    }
}

TEST(Formula, VariablesWithDotsAreUsedOnceInFirstUseOrder) {
    Formula formula("X.Max - X.Min + A*A + X.Max", {"A", "B", "X.Min", "X.Max", "X"});
    EXPECT_EQ(formula.UsedVariables(), (std::vector<std::string>{"X.Max", "X.Min", "A"}));

    MapVariables v;
    v.floats = {{"A", 1.5}, {"X.Min", 2.0}, {"X.Max", 10.0}};
    v.ints = {{"A", 3}, {"X.Min", 2}, {"X.Max", 10}};
    EXPECT_DOUBLE_EQ(formula.EvaluateFloat(v), 10 - 2 + 2.25 + 10);
    EXPECT_EQ(v.reads, (std::vector<std::string>{"F:X.Max", "F:X.Min", "F:A"}));
    v.reads.clear();
    EXPECT_EQ(formula.EvaluateInt(v), 10 - 2 + 9 + 10);
    EXPECT_EQ(v.reads, (std::vector<std::string>{"I:X.Max", "I:X.Min", "I:A"}));

    // the longest declared name wins; a declared name must end at a name boundary
    Formula both("X.Min+X", {"X", "X.Min"});
    EXPECT_EQ(both.UsedVariables(), (std::vector<std::string>{"X.Min", "X"}));
    EXPECT_NE(SyntaxError("X.Inc", {"X", "X.Min"}).find("unknown name 'X.Inc'"), std::string::npos);
    EXPECT_NE(SyntaxError("AB", {"A", "B"}).find("unknown name 'AB'"), std::string::npos);
    EXPECT_NE(SyntaxError("A_1", {"A"}).find("unknown name"), std::string::npos);

    // names in every usual form
    MapVariables w;
    w.ints = {{"FROM", 5}, {"TO", 7}, {"Var_1", 1}, {"lower", 2}};
    EXPECT_EQ(Formula("FROM*TO+Var_1-lower", {"FROM", "TO", "Var_1", "lower"}).EvaluateInt(w), 34);

    Formula none("1+2", {"A"});
    EXPECT_TRUE(none.UsedVariables().empty());
}

TEST(Formula, DeclaredNamesShadowBuiltInConstantsAndFunctions) {
    MapVariables v;
    v.floats = {{"PI", 10.0}, {"E", 0.5}, {"SIN", 4.0}};
    v.ints = {{"PI", 10}, {"E", 5}, {"SIN", 4}};
    EXPECT_DOUBLE_EQ(Formula("PI*2", {"PI"}).EvaluateFloat(v), 20.0);
    EXPECT_EQ(Formula("PI*2", {"PI"}).EvaluateInt(v), 20);
    EXPECT_DOUBLE_EQ(Formula("E+PI", {"E"}).EvaluateFloat(v), 0.5 + kPi);
    EXPECT_EQ(Formula("E+PI", {"E"}).EvaluateInt(v), 8);
    EXPECT_DOUBLE_EQ(Formula("SIN+1", {"SIN"}).EvaluateFloat(v), 5.0);
    // the declared SIN is a variable, so it cannot be called
    EXPECT_NE(SyntaxError("SIN(1)", {"SIN"}), "");
    // without the declaration they are the built-ins again
    EXPECT_NEAR(EvalFloat("PI*2"), 2 * kPi, 1e-12);
}

TEST(Formula, BuiltInNamesAreUpperCase) {
    for (const char* text : {"pi", "Pi", "e", "sin(0)", "Sin(0)", "round(1)", "sqrt(4)"}) {
        SCOPED_TRACE(text);
        EXPECT_NE(SyntaxError(text).find("unknown name"), std::string::npos);
    }
}

TEST(Formula, SyntaxErrorsThrowRuntimeExceptionNamingProblemAndPosition) {
    struct ErrorCase {
        const char* text;
        const char* fragment; // part of the description
    };
    const ErrorCase cases[] = {
        {"", "empty"},
        {"   \t\n", "empty"},
        {"(1+2", "unbalanced '(': no matching ')' at position 1"},
        {"((1)", "no matching ')' at position 1"},
        {"1+2)", "unbalanced ')' at position 4"},
        {"(1))", "unbalanced ')' at position 4"},
        {")", "expected an operand but found ')' at position 1"},
        {"()", "expected an operand but found ')' at position 2"},
        {"1+", "expected an operand but found the end of the formula at position 3"},
        {"1*", "end of the formula"},
        {"1 <<", "end of the formula"},
        {"-", "end of the formula"},
        {"*2", "expected an operand but found '*' at position 1"},
        {"2* *3", "found '*' at position 4"},
        {"1 2", "expected an operator but found '2' at position 3"},
        {"1==1", "found '=' at position 3"},
        {"1!=1", "expected an operator but found '!' at position 2"},
        {"FOO", "unknown name 'FOO' at position 1"},
        {"1+FOO*2", "unknown name 'FOO' at position 3"},
        {"SIN", "function SIN needs '('"},
        {"SIN+1", "function SIN needs '('"},
        {"SIN()", "function SIN needs an argument"},
        {"SIN(1,2)", "function SIN takes one argument"},
        {"ROUND()", "function ROUND needs an argument"},
        {"ROUND(1,2,3)", "function ROUND takes at most two arguments"},
        {"ROUND(1,)", "expected an operand"},
        {"ROUND(1", "unbalanced '('"},
        {"1?2", "expected ':' of the conditional operator"},
        {"1?2:", "end of the formula"},
        {"?1:2", "expected an operand but found '?'"},
        {"1:2", "expected an operator but found ':'"},
        {"0x", "hexadecimal literal without digits at position 1"},
        {"1+0xG", "hexadecimal literal without digits at position 3"},
        {"0x1FFFFFFFFFFFFFFFF", "hexadecimal literal wider than 64 bits"},
        {"1e", "expected an operator but found 'e'"},
        {"1.2.3", "expected an operator but found '.'"},
        {"12abc", "expected an operator but found 'a'"},
        {"1,2", "expected an operator but found ','"},
        {"@", "expected an operand but found '@'"},
        {"1 $ 2", "found '$' at position 3"},
        {"\x01", "byte 0x01"},
        {"1\xff", "byte 0xff at position 2"},
    };
    for (const ErrorCase& c : cases) {
        SCOPED_TRACE(c.text);
        std::string description = SyntaxError(c.text);
        EXPECT_NE(description, "") << "no exception";
        EXPECT_NE(description.find(c.fragment), std::string::npos) << description;
    }
    // the description quotes the formula
    EXPECT_NE(SyntaxError("A+B*").find("Formula 'A+B*'"), std::string::npos);
    EXPECT_THROW(Formula("1+", {}), GenICam::RuntimeException);
}

TEST(Formula, NestingIsBoundedAndReportedAsSyntaxError) {
    auto nested = [](const std::string& open, const std::string& inner, const std::string& close,
                     int n) {
        std::string text;
        for (int i = 0; i < n; ++i)
            text += open;
        text += inner;
        for (int i = 0; i < n; ++i)
            text += close;
        return text;
    };
    // parentheses: the whole formula is one level, each pair one more
    EXPECT_EQ(EvalInt(nested("(", "7", ")", Formula::kMaxNestingDepth - 1)), 7);
    EXPECT_NE(SyntaxError(nested("(", "7", ")", Formula::kMaxNestingDepth)).find("nesting deeper"),
              std::string::npos);
    EXPECT_EQ(EvalInt(nested("-", "7", "", 200)), 7);
    for (const std::string& text :
         {nested("(", "1", ")", 300), nested("-", "1", "", 300), nested("!", "1", "", 300),
          nested("2**", "1", "", 300), nested("SIN(", "0", ")", 300), nested("1?1:", "1", "", 300),
          nested("1?", "1", ":1", 300), nested("ROUND(1,", "1", ")", 300),
          nested("(", "", "", 100000), nested("-", "", "", 100000),
          nested("((-~!", "1", ")", 5000)}) {
        SCOPED_TRACE(text.substr(0, 20));
        EXPECT_NE(SyntaxError(text).find("nesting deeper than 256 levels"), std::string::npos);
    }
    // long flat formulas are fine
    std::string sum = "1";
    for (int i = 0; i < 10000; ++i)
        sum += "+1";
    EXPECT_EQ(EvalInt(sum), 10001);
    EXPECT_DOUBLE_EQ(EvalFloat(sum), 10001.0);
}

TEST(Formula, ConstructsTheReferenceRejectsFailWhenEvaluated) {
    MapVariables v;
    v.floats = {{"TO", 10.0}, {"C", 1.0}, {"A", 2.0}};
    v.ints = {{"TO", 10}, {"C", 1}, {"A", 2}};
    // a non-integer literal in integer mode
    for (const char* text : {"TO / 4.0", "TO * 1e3", "TO + .5", "TO - 2.", "C ? TO : 0.5"}) {
        SCOPED_TRACE(text);
        Formula formula(text, {"TO", "C"});
        EXPECT_NO_THROW(formula.EvaluateFloat(v));
        EXPECT_THROW(formula.EvaluateInt(v), GenICam::LogicalErrorException);
    }
    try {
        Formula("TO / 4.0", {"TO"}).EvaluateInt(v);
        ADD_FAILURE() << "no exception";
    } catch (const GenICam::LogicalErrorException& e) {
        EXPECT_NE(std::string(e.GetDescription()).find("literal '4.0' at position 6"),
                  std::string::npos)
            << e.GetDescription();
    }
    EXPECT_EQ(Formula("TO / 4", {"TO"}).EvaluateInt(v), 2);
    EXPECT_EQ(Formula("TO / 0x4", {"TO"}).EvaluateInt(v), 2);
    // a '-' sign directly after '?'
    for (const char* text : {"C ? -(A + 1) : A", "C?-1:2", "C ?  - A : A", "(C ? -A : A)"}) {
        SCOPED_TRACE(text);
        Formula formula(text, {"C", "A"});
        EXPECT_THROW(formula.EvaluateFloat(v), GenICam::LogicalErrorException);
        EXPECT_THROW(formula.EvaluateInt(v), GenICam::LogicalErrorException);
    }
    // the usual ways around it, and signs elsewhere, are fine
    for (const char* text : {"C ? NEG(A + 1) : A", "C ? (-(A + 1)) : A", "C ? 0-(A + 1) : A",
                             "!C ? A : -(A + 1)", "-(A + 1)", "(-(A + 1))"}) {
        SCOPED_TRACE(text);
        Formula formula(text, {"C", "A"});
        EXPECT_DOUBLE_EQ(formula.EvaluateFloat(v), -3.0);
        EXPECT_EQ(formula.EvaluateInt(v), -3);
    }
}

TEST(Formula, ErrorsOfVariablesPassThrough) {
    Formula formula("A+B", {"A", "B"});
    MapVariables v;
    v.floats = {{"A", 1.0}};
    EXPECT_THROW(formula.EvaluateFloat(v), GenICam::AccessException);
}

TEST(Formula, IsCopyableAndMovable) {
    Formula original("A*2+1", {"A"});
    Formula copy = original;
    Formula moved = std::move(original);
    Formula assigned("0", {});
    assigned = copy;
    MapVariables v;
    v.floats = {{"A", 1.5}};
    v.ints = {{"A", 4}};
    EXPECT_DOUBLE_EQ(copy.EvaluateFloat(v), 4.0);
    EXPECT_EQ(moved.EvaluateInt(v), 9);
    EXPECT_EQ(assigned.EvaluateInt(v), 9);
    EXPECT_EQ(assigned.UsedVariables(), (std::vector<std::string>{"A"}));
    EXPECT_EQ(assigned.Text(), "A*2+1");
}

TEST(Formula, TypicalDescriptionFormulas) {
    MapVariables v;
    v.ints = {{"HI", 0x12}, {"LO", 0x345}, {"FEAT", 40}, {"GEVOPT", 0},      {"IPOPT", 0x100},
              {"MCCB", 7},  {"SCCB", 8},   {"FROM", 1},  {"OLD", 0x0100FFFF}};
    EXPECT_EQ(Formula(" (HI << 32) | LO ", {"HI", "LO"}).EvaluateInt(v), 0x1200000345LL);
    EXPECT_EQ(Formula("(FEAT<32)?((GEVOPT>>FEAT)&0x1):((FEAT<64)?((IPOPT>>(FEAT-32))&0x1) : "
                      "((FEAT=65)?MCCB:((FEAT=66)?SCCB:0)))",
                      {"FEAT", "GEVOPT", "IPOPT", "MCCB", "SCCB"})
                  .EvaluateInt(v),
              1);
    EXPECT_EQ(Formula("\nFROM=0 ? ( ( OLD | 0x40000000 ) & 0xFEFFFFFF ) :\n( FROM=1 ? ( ( OLD & "
                      "0xFEFFFFFF ) | 0x44000000 ) :\n( OLD | 0x41000000 ) )\n",
                      {"FROM", "OLD"})
                  .EvaluateInt(v),
              0x4400FFFF);
    v.floats = {{"TO", 40000}, {"RAW", 3}, {"DECPT", 2}};
    EXPECT_DOUBLE_EQ(
        Formula("ROUND(((TO > 32767 ? (TO - 65536) : TO) / 100),0) + 273", {"TO"}).EvaluateFloat(v),
        18.0);
    EXPECT_DOUBLE_EQ(Formula("RAW/(2**DECPT)*100", {"RAW", "DECPT"}).EvaluateFloat(v), 75.0);
}
