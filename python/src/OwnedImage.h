// An image that owns its pixels: image.copy(), made by the image factory. It keeps the system
// open, since factory images are only valid between opening and closing it.
#ifndef ORVAN_PYTHON_OWNEDIMAGE_H
#define ORVAN_PYTHON_OWNEDIMAGE_H

#include "ImageSource.h"

#include <memory>

namespace OrvanPy {

class SystemCore;

class OwnedImage : public ImageSource {
public:
    OwnedImage(std::shared_ptr<SystemCore> system, Orvan::IImage* image);
    ~OwnedImage() override;
    OwnedImage(const OwnedImage&) = delete;
    OwnedImage& operator=(const OwnedImage&) = delete;

    Orvan::IImage* Image() override;
    bool Valid() const override;
    void Return() override {}
    void ViewOpened() override {}
    void ViewClosed() override {}
    bool Delivered() const override { return false; }
    std::shared_ptr<SystemCore> System() override { return m_system; }

private:
    std::shared_ptr<SystemCore> m_system;
    Orvan::IImage* m_image;
};

} // namespace OrvanPy

#endif
