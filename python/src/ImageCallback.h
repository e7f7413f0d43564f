// Calls a Python callable with each image, on the SDK's callback thread, taking the GIL only
// for the call. The image is valid during the call; the SDK requeues it afterwards.
#ifndef ORVAN_PYTHON_IMAGECALLBACK_H
#define ORVAN_PYTHON_IMAGECALLBACK_H

#include <Orvan/IImageCallback.h>
#include <pybind11/pybind11.h>

namespace OrvanPy {

class CameraCore;

class ImageCallback : public Orvan::IImageCallback {
public:
    ImageCallback(CameraCore* camera, pybind11::object function);
    ~ImageCallback() override;
    ImageCallback(const ImageCallback&) = delete;
    ImageCallback& operator=(const ImageCallback&) = delete;

    void OnImage(Orvan::IImage* image) override;

private:
    CameraCore* m_camera;
    pybind11::object m_function;
};

} // namespace OrvanPy

#endif
