// Another GenTL producer loaded into the process: its library, its entry points, and its
// system module, opened for as long as ours is.
#ifndef ORVAN_GENTL_GENTL_FOREIGNPRODUCER_H
#define ORVAN_GENTL_GENTL_FOREIGNPRODUCER_H

#include "ProducerFunctions.h"

#include <functional>
#include <memory>
#include <mutex>
#include <string>

namespace Orvan {
namespace Producer {

class ForeignProducer {
public:
    // Loads the file, initialises the producer and opens its system module. Throws
    // std::runtime_error with the reason when the file cannot serve (not a library, required
    // entry points missing, a failing GCInitLib or TLOpen); nothing stays initialised then.
    static std::shared_ptr<ForeignProducer> Open(const std::string& path, const std::string& name);
    ~ForeignProducer();
    ForeignProducer(const ForeignProducer&) = delete;
    ForeignProducer& operator=(const ForeignProducer&) = delete;

    // Unique among the loaded producers; prefixes the ids of its interfaces.
    const std::string& Name() const { return m_name; }
    const std::string& Path() const { return m_path; }
    const ProducerFunctions& Functions() const { return m_functions; }
    GenTL::TL_HANDLE SystemHandle() const { return m_system; }
    // Custom info ids are each vendor's own; only a producer of ours gives them our meaning.
    bool SharesCustomIds() const { return m_sharesCustomIds; }

    // The producer's last-error text on this thread, for a call of its that failed.
    std::string LastErrorText() const;
    // Makes a failure of one of its calls ours: same code, same text for GCGetLastError.
    void PassUpError(GenTL::GC_ERROR code) const;
    // The same, for code that reports through GenTLError: throws when the call failed.
    void Check(GenTL::GC_ERROR code) const;
    // A text the producer writes (an id): asks its size, then the text.
    std::string Text(const std::function<GenTL::GC_ERROR(char*, size_t*)>& call) const;
    // Custom info commands reach only a producer that gives them our meaning; any other
    // answers GC_ERR_NOT_IMPLEMENTED.
    void RequireCustomId(int32_t cmd, int32_t firstCustom) const;
    // TLClose and GCCloseLib; later calls do nothing.
    void Close();

private:
    ForeignProducer(void* library, std::string path, std::string name);
    void Initialise();
    [[noreturn]] void Reject(const char* function, GenTL::GC_ERROR code) const;
    bool IsOurs() const;

    void* m_library;
    const std::string m_path;
    const std::string m_name;
    ProducerFunctions m_functions;
    GenTL::TL_HANDLE m_system = nullptr;
    bool m_sharesCustomIds = false;
    std::mutex m_closeMutex;
};

} // namespace Producer
} // namespace Orvan

#endif
