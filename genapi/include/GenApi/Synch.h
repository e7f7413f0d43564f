// The node map's lock: recursive, so callbacks running inside it may read other nodes.
#ifndef GENAPI_SYNCH_H
#define GENAPI_SYNCH_H

#include <mutex>

namespace GenApi {

class CLock {
public:
    CLock() = default;
    CLock(const CLock&) = delete;
    CLock& operator=(const CLock&) = delete;

    void Lock() { m_mutex.lock(); }
    void Unlock() { m_mutex.unlock(); }
    bool TryLock() { return m_mutex.try_lock(); }

private:
    std::recursive_mutex m_mutex;
};

// Holds a CLock for the lifetime of the object.
class AutoLock {
public:
    explicit AutoLock(CLock& lock) : m_lock(lock) { m_lock.Lock(); }
    ~AutoLock() { m_lock.Unlock(); }
    AutoLock(const AutoLock&) = delete;
    AutoLock& operator=(const AutoLock&) = delete;

private:
    CLock& m_lock;
};

} // namespace GenApi

#endif
