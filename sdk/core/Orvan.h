// Process-wide state of the library entry: the image factory's on switch and the scratch pools
// it guards. The system object turns the factory on when it is built and off when it goes.
#ifndef ORVAN_CORE_ORVAN_H
#define ORVAN_CORE_ORVAN_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>

namespace Orvan {

// True from the end of the system's construction to the end of its destruction; read without
// g_factoryMutex.
extern std::atomic<bool> g_factoryInit;

// Guards g_factoryPools, and only them.
extern std::mutex g_factoryMutex;

// A scratch area of the image factory's processing operations, allocated with new[].
struct FactoryScratchPool {
    uint8_t* data;
    size_t size;
};
constexpr size_t kFactoryPoolCount = 3;
extern FactoryScratchPool g_factoryPools[kFactoryPoolCount];

// Turns the factory on with empty pools; whatever the pools held before is not freed here.
void OpenImageFactory();
// Frees the pools and turns the factory off.
void CloseImageFactory();
bool HasImageFactoryInit();

} // namespace Orvan

#endif
