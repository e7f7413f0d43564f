// Splits the rows of a large image between threads; small images stay on the calling thread,
// where starting a thread would cost more than it saves.
#ifndef ORVAN_IMAGEPROC_PARALLELROWS_H
#define ORVAN_IMAGEPROC_PARALLELROWS_H

#include <cstddef>
#include <functional>

namespace Orvan {

// Threads that one conversion may use; 0 (the default) means one per processor.
void SetProcessingThreads(unsigned threads);
unsigned GetProcessingThreads();

// Calls rows(y0, y1) on disjoint bands that together cover [0, height), each band a multiple of
// `alignment` rows (except the last), and returns when all are done. `work` is the number of
// samples the whole call touches.
void ParallelRows(size_t height, size_t work, size_t alignment,
                  const std::function<void(size_t, size_t)>& rows);

} // namespace Orvan

#endif
