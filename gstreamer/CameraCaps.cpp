#include "CameraCaps.h"

#include <GenApi/AccessModeHelpers.h>
#include <GenApi/IEnumEntry.h>
#include <GenApi/Pointer.h>
#include <Orvan/GenApiCustom.h>

#include <numeric>
#include <stdexcept>
#include <string>

namespace Orvan {
namespace Gst {

namespace {

struct Range {
    int64_t min, max, step, current;
};

GstStructure* NewStructure(const PixelFormatMapping& m) {
    return gst_structure_new(m.media, "format", G_TYPE_STRING, m.format, nullptr);
}

// The node's limits narrowed to widths whose rows are four-byte aligned (see AlignedWidthStep).
Range IntegerRange(GenApi::INodeMap* nodeMap, const char* name, int64_t alignment) {
    GenApi::CIntegerPtr node = nodeMap->GetNode(name);
    const int64_t step = std::lcm(std::max<int64_t>(node->GetInc(), 1), alignment);
    const int64_t min = (node->GetMin() + step - 1) / step * step;
    const int64_t max = node->GetMax() / step * step;
    return {min, std::max(min, max), step, node->GetValue()};
}

void SetRange(GstStructure* s, const char* field, const Range& r) {
    if (r.min == r.max) {
        gst_structure_set(s, field, G_TYPE_INT, static_cast<int>(r.min), nullptr);
        return;
    }
    GValue value = G_VALUE_INIT;
    g_value_init(&value, GST_TYPE_INT_RANGE);
    gst_value_set_int_range_step(&value, static_cast<int>(r.min), static_cast<int>(r.max),
                                 static_cast<int>(r.step));
    gst_structure_take_value(s, field, &value);
}

GenApi::IFloat* FrameRateNode(GenApi::INodeMap* nodeMap) {
    GenApi::CFloatPtr node = nodeMap->GetNode("AcquisitionFrameRate");
    return node.IsValid() && GenApi::IsReadable(node) ? static_cast<GenApi::IFloat*>(node)
                                                      : nullptr;
}

GenApi::IBoolean* FrameRateEnable(GenApi::INodeMap* nodeMap) {
    GenApi::CBooleanPtr node = nodeMap->GetNode("AcquisitionFrameRateEnable");
    return node.IsValid() && GenApi::IsReadable(node) ? static_cast<GenApi::IBoolean*>(node)
                                                      : nullptr;
}

// The rate the camera holds itself to, or 0/1 when it runs freely (no frame-rate feature, or
// its limit switched off): a variable rate in GStreamer's terms.
void CurrentFraction(GenApi::INodeMap* nodeMap, int& num, int& den) {
    num = 0, den = 1;
    GenApi::IFloat* node = FrameRateNode(nodeMap);
    GenApi::IBoolean* enable = FrameRateEnable(nodeMap);
    if (node && (!enable || enable->GetValue()))
        gst_util_double_to_fraction(node->GetValue(), &num, &den);
}

void SetFrameRateRange(GstStructure* s, GenApi::INodeMap* nodeMap) {
    GenApi::IFloat* node = FrameRateNode(nodeMap);
    if (!node) {
        gst_structure_set(s, "framerate", GST_TYPE_FRACTION, 0, 1, nullptr);
        return;
    }
    int minN = 0, minD = 1, maxN = 0, maxD = 1;
    if (!FrameRateEnable(nodeMap))
        gst_util_double_to_fraction(node->GetMin(), &minN, &minD);
    gst_util_double_to_fraction(node->GetMax(), &maxN, &maxD);
    gst_structure_set(s, "framerate", GST_TYPE_FRACTION_RANGE, minN, minD, maxN, maxD, nullptr);
}

void SetCurrentFrameRate(GstStructure* s, GenApi::INodeMap* nodeMap) {
    int num = 0, den = 1;
    CurrentFraction(nodeMap, num, den);
    gst_structure_set(s, "framerate", GST_TYPE_FRACTION, num, den, nullptr);
}

// The mapped formats the camera offers now, by their entries' symbolic names.
std::vector<const PixelFormatMapping*> AvailableFormats(GenApi::INodeMap* nodeMap) {
    std::vector<const PixelFormatMapping*> found;
    GenApi::CEnumerationPtr formats = nodeMap->GetNode("PixelFormat");
    if (!formats.IsValid())
        return found;
    for (const PixelFormatMapping* m = MappingsBegin(); m != MappingsEnd(); ++m) {
        GenApi::IEnumEntry* entry = formats->GetEntryByName(m->pfncName);
        if (entry && GenApi::IsAvailable(entry))
            found.push_back(m);
    }
    return found;
}

bool Matches(const PixelFormatMapping* m, const GstStructure* s) {
    const char* format = gst_structure_get_string(s, "format");
    return m && format && g_str_equal(m->media, gst_structure_get_name(s)) &&
           g_str_equal(m->format, format);
}

std::string CurrentSymbolic(GenApi::INodeMap* nodeMap) {
    GenApi::CEnumerationPtr formats = nodeMap->GetNode("PixelFormat");
    if (!formats.IsValid() || !GenApi::IsReadable(formats))
        return std::string();
    return formats->GetCurrentEntry()->GetSymbolic().c_str();
}

// The camera's current format as the structure would have it (null: any), natively or converted.
const PixelFormatMapping* CurrentFormat(GenApi::INodeMap* nodeMap,
                                        const GstStructure* s = nullptr) {
    const std::string symbolic = CurrentSymbolic(nodeMap);
    for (const PixelFormatMapping* m = MappingsBegin(); m != MappingsEnd(); ++m)
        if (symbolic == m->pfncName && (!s || Matches(m, s)))
            return m;
    return nullptr;
}

// The camera's settings as they are, if they need no change to be passed on.
GstStructure* CurrentStructure(GenApi::INodeMap* nodeMap) {
    const PixelFormatMapping* m = CurrentFormat(nodeMap);
    if (!m)
        return nullptr;
    const int64_t step = static_cast<int64_t>(AlignedWidthStep(*m));
    const Range width = IntegerRange(nodeMap, "Width", step);
    const Range height = IntegerRange(nodeMap, "Height", static_cast<int64_t>(m->widthMultiple));
    if (width.current % step != 0 || height.current % int64_t(m->widthMultiple) != 0)
        return nullptr;
    GstStructure* s = NewStructure(*m);
    gst_structure_set(s, "width", G_TYPE_INT, static_cast<int>(width.current), "height", G_TYPE_INT,
                      static_cast<int>(height.current), nullptr);
    SetCurrentFrameRate(s, nodeMap);
    return s;
}

GstStructure* RangeStructure(GenApi::INodeMap* nodeMap, const PixelFormatMapping& m) {
    GstStructure* s = NewStructure(m);
    SetRange(s, "width", IntegerRange(nodeMap, "Width", int64_t(AlignedWidthStep(m))));
    SetRange(s, "height", IntegerRange(nodeMap, "Height", int64_t(m.widthMultiple)));
    SetFrameRateRange(s, nodeMap);
    return s;
}

void SetIfDifferent(GenApi::INodeMap* nodeMap, const char* name, int64_t value) {
    if (GetNodeValue<int64_t>(nodeMap, name) != value)
        SetNodeValue<int64_t>(nodeMap, name, value);
}

// A region moved off the origin may leave too little room for a larger size.
void ApplySize(GenApi::INodeMap* nodeMap, const char* size, const char* offset, int64_t value) {
    GenApi::CIntegerPtr node = nodeMap->GetNode(size);
    GenApi::CIntegerPtr shift = nodeMap->GetNode(offset);
    if (value > node->GetMax() && shift.IsValid() && GenApi::IsWritable(shift))
        shift->SetValue(0);
    SetIfDifferent(nodeMap, size, value);
}

// 0/1 lets the camera run freely where it can switch its limit off.
void ApplyFrameRate(GenApi::INodeMap* nodeMap, const GstStructure* s) {
    int num = 0, den = 1;
    if (!gst_structure_get_fraction(s, "framerate", &num, &den))
        return;
    GenApi::CBooleanPtr enable = nodeMap->GetNode("AcquisitionFrameRateEnable");
    if (enable.IsValid() && GenApi::IsWritable(enable) && enable->GetValue() != (num != 0))
        enable->SetValue(num != 0);
    if (num == 0)
        return;
    GenApi::IFloat* node = FrameRateNode(nodeMap);
    double rate = 0;
    gst_util_fraction_to_double(num, den, &rate);
    if (node && std::abs(node->GetValue() - rate) > 1e-6 * rate)
        node->SetValue(rate);
}

// Several camera formats may give one GStreamer format. The camera's current one is kept when
// it can, natively or converted: it is what the camera was set to. Otherwise the first one
// offered, and since the native mappings come first, a conversion only where the camera has no
// format that GStreamer names.
const PixelFormatMapping& ChosenFormat(GenApi::INodeMap* nodeMap, const GstStructure* s) {
    if (const PixelFormatMapping* current = CurrentFormat(nodeMap, s))
        return *current;
    for (const PixelFormatMapping* m : AvailableFormats(nodeMap))
        if (Matches(m, s))
            return *m;
    const char* format = gst_structure_get_string(s, "format");
    throw std::runtime_error(std::string("the camera offers no pixel format for ") +
                             gst_structure_get_name(s) + " " + (format ? format : "(none)"));
}

} // namespace

GstCaps* TemplateCaps() {
    GstCaps* caps = gst_caps_new_empty();
    for (const PixelFormatMapping* m = MappingsBegin(); m != MappingsEnd(); ++m) {
        GstStructure* s = NewStructure(*m);
        gst_structure_set(s, "width", GST_TYPE_INT_RANGE, 1, G_MAXINT, "height", GST_TYPE_INT_RANGE,
                          1, G_MAXINT, "framerate", GST_TYPE_FRACTION_RANGE, 0, 1, G_MAXINT, 1,
                          nullptr);
        caps = gst_caps_merge_structure(caps, s);
    }
    return caps;
}

GstCaps* CameraCaps(GenApi::INodeMap* nodeMap) {
    GstCaps* caps = gst_caps_new_empty();
    if (GstStructure* current = CurrentStructure(nodeMap))
        gst_caps_append_structure(caps, current);
    for (const PixelFormatMapping* m : AvailableFormats(nodeMap))
        gst_caps_append_structure(caps, RangeStructure(nodeMap, *m));
    return caps;
}

GstCaps* FixateNearCamera(GenApi::INodeMap* nodeMap, GstCaps* caps) {
    caps = gst_caps_truncate(gst_caps_make_writable(caps));
    GstStructure* s = gst_caps_get_structure(caps, 0);
    gst_structure_fixate_field_nearest_int(
        s, "width", static_cast<int>(GetNodeValue<int64_t>(nodeMap, "Width")));
    gst_structure_fixate_field_nearest_int(
        s, "height", static_cast<int>(GetNodeValue<int64_t>(nodeMap, "Height")));
    int num = 0, den = 1;
    CurrentFraction(nodeMap, num, den);
    gst_structure_fixate_field_nearest_fraction(s, "framerate", num, den);
    return gst_caps_fixate(caps);
}

const PixelFormatMapping& ApplyCaps(GenApi::INodeMap* nodeMap, const GstCaps* caps) {
    const GstStructure* s = gst_caps_get_structure(caps, 0);
    const PixelFormatMapping& m = ChosenFormat(nodeMap, s);
    if (CurrentSymbolic(nodeMap) != m.pfncName)
        SetNodeValue<GenICam::gcstring>(nodeMap, "PixelFormat", m.pfncName);
    int width = 0, height = 0;
    if (!gst_structure_get_int(s, "width", &width) || !gst_structure_get_int(s, "height", &height))
        throw std::runtime_error("caps without a fixed width and height");
    ApplySize(nodeMap, "Width", "OffsetX", width);
    ApplySize(nodeMap, "Height", "OffsetY", height);
    ApplyFrameRate(nodeMap, s);
    return m;
}

} // namespace Gst
} // namespace Orvan
