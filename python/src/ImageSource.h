// Where an Image's pixels live: a buffer delivered by a camera, or a copy the image owns. The
// NumPy arrays over the pixels keep their source alive and are counted, so that the memory
// under a live array is never given back or freed.
#ifndef ORVAN_PYTHON_IMAGESOURCE_H
#define ORVAN_PYTHON_IMAGESOURCE_H

#include <Orvan/IImage.h>

#include <memory>

namespace OrvanPy {

class SystemCore;

class ImageSource {
public:
    virtual ~ImageSource() = default;
    // Throws orvan.LogicalErrorException once the pixels are no longer the image's.
    virtual Orvan::IImage* Image() = 0;
    virtual bool Valid() const = 0;
    // The application is done with the image; a delivered buffer goes back to the camera as
    // soon as no array views it.
    virtual void Return() = 0;
    virtual void ViewOpened() = 0;
    virtual void ViewClosed() = 0;
    // Chunk nodes live in the camera's node map, which only a delivered image can reach.
    virtual bool Delivered() const = 0;
    // The system the image factory works in, for copies.
    virtual std::shared_ptr<SystemCore> System() = 0;
};

} // namespace OrvanPy

#endif
