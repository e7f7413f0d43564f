#ifndef GENAPI_IDESTROY_H
#define GENAPI_IDESTROY_H

namespace GenApi {

// Objects created by the library are released through this interface, so that they are freed by
// the same library that allocated them.
struct IDestroy {
    virtual void Destroy() = 0;

protected:
    ~IDestroy() = default;
};

} // namespace GenApi

#endif
