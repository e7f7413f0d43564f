#include <Orvan/localization.h>

#include <map>
#include <memory>
#include <mutex>
#include <stdexcept>

namespace Orvan {
namespace loc {

namespace {

// The message catalogue. None can be loaded yet; the object exists only while init fails.
struct Implementation {
    std::mutex mutex;
    std::map<std::string, std::string> texts;
};

Implementation* g_pImpl = nullptr;
// Guards g_pImpl itself, so that al on one thread never reads it while init or close changes it.
std::mutex g_implMutex;

constexpr const char* kNoImplementation = "fail impl here";

// The same error, word for word, as constructing a std::string from a null pointer, whatever
// the standard library's own wording.
std::string textOf(const char* text) {
    if (text == nullptr) {
        throw std::logic_error("basic_string::_M_construct null not valid");
    }
    return text;
}

} // namespace

void init(const char*, int) {
    std::lock_guard<std::mutex> guard(g_implMutex);
    std::unique_ptr<Implementation> implementation = std::make_unique<Implementation>();
    g_pImpl = implementation.get();
    struct Reset {
        ~Reset() { g_pImpl = nullptr; }
    } reset;
    std::lock_guard<std::mutex> lock(g_pImpl->mutex);
    throw kNoImplementation;
}

std::string al(const char* text, std::initializer_list<const char*> args, const char* emptyValue) {
    {
        std::lock_guard<std::mutex> guard(g_implMutex);
        if (g_pImpl != nullptr) {
            std::lock_guard<std::mutex> lock(g_pImpl->mutex);
            throw kNoImplementation;
        }
    }
    return interpolate(text, args, emptyValue);
}

std::string al(const char* text, std::initializer_list<const char*> args) {
    return al(text, args, "-");
}

std::string al(const char* text) {
    return al(text, {}, "-");
}

void close() {
    std::lock_guard<std::mutex> guard(g_implMutex);
    if (g_pImpl != nullptr) {
        {
            std::lock_guard<std::mutex> lock(g_pImpl->mutex);
            g_pImpl->texts.clear();
        }
        delete g_pImpl;
        g_pImpl = nullptr;
    }
}

std::string interpolate(const char* text, std::initializer_list<const char*> args,
                        const char* emptyValue) {
    std::string result = textOf(text);
    size_t index = 0;
    for (const char* arg : args) {
        std::string value = textOf(arg);
        if (value.empty()) {
            value = textOf(emptyValue);
        }
        const std::string placeholder = "{" + std::to_string(index++) + "}";
        for (size_t at = result.find(placeholder); at != std::string::npos;
             at = result.find(placeholder)) {
            result.replace(at, placeholder.size(), value);
        }
    }
    return result;
}

} // namespace loc
} // namespace Orvan
