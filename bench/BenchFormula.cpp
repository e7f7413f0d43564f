// Cost of a typical SwissKnife formula, "(A*B+C)/D > 0 ? A<<2 : B&0xFF": parsing it once, and
// evaluating it in integer and floating-point mode through the variable resolver, against the
// same expression written as plain C++.
#include "formula/Formula.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace {

const char* const kText = "(A*B+C)/D > 0 ? A<<2 : B&0xFF";
const std::vector<std::string> kNames = {"A", "B", "C", "D"};

// A resolver as the node map has one: look the name up among the formula's declared variables.
class Variables : public GenApi::detail::FormulaVariables {
public:
    Variables() : m_values{{"A", 7}, {"B", 300}, {"C", -5}, {"D", 3}} {}
    double GetFloat(const std::string& name) override { return static_cast<double>(Find(name)); }
    int64_t GetInt(const std::string& name) override { return Find(name); }

private:
    int64_t Find(const std::string& name) const {
        for (const auto& entry : m_values)
            if (entry.first == name)
                return entry.second;
        return 0;
    }
    std::vector<std::pair<std::string, int64_t>> m_values;
};

void BM_FormulaParse(benchmark::State& state) {
    for (auto _ : state) {
        GenApi::detail::Formula formula(kText, kNames);
        benchmark::DoNotOptimize(formula.UsedVariables().data());
    }
}

void BM_FormulaEvaluateInt(benchmark::State& state) {
    GenApi::detail::Formula formula(kText, kNames);
    Variables variables;
    for (auto _ : state)
        benchmark::DoNotOptimize(formula.EvaluateInt(variables));
}

void BM_FormulaEvaluateFloat(benchmark::State& state) {
    GenApi::detail::Formula formula(kText, kNames);
    Variables variables;
    for (auto _ : state)
        benchmark::DoNotOptimize(formula.EvaluateFloat(variables));
}

void BM_PlainCppInt(benchmark::State& state) {
    int64_t a = 7, b = 300, c = -5, d = 3;
    for (auto _ : state) {
        benchmark::DoNotOptimize(a);
        benchmark::DoNotOptimize(b);
        benchmark::DoNotOptimize(c);
        benchmark::DoNotOptimize(d);
        int64_t result = (a * b + c) / d > 0 ? a << 2 : b & 0xFF;
        benchmark::DoNotOptimize(result);
    }
}

void BM_PlainCppFloat(benchmark::State& state) {
    double a = 7, b = 300, c = -5, d = 3;
    for (auto _ : state) {
        benchmark::DoNotOptimize(a);
        benchmark::DoNotOptimize(b);
        benchmark::DoNotOptimize(c);
        benchmark::DoNotOptimize(d);
        double result = (a * b + c) / d > 0 ? static_cast<double>(static_cast<int32_t>(a) << 2)
                                            : static_cast<double>(static_cast<int32_t>(b) & 0xFF);
        benchmark::DoNotOptimize(result);
    }
}

BENCHMARK(BM_FormulaParse);
BENCHMARK(BM_PlainCppInt);
BENCHMARK(BM_FormulaEvaluateInt);
BENCHMARK(BM_PlainCppFloat);
BENCHMARK(BM_FormulaEvaluateFloat);

} // namespace
