#include "Waiting.h"

#include "Errors.h"

#include <Base/GCException.h>

#include <algorithm>
#include <chrono>
#include <cmath>

namespace py = pybind11;

namespace OrvanPy {
namespace {

constexpr uint64_t kSliceMs = 100;

using Clock = std::chrono::steady_clock;

void CheckSignals() {
    if (PyErr_CheckSignals() != 0)
        throw py::error_already_set();
}

} // namespace

uint64_t Milliseconds(double seconds) {
    if (!std::isfinite(seconds) || seconds < 0)
        ThrowInvalidArgument("a timeout is a number of seconds, 0 or more");
    return static_cast<uint64_t>(std::llround(seconds * 1000.0));
}

void WaitInSlices(Timeout timeout, const std::function<bool(uint64_t)>& attempt,
                  const std::function<bool()>& stillWanted, const char* reason) {
    const bool forever = !timeout.has_value();
    const uint64_t total = forever ? 0 : Milliseconds(*timeout);
    const Clock::time_point deadline = Clock::now() + std::chrono::milliseconds(total);
    for (;;) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
        const uint64_t remaining = left.count() > 0 ? uint64_t(left.count()) : 0;
        const uint64_t slice = forever ? kSliceMs : std::min(kSliceMs, remaining);
        const bool last = !forever && remaining <= kSliceMs;
        try {
            py::gil_scoped_release release;
            if (attempt(slice))
                return;
        } catch (const GenICam::TimeoutException&) {
            if (last)
                throw;
        }
        CheckSignals();
        if (!stillWanted())
            ThrowMisuse(reason);
    }
}

} // namespace OrvanPy
