// The whole public interface of the Orvan SDK.
#ifndef ORVAN_ORVANAPI_H
#define ORVAN_ORVANAPI_H

#include <GenICam.h>
#include <Orvan/ALogger.h>
#include <Orvan/CalculateMaximumNumberOfBuffers.h>
#include <Orvan/Crc32.h>
#include <Orvan/DemosaicMethod.h>
#include <Orvan/DeviceInfo.h>
#include <Orvan/FeatureStream.h>
#include <Orvan/GenApiCustom.h>
#include <Orvan/IBuffer.h>
#include <Orvan/IChunkData.h>
#include <Orvan/ICompressedImage.h>
#include <Orvan/IDevice.h>
#include <Orvan/IDisconnectCallback.h>
#include <Orvan/IImage.h>
#include <Orvan/IImageCallback.h>
#include <Orvan/ImageFactory.h>
#include <Orvan/InterfaceInfo.h>
#include <Orvan/PixelFormat.h>
#include <Orvan/Socket.h>
#include <Orvan/System.h>
#include <Orvan/localization.h>

#endif
