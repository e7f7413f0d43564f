// Waits on the SDK with the GIL released, in slices short enough that Ctrl-C (and any other
// signal handler) runs between them.
#ifndef ORVAN_PYTHON_WAITING_H
#define ORVAN_PYTHON_WAITING_H

#include <pybind11/pybind11.h>

#include <cstdint>
#include <functional>
#include <optional>

namespace OrvanPy {

// Seconds as given by Python; None waits for ever. Negative or non-finite values are refused.
using Timeout = std::optional<double>;

// Calls attempt(milliseconds) without the GIL until it returns true, throws anything but a
// GenICam::TimeoutException, or the time is up (then the last time-out propagates). Between
// attempts stillWanted() is asked, with the GIL, whether to go on; false ends the wait with
// orvan.LogicalErrorException(reason()).
void WaitInSlices(Timeout timeout, const std::function<bool(uint64_t)>& attempt,
                  const std::function<bool()>& stillWanted, const char* reason);

// Milliseconds for a one-shot SDK wait that cannot be sliced (device discovery).
uint64_t Milliseconds(double seconds);

} // namespace OrvanPy

#endif
