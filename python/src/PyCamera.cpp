#include "PyCamera.h"

#include "Delivery.h"
#include "NodeCallbacks.h"
#include "SystemCore.h"

#include <Orvan/FeatureStream.h>

namespace py = pybind11;

namespace OrvanPy {
namespace {

bool WeaklyReferenced(PyObject* object) {
    const Py_ssize_t offset = Py_TYPE(object)->tp_weaklistoffset;
    return offset > 0 &&
           *reinterpret_cast<PyObject**>(reinterpret_cast<char*>(object) + offset) != nullptr;
}

} // namespace

void PyCamera::Start(std::optional<size_t> buffers) const {
    m_core->Start(buffers.value_or(Orvan::kAutomaticBufferCount));
}

PyImage PyCamera::GetImage(Timeout timeout) const {
    return PyImage(m_core->NextImage(timeout));
}

FeatureMap PyCamera::Features(int map) const {
    std::shared_ptr<CameraCore> core = m_core;
    FeatureMap::Source source;
    source.owner = core;
    source.nodeMap = [core, map]() -> GenApi::INodeMap* {
        Orvan::IDevice* device = core->Device();
        switch (map) {
        case 1:
            return device->GetTLDeviceNodeMap();
        case 2:
            return device->GetTLStreamNodeMap();
        case 3:
            return device->GetTLInterfaceNodeMap();
        default:
            return device->GetNodeMap();
        }
    };
    source.callbacks = [core]() -> NodeCallbacks& { return core->Callbacks(); };
    if (map == 0)
        source.beforeCallback = [core] { core->EnsureEvents(); };
    return FeatureMap(std::move(source));
}

void PyCamera::SaveFeatures(const std::string& path) const {
    GenApi::INodeMap* nodeMap = m_core->Device()->GetNodeMap();
    py::gil_scoped_release release;
    Orvan::FeatureStream(nodeMap).Write(path.c_str());
}

void PyCamera::LoadFeatures(const std::string& path) const {
    GenApi::INodeMap* nodeMap = m_core->Device()->GetNodeMap();
    py::gil_scoped_release release;
    Orvan::FeatureStream(nodeMap).Read(path.c_str());
}

ImageIterator::ImageIterator(std::shared_ptr<CameraCore> camera, std::optional<size_t> count,
                             Timeout timeout)
    : m_camera(std::move(camera)), m_left(count), m_timeout(timeout) {
    if (!m_camera->Streaming()) {
        m_camera->Start(Orvan::kAutomaticBufferCount);
        m_startedHere = true;
    }
}

ImageIterator::~ImageIterator() {
    try {
        Close();
    } catch (...) {
        // Dropped by the garbage collector: nobody is left to tell.
    }
}

py::object ImageIterator::Next() {
    GiveBackCurrent();
    if (m_done || (m_left && *m_left == 0)) {
        Close();
        return py::none();
    }
    Handed next = Wrap(m_camera->NextImage(m_timeout));
    if (m_left)
        --*m_left;
    m_spare = std::exchange(m_current, next);
    return next.object;
}

// An image object nothing but the iterator refers to (no name, no container, no weak
// reference) cannot be told from a new one, so it carries the next image: the reuse the
// built-in zip() and enumerate() make of their result tuples.
ImageIterator::Handed ImageIterator::Wrap(std::shared_ptr<ImageSource> source) {
    PyObject* spare = m_spare.object.ptr();
    if (spare && Py_REFCNT(spare) == 1 && !WeaklyReferenced(spare)) {
        m_spare.image->Rebind(std::move(source));
        return std::exchange(m_spare, Handed{});
    }
    Handed made;
    made.object = py::cast(PyImage(std::move(source)));
    made.image = made.object.cast<PyImage*>();
    return made;
}

void ImageIterator::GiveBackCurrent() {
    if (m_current.image)
        m_current.image->Requeue();
}

void ImageIterator::Close() {
    GiveBackCurrent();
    m_current = Handed{};
    m_spare = Handed{};
    if (m_done)
        return;
    m_done = true;
    if (m_startedHere && !m_camera->Closed())
        m_camera->Stop();
}

} // namespace OrvanPy
