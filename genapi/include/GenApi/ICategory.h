#ifndef GENAPI_ICATEGORY_H
#define GENAPI_ICATEGORY_H

#include <GenApi/Container.h>
#include <GenApi/IValue.h>

namespace GenApi {

struct ICategory : virtual public IValue {
    virtual void GetFeatures(FeatureList_t& features) const = 0;
};

} // namespace GenApi

#endif
