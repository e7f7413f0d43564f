#include "PyImage.h"

#include "Errors.h"
#include "FeatureValue.h"
#include "OwnedImage.h"
#include "PixelLayout.h"

#include <Orvan/IChunkData.h>
#include <Orvan/ImageFactory.h>

namespace py = pybind11;

namespace OrvanPy {

PyImage PyImage::Copy() const {
    Orvan::IImage* image = Get();
    std::shared_ptr<SystemCore> system = m_source->System();
    Orvan::IImage* copy = Orvan::ImageFactory::Copy(image);
    return PyImage(std::make_shared<OwnedImage>(std::move(system), copy));
}

py::object PyImage::Chunk(const std::string& name) const {
    Orvan::IImage* image = Get();
    Orvan::IChunkData* chunks = m_source->Delivered() ? image->AsChunkData() : nullptr;
    if (!chunks)
        throw py::key_error("the image carries no chunk data");
    GenApi::INode* node = chunks->GetChunk(name.c_str());
    if (!node)
        throw py::key_error("no chunk named '" + name + "' in this image");
    return ReadNode(node);
}

std::string PyImage::Repr() const {
    if (!Valid())
        return "<orvan.Image (given back)>";
    Orvan::IImage* image = Get();
    return "<orvan.Image " + std::to_string(image->GetFrameId()) + " " +
           std::to_string(image->GetWidth()) + "x" + std::to_string(image->GetHeight()) + " " +
           PixelFormatName(image->GetPixelFormat()) + ">";
}

} // namespace OrvanPy
