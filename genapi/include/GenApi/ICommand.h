#ifndef GENAPI_ICOMMAND_H
#define GENAPI_ICOMMAND_H

#include <GenApi/IValue.h>

namespace GenApi {

struct ICommand : virtual public IValue {
    virtual void Execute(bool verify = true) = 0;
    virtual void operator()() = 0;
    virtual bool IsDone(bool verify = true) = 0;
};

} // namespace GenApi

#endif
