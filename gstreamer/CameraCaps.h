// Caps from a camera's node map and back: what the camera can send now, the choice nearest to
// its current settings, and a negotiated choice written into the camera.
#ifndef ORVAN_GSTREAMER_CAMERACAPS_H
#define ORVAN_GSTREAMER_CAMERACAPS_H

#include "PixelFormatMapping.h"

#include <GenApi/INodeMap.h>
#include <gst/gst.h>

namespace Orvan {
namespace Gst {

// Every format the element can pass on, at any size: before a camera is open.
GstCaps* TemplateCaps();

// The camera's current settings first, when they can be passed on (converted if GStreamer has
// no name for its format), then every available mapped format over the camera's size and
// frame-rate ranges, the native ones before the converted ones. Caller owns the result.
GstCaps* CameraCaps(GenApi::INodeMap* nodeMap);

// Fixes the open fields at the values nearest the camera's current ones. Takes ownership.
GstCaps* FixateNearCamera(GenApi::INodeMap* nodeMap, GstCaps* caps);

// Writes PixelFormat, Width, Height and AcquisitionFrameRate from fixed caps; returns the
// format written. Throws std::runtime_error or a GenICam exception when the camera refuses.
const PixelFormatMapping& ApplyCaps(GenApi::INodeMap* nodeMap, const GstCaps* caps);

} // namespace Gst
} // namespace Orvan

#endif
