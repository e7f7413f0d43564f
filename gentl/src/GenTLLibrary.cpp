// Library-level entry points of the producer: initialisation, the system module, last errors.
#include <GenTL/GenTL.h>

#include <cstring>
#include <mutex>
#include <string>

namespace {

std::mutex g_libraryMutex;
bool g_initialised = false;
bool g_systemOpen = false;
int g_systemToken = 0; // the system module's handle points here
thread_local GenTL::GC_ERROR t_lastError = GenTL::GC_ERR_SUCCESS;
thread_local std::string t_lastErrorText;

GenTL::GC_ERROR Fail(GenTL::GC_ERROR code, const char* text) {
    t_lastError = code;
    t_lastErrorText = text;
    return code;
}

GenTL::GC_ERROR Succeed() {
    t_lastError = GenTL::GC_ERR_SUCCESS;
    t_lastErrorText.clear();
    return GenTL::GC_ERR_SUCCESS;
}

} // namespace

namespace GenTL {
extern "C" {

GC_ERROR GCInitLib() {
    std::lock_guard<std::mutex> lock(g_libraryMutex);
    if (g_initialised)
        return Fail(GC_ERR_RESOURCE_IN_USE, "The producer is already initialised");
    g_initialised = true;
    return Succeed();
}

GC_ERROR GCCloseLib() {
    std::lock_guard<std::mutex> lock(g_libraryMutex);
    if (!g_initialised)
        return Fail(GC_ERR_NOT_INITIALIZED, "The producer is not initialised");
    g_initialised = false;
    g_systemOpen = false;
    return Succeed();
}

GC_ERROR GCGetLastError(GC_ERROR* errorCode, char* text, size_t* size) {
    if (!errorCode || !size)
        return GC_ERR_INVALID_PARAMETER;
    *errorCode = t_lastError;
    size_t needed = t_lastErrorText.size() + 1;
    if (!text) {
        *size = needed;
        return GC_ERR_SUCCESS;
    }
    if (*size < needed) {
        *size = needed;
        return GC_ERR_BUFFER_TOO_SMALL;
    }
    std::memcpy(text, t_lastErrorText.c_str(), needed);
    *size = needed;
    return GC_ERR_SUCCESS;
}

GC_ERROR TLOpen(TL_HANDLE* system) {
    std::lock_guard<std::mutex> lock(g_libraryMutex);
    if (!g_initialised)
        return Fail(GC_ERR_NOT_INITIALIZED, "The producer is not initialised");
    if (!system)
        return Fail(GC_ERR_INVALID_PARAMETER, "The handle pointer is null");
    if (g_systemOpen)
        return Fail(GC_ERR_RESOURCE_IN_USE, "The system module is already open");
    g_systemOpen = true;
    *system = &g_systemToken;
    return Succeed();
}

GC_ERROR TLClose(TL_HANDLE system) {
    std::lock_guard<std::mutex> lock(g_libraryMutex);
    if (!g_initialised)
        return Fail(GC_ERR_NOT_INITIALIZED, "The producer is not initialised");
    if (system != &g_systemToken || !g_systemOpen)
        return Fail(GC_ERR_INVALID_HANDLE, "Not an open system handle");
    g_systemOpen = false;
    return Succeed();
}

} // extern "C"
} // namespace GenTL
