// libFuzzer target: the input is formula text. It is parsed with a few declared names (plain,
// dotted, and ones that shadow the built-in PI, E and SIN) and, when it parses, evaluated in both
// modes against variables whose values vary with the input (zero, extremes, NaN, infinities).
// Only GenICam exceptions may leave the formula code; anything else, a crash or a sanitizer
// report is a finding.
#include "formula/Formula.h"

#include <Base/GCException.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string>
#include <vector>

namespace {

class FuzzVariables : public GenApi::detail::FormulaVariables {
public:
    explicit FuzzVariables(uint64_t seed) : m_seed(seed) {}

    double GetFloat(const std::string& name) override {
        static const double kValues[] = {0.0,
                                         -0.0,
                                         1.0,
                                         -1.0,
                                         2.5,
                                         -7.75,
                                         1e300,
                                         -1e300,
                                         4.9e-324,
                                         9.2233720368547758e18,
                                         -9.2233720368547758e18,
                                         std::numeric_limits<double>::infinity(),
                                         -std::numeric_limits<double>::infinity(),
                                         std::numeric_limits<double>::quiet_NaN(),
                                         64.0,
                                         63.0};
        return kValues[Pick(name) % (sizeof kValues / sizeof kValues[0])];
    }

    int64_t GetInt(const std::string& name) override {
        static const int64_t kValues[] = {0,
                                          1,
                                          -1,
                                          2,
                                          63,
                                          64,
                                          -64,
                                          255,
                                          0x7FFFFFFF,
                                          std::numeric_limits<int64_t>::max(),
                                          std::numeric_limits<int64_t>::min(),
                                          -3,
                                          10,
                                          1000};
        return kValues[Pick(name) % (sizeof kValues / sizeof kValues[0])];
    }

private:
    uint64_t Pick(const std::string& name) {
        uint64_t h = m_seed;
        for (char c : name)
            h = (h ^ static_cast<unsigned char>(c)) * 1099511628211ull;
        m_seed = m_seed * 6364136223846793005ull + 1442695040888963407ull;
        return h >> 7;
    }
    uint64_t m_seed;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > 4096)
        return 0;
    std::string text(reinterpret_cast<const char*>(data), size);
    static const std::vector<std::string> kNames = {"A",  "B",   "X.Min", "X.Max", "X",
                                                    "PI", "SIN", "FROM",  "TO",    "Var_1"};
    uint64_t seed = 0;
    for (size_t i = 0; i < size && i < 8; ++i)
        seed = seed * 131 + data[i];
    try {
        GenApi::detail::Formula formula(text, kNames);
        GenApi::detail::Formula copy = formula; // copies must work as well as the original
        for (int round = 0; round < 3; ++round) {
            FuzzVariables variables(seed + static_cast<uint64_t>(round));
            try {
                volatile double f = copy.EvaluateFloat(variables);
                (void)f;
            } catch (const GenICam::LogicalErrorException&) {
            }
            try {
                volatile int64_t i = formula.EvaluateInt(variables);
                (void)i;
            } catch (const GenICam::LogicalErrorException&) {
            }
        }
    } catch (const GenICam::RuntimeException&) {
    }
    return 0;
}
