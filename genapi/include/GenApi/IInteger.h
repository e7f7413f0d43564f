#ifndef GENAPI_IINTEGER_H
#define GENAPI_IINTEGER_H

#include <GenApi/Container.h>
#include <GenApi/IValue.h>

namespace GenApi {

struct IInteger : virtual public IValue {
    virtual void SetValue(int64_t value, bool verify = true) = 0;
    virtual IInteger& operator=(int64_t value) = 0;
    virtual int64_t GetValue(bool verify = false, bool ignoreCache = false) = 0;
    virtual int64_t operator()() = 0;
    virtual int64_t operator*() = 0;
    virtual int64_t GetMin() = 0;
    virtual int64_t GetMax() = 0;
    virtual EIncMode GetIncMode() = 0;
    virtual int64_t GetInc() = 0;
    virtual int64_autovector_t GetListOfValidValues(bool bounded = true) = 0;
    virtual ERepresentation GetRepresentation() = 0;
    virtual gcstring GetUnit() = 0;
    virtual void ImposeMin(int64_t value) = 0;
    virtual void ImposeMax(int64_t value) = 0;
};

} // namespace GenApi

#endif
