#include "Delivery.h"

#include "CameraCore.h"
#include "Errors.h"

namespace OrvanPy {

Delivery::Delivery(std::shared_ptr<CameraCore> camera, Orvan::IImage* image, uint64_t generation,
                   bool borrowed)
    : m_camera(std::move(camera)), m_image(image), m_generation(generation), m_borrowed(borrowed) {}

Delivery::~Delivery() {
    try {
        GiveBack();
    } catch (...) {
        // The camera may be gone or failing; nobody is left to tell.
    }
}

bool Delivery::Stale() const {
    return m_camera->Generation() != m_generation;
}

bool Delivery::Valid() const {
    return !m_returned && !Stale();
}

Orvan::IImage* Delivery::Image() {
    if (m_returned)
        ThrowMisuse("the image was requeued: its buffer belongs to the camera again "
                    "(keep image.copy() to use the pixels longer)");
    if (Stale())
        ThrowMisuse("the acquisition this image came from was stopped");
    return m_image;
}

void Delivery::Return() {
    m_returned = true;
    if (m_views == 0)
        GiveBack();
}

void Delivery::ViewOpened() {
    if (m_views++ == 0)
        m_camera->ViewOpened();
}

void Delivery::ViewClosed() {
    if (--m_views > 0)
        return;
    if (m_returned)
        GiveBack();
    m_camera->ViewClosed();
}

std::shared_ptr<SystemCore> Delivery::System() {
    Image();
    return m_camera->SharedSystem();
}

void Delivery::GiveBack() {
    if (m_givenBack)
        return;
    m_givenBack = true;
    if (!m_borrowed && !Stale())
        m_camera->Requeue(m_image);
}

} // namespace OrvanPy
