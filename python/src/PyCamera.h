// orvan.Camera: an opened camera, its features, acquisition and callbacks.
#ifndef ORVAN_PYTHON_PYCAMERA_H
#define ORVAN_PYTHON_PYCAMERA_H

#include "CameraCore.h"
#include "FeatureMap.h"
#include "PyImage.h"
#include "Waiting.h"

#include <memory>
#include <optional>

namespace OrvanPy {

class PyCamera {
public:
    explicit PyCamera(std::shared_ptr<CameraCore> core) : m_core(std::move(core)) {}

    CameraCore& Core() const { return *m_core; }
    const std::shared_ptr<CameraCore>& Shared() const { return m_core; }

    void Start(std::optional<size_t> buffers) const;
    PyImage GetImage(Timeout timeout) const;
    // Map: 0 the camera's own features, 1 transport device, 2 stream, 3 interface.
    FeatureMap Features(int map) const;
    void SaveFeatures(const std::string& path) const;
    void LoadFeatures(const std::string& path) const;

private:
    std::shared_ptr<CameraCore> m_core;
};

// for image in camera.images(count): gives each image back as the loop moves on, and starts
// and stops the acquisition itself when the camera was not acquiring.
class ImageIterator {
public:
    ImageIterator(std::shared_ptr<CameraCore> camera, std::optional<size_t> count, Timeout timeout);
    ~ImageIterator();
    ImageIterator(const ImageIterator&) = delete;
    ImageIterator& operator=(const ImageIterator&) = delete;

    // The next image; None once the count is reached (the iterator is closed then).
    pybind11::object Next();
    void Close();

private:
    // An orvan.Image object the iterator handed out, and the C++ image inside it.
    struct Handed {
        pybind11::object object;
        PyImage* image = nullptr;
    };

    Handed Wrap(std::shared_ptr<ImageSource> source);
    void GiveBackCurrent();

    std::shared_ptr<CameraCore> m_camera;
    std::optional<size_t> m_left;
    Timeout m_timeout;
    // The loop's variable still holds the current image when the next one is asked for; the one
    // before it is free again once the loop has let it go.
    Handed m_current;
    Handed m_spare;
    bool m_startedHere = false;
    bool m_done = false;
};

} // namespace OrvanPy

#endif
