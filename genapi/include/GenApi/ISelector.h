#ifndef GENAPI_ISELECTOR_H
#define GENAPI_ISELECTOR_H

#include <GenApi/Container.h>
#include <GenApi/IBase.h>

namespace GenApi {

struct ISelector : virtual public IBase {
    virtual bool IsSelector() const = 0;
    virtual void GetSelectedFeatures(FeatureList_t& features) const = 0;
    virtual void GetSelectingFeatures(FeatureList_t& features) const = 0;
};

} // namespace GenApi

#endif
