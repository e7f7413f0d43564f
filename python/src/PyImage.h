// orvan.Image: one image, delivered or copied, with its pixels as NumPy arrays.
#ifndef ORVAN_PYTHON_PYIMAGE_H
#define ORVAN_PYTHON_PYIMAGE_H

#include "ImageSource.h"

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <memory>
#include <string>

namespace OrvanPy {

class PyImage {
public:
    explicit PyImage(std::shared_ptr<ImageSource> source) : m_source(std::move(source)) {}

    Orvan::IImage* Get() const { return m_source->Image(); }
    bool Valid() const { return m_source->Valid(); }
    void Requeue() const { m_source->Return(); }
    // The image iterator's object carries the next image in place of a new one.
    void Rebind(std::shared_ptr<ImageSource> source) { m_source = std::move(source); }

    // The pixels without a copy, read-only; raw bytes for formats without an array layout.
    pybind11::array Array() const { return View(false); }
    // The same view, writable: for pixels nobody else reads (conversion results).
    pybind11::array View(bool writable) const;
    // Packed formats spread to one element per sample; other formats as Array().copy().
    pybind11::array Unpacked() const;
    PyImage Copy() const;
    pybind11::object Chunk(const std::string& name) const;
    std::string Repr() const;

    const std::shared_ptr<ImageSource>& Source() const { return m_source; }

private:
    std::shared_ptr<ImageSource> m_source;
};

} // namespace OrvanPy

#endif
