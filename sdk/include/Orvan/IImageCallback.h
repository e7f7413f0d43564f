// Receives the images of a streaming device on the device's callback thread.
#ifndef ORVAN_IIMAGECALLBACK_H
#define ORVAN_IIMAGECALLBACK_H

#include <Orvan/IImage.h>

namespace Orvan {

class IImageCallback {
public:
    virtual ~IImageCallback() = default;
    // The image is requeued when every callback has returned; it must not be kept.
    virtual void OnImage(IImage* image) = 0;
};

} // namespace Orvan

#endif
