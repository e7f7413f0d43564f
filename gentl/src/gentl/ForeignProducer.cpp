#include "ForeignProducer.h"

#include "../GenTLError.h"
#include "../LastError.h"

#include <dlfcn.h>

#include <stdexcept>
#include <vector>

namespace Orvan {
namespace Producer {

namespace {

// A producer's threads and thread-local destructors may outlive its TLClose, so its code stays
// mapped for the life of the process.
constexpr int kOpenFlags = RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE;

std::string Joined(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "" : ", ") + name;
    return text;
}

} // namespace

std::shared_ptr<ForeignProducer> ForeignProducer::Open(const std::string& path,
                                                       const std::string& name) {
    dlerror();
    void* library = dlopen(path.c_str(), kOpenFlags);
    if (!library) {
        const char* reason = dlerror();
        throw std::runtime_error("not a loadable library: " + std::string(reason ? reason : ""));
    }
    std::shared_ptr<ForeignProducer> producer(new ForeignProducer(library, path, name));
    std::vector<std::string> missing;
    producer->m_functions.Resolve(library, missing);
    if (!missing.empty())
        throw std::runtime_error("lacks the GenTL functions " + Joined(missing));
    producer->Initialise();
    return producer;
}

ForeignProducer::ForeignProducer(void* library, std::string path, std::string name)
    : m_library(library), m_path(std::move(path)), m_name(std::move(name)) {}

ForeignProducer::~ForeignProducer() {
    Close();
    dlclose(m_library);
}

void ForeignProducer::Initialise() {
    GenTL::GC_ERROR code = m_functions.GCInitLib();
    if (code != GenTL::GC_ERR_SUCCESS)
        Reject("GCInitLib", code);
    code = m_functions.TLOpen(&m_system);
    if (code != GenTL::GC_ERR_SUCCESS) {
        m_system = nullptr;
        const std::string text = LastErrorText();
        m_functions.GCCloseLib();
        throw std::runtime_error("TLOpen failed with " + std::to_string(code) + ": " + text);
    }
    m_sharesCustomIds = IsOurs();
}

void ForeignProducer::Reject(const char* function, GenTL::GC_ERROR code) const {
    throw std::runtime_error(std::string(function) + " failed with " + std::to_string(code) + ": " +
                             LastErrorText());
}

bool ForeignProducer::IsOurs() const {
    char vendor[64] = {};
    size_t size = sizeof(vendor);
    GenTL::INFO_DATATYPE type = GenTL::INFO_DATATYPE_STRING;
    if (!m_functions.TLGetInfo || m_functions.TLGetInfo(m_system, GenTL::TL_INFO_VENDOR, &type,
                                                        vendor, &size) != GenTL::GC_ERR_SUCCESS)
        return false;
    vendor[sizeof(vendor) - 1] = '\0';
    return std::string(vendor) == "Orvan";
}

std::string ForeignProducer::LastErrorText() const {
    GenTL::GC_ERROR code = GenTL::GC_ERR_SUCCESS;
    size_t size = 0;
    if (m_functions.GCGetLastError(&code, nullptr, &size) != GenTL::GC_ERR_SUCCESS || size == 0)
        return "";
    std::vector<char> text(size + 1, '\0');
    if (m_functions.GCGetLastError(&code, text.data(), &size) != GenTL::GC_ERR_SUCCESS)
        return "";
    return std::string(text.data());
}

void ForeignProducer::PassUpError(GenTL::GC_ERROR code) const {
    SetLastError(code, LastErrorText());
}

void ForeignProducer::Check(GenTL::GC_ERROR code) const {
    if (code != GenTL::GC_ERR_SUCCESS)
        throw GenTLError(code, LastErrorText());
}

std::string
ForeignProducer::Text(const std::function<GenTL::GC_ERROR(char*, size_t*)>& call) const {
    size_t size = 0;
    Check(call(nullptr, &size));
    std::vector<char> text(size + 1, '\0');
    Check(call(text.data(), &size));
    return std::string(text.data());
}

void ForeignProducer::RequireCustomId(int32_t cmd, int32_t firstCustom) const {
    if (cmd >= firstCustom && !m_sharesCustomIds)
        throw GenTLError(GenTL::GC_ERR_NOT_IMPLEMENTED,
                         "Info command " + std::to_string(cmd) + " means nothing to " + m_name);
}

void ForeignProducer::Close() {
    std::lock_guard<std::mutex> lock(m_closeMutex);
    if (!m_system)
        return;
    m_functions.TLClose(m_system);
    m_functions.GCCloseLib();
    m_system = nullptr;
}

} // namespace Producer
} // namespace Orvan
