// Images that do not come from a device: made from the caller's pixels, empty, as views on
// caller memory, as copies of delivered images, or as the result of processing one (conversion
// with demosaicing, compression, bit selection, deinterleaving, look-up tables). Every operation
// works between OpenSystem and CloseSystem; every image returned is the caller's until the
// matching destroy operation.
#ifndef ORVAN_IMAGEFACTORY_H
#define ORVAN_IMAGEFACTORY_H

#include <Orvan/DemosaicMethod.h>
#include <Orvan/ICompressedImage.h>
#include <Orvan/IImage.h>

#include <vector>

namespace Orvan {

class ImageFactory {
public:
    ImageFactory() = delete;

    // A new image owning a copy of `size` bytes of pixels; size must be exactly
    // width x height x bits per pixel / 8.
    static IImage* Create(const uint8_t* data, size_t size, size_t width, size_t height,
                          uint64_t pixelFormat);
    // A new image owning a zeroed pixel block of that size.
    static IImage* CreateEmpty(size_t size, size_t width, size_t height, uint64_t pixelFormat);
    // A new image over the caller's pixels, which must outlive it; nothing is copied.
    static IImage* Shallow(const uint8_t* data, size_t size, size_t width, size_t height,
                           uint64_t pixelFormat);
    // A detached copy of a delivered or factory image, with its own pixels and properties.
    static IImage* Copy(IImage* pImage);
    static ICompressedImage* CopyCompressedImage(ICompressedImage* pImage);
    // Releases a factory image; device images are refused (they go back by RequeueBuffer).
    static void Destroy(IImage* pImage);
    static void DestroyCompressedImage(ICompressedImage* pImage);

    // A new image of the source converted to `targetFormat` (Mono8, Mono16, the packed 10- and
    // 12-bit mono forms, RGB8, BGR8, RGBa8, BGRa8, RGB16, BGR16). Bayer sources are demosaiced
    // with `method`; colour to mono takes BT.601 luma; a deeper source keeps its most significant
    // bits, a shallower one is scaled to the full range of the target.
    static IImage* Convert(IImage* pSource, uint64_t targetFormat,
                           DemosaicMethod method = DemosaicMethod::HighQualityLinear);
    // The same into an image the caller made (CreateEmpty, same width and height): its pixel
    // format is the target. Nothing is allocated, so a loop can reuse one target.
    static void ConvertInto(IImage* pSource, IImage* pTarget,
                            DemosaicMethod method = DemosaicMethod::HighQualityLinear);
    static bool IsConvertible(uint64_t sourceFormat, uint64_t targetFormat);
    // Every target format that a source format converts to; empty for a source it cannot read.
    static std::vector<uint64_t> GetConvertibleFormats(uint64_t sourceFormat);

    // QOI compression: QOI_Mono8 from Mono8, QOI_Bayer??8 from Bayer??8, QOI_RGB8 from RGB8,
    // QOI_BGR8 from BGR8, QOI_YCbCr8 and QOI_YCbCr8_CbYCr from YCbCr8 and YCbCr8_CbYCr. The
    // result is released with DestroyCompressedImage.
    static ICompressedImage* Compress(IImage* pSource, uint64_t compressedFormat);
    // The image a QOI compressed image holds, in its uncompressed format; a corrupt or truncated
    // stream is refused with an exception.
    static IImage* Decompress(ICompressedImage* pSource);

    // An 8-bit image of the 8 bits from `lowestBit` up of every sample of a 10- to 16-bit image
    // (Mono, Bayer with its pattern kept, RGB/BGR with or without alpha).
    static IImage* SelectBits(IImage* pSource, size_t lowestBit);
    // One image per channel, in channel order: the four angles of the PolarizedAngles formats,
    // the taps of the Dual and Quad formats, Dolp and Aolp of the DolpAolp formats.
    static std::vector<IImage*> Deinterleave(IImage* pSource);

    // Every sample scaled (saturating), then only its `bits` most significant bits kept; same
    // format and geometry.
    static IImage* SelectBitsAndScale(IImage* pSource, size_t bits, double scale);
    // Every sample replaced by its entry of `pLUT`: 2^bits entries of (bits + 7) / 8 bytes, little
    // endian, for samples of `bits` bits; same format and geometry.
    static IImage* ProcessSoftwareLUT(IImage* pSource, uint8_t* pLUT, size_t lutSize);
};

} // namespace Orvan

#endif
