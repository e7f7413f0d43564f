// A buffer a camera delivered, from get_image or to an image callback, until it is given back.
#ifndef ORVAN_PYTHON_DELIVERY_H
#define ORVAN_PYTHON_DELIVERY_H

#include "ImageSource.h"

#include <cstdint>
#include <memory>

namespace OrvanPy {

class CameraCore;

class Delivery : public ImageSource {
public:
    // A borrowed buffer is the SDK's to requeue (image callbacks): Return only ends the loan.
    Delivery(std::shared_ptr<CameraCore> camera, Orvan::IImage* image, uint64_t generation,
             bool borrowed);
    ~Delivery() override;
    Delivery(const Delivery&) = delete;
    Delivery& operator=(const Delivery&) = delete;

    Orvan::IImage* Image() override;
    bool Valid() const override;
    void Return() override;
    void ViewOpened() override;
    void ViewClosed() override;
    bool Delivered() const override { return true; }
    std::shared_ptr<SystemCore> System() override;

    CameraCore& Camera() { return *m_camera; }

private:
    bool Stale() const;
    void GiveBack();

    std::shared_ptr<CameraCore> m_camera;
    Orvan::IImage* m_image;
    uint64_t m_generation;
    bool m_borrowed;
    bool m_returned = false;
    bool m_givenBack = false;
    int m_views = 0;
};

} // namespace OrvanPy

#endif
