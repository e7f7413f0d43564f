// How many buffers of one size the host's memory can hold.
#ifndef ORVAN_CALCULATEMAXIMUMNUMBEROFBUFFERS_H
#define ORVAN_CALCULATEMAXIMUMNUMBEROFBUFFERS_H

#include <cstddef>

namespace Orvan {

// The number of bufferSize-byte buffers that fit into four fifths of the host's RAM. Throws
// for a zero size and when not even one fits.
size_t CalculateMaximumNumberOfBuffers(size_t bufferSize);

} // namespace Orvan

#endif
