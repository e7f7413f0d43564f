#include "OwnedImage.h"

#include "Errors.h"
#include "SystemCore.h"

#include <Orvan/ImageFactory.h>

namespace OrvanPy {

OwnedImage::OwnedImage(std::shared_ptr<SystemCore> system, Orvan::IImage* image)
    : m_system(std::move(system)), m_image(image) {}

OwnedImage::~OwnedImage() {
    if (!m_system->IsOpen())
        return;
    try {
        Orvan::ImageFactory::Destroy(m_image);
    } catch (...) {
        // Nobody is left to tell.
    }
}

Orvan::IImage* OwnedImage::Image() {
    if (!m_system->IsOpen())
        ThrowMisuse("the system this image was made in is closed");
    return m_image;
}

bool OwnedImage::Valid() const {
    return m_system->IsOpen();
}

} // namespace OrvanPy
