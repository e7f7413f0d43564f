#include "OrvanSrc.h"

#include "CameraCaps.h"
#include "CameraSession.h"
#include "FeatureSettings.h"
#include "FrameTiming.h"
#include "ImageConversion.h"
#include "ImageWrapping.h"

#include <Orvan/FeatureStream.h>

#include <atomic>
#include <exception>
#include <memory>
#include <mutex>
#include <string>

using Orvan::Gst::CameraSession;
using Orvan::Gst::ConversionPool;
using Orvan::Gst::PixelFormatMapping;

namespace {

struct Settings {
    std::string camera;
    guint buffers = 0;
    std::string features;
    std::string featureFile;
    guint64 timeoutMs = 0;
};

struct Statistics {
    std::atomic<guint64> delivered{0};
    std::atomic<guint64> lost{0};
    std::atomic<guint64> incomplete{0};
};

// The element's C++ side, kept apart from the GObject instance struct.
struct State {
    std::mutex lock; // settings and the session pointer
    Settings settings;
    std::shared_ptr<CameraSession> session;
    // The last session, still answering "outstanding" while downstream holds its buffers.
    std::weak_ptr<CameraSession> lastSession;
    const PixelFormatMapping* mapping = nullptr;
    // The images a converted format is converted into; null when images pass as they are.
    std::shared_ptr<ConversionPool> conversion;
    GstClockTime frameDuration = GST_CLOCK_TIME_NONE;
    std::atomic<bool> flushing{false};
    Orvan::Gst::CameraClockMapping clock;
    Orvan::Gst::FrameSequence sequence;
    bool discont = true;
    Statistics stats;
};

enum Property {
    PROP_0,
    PROP_CAMERA,
    PROP_BUFFERS,
    PROP_FEATURES,
    PROP_FEATURE_FILE,
    PROP_TIMEOUT,
    PROP_DELIVERED,
    PROP_LOST,
    PROP_INCOMPLETE,
    PROP_OUTSTANDING,
};

} // namespace

struct _GstOrvanSrc {
    GstPushSrc parent;
    State* state;
};

G_DEFINE_TYPE(GstOrvanSrc, gst_orvan_src, GST_TYPE_PUSH_SRC)

namespace {

GST_DEBUG_CATEGORY_STATIC(orvan_src_debug);
#define GST_CAT_DEFAULT orvan_src_debug

State& StateOf(gpointer object) {
    return *GST_ORVAN_SRC(object)->state;
}

std::shared_ptr<CameraSession> SessionOf(State& state) {
    std::lock_guard<std::mutex> lock(state.lock);
    return state.session;
}

Settings SettingsOf(State& state) {
    std::lock_guard<std::mutex> lock(state.lock);
    return state.settings;
}

// ---- properties

void SetProperty(GObject* object, guint id, const GValue* value, GParamSpec* pspec) {
    State& state = StateOf(object);
    std::lock_guard<std::mutex> lock(state.lock);
    Settings& s = state.settings;
    const char* text = nullptr;
    switch (id) {
    case PROP_CAMERA:
        text = g_value_get_string(value);
        s.camera = text ? text : "";
        break;
    case PROP_BUFFERS:
        s.buffers = g_value_get_uint(value);
        break;
    case PROP_FEATURES:
        text = g_value_get_string(value);
        s.features = text ? text : "";
        break;
    case PROP_FEATURE_FILE:
        text = g_value_get_string(value);
        s.featureFile = text ? text : "";
        break;
    case PROP_TIMEOUT:
        s.timeoutMs = g_value_get_uint64(value);
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID(object, id, pspec);
    }
}

guint Outstanding(State& state) {
    std::shared_ptr<CameraSession> session = state.lastSession.lock();
    return session ? session->Lent() : 0;
}

void GetProperty(GObject* object, guint id, GValue* value, GParamSpec* pspec) {
    State& state = StateOf(object);
    std::lock_guard<std::mutex> lock(state.lock);
    const Settings& s = state.settings;
    switch (id) {
    case PROP_CAMERA:
        g_value_set_string(value, s.camera.c_str());
        break;
    case PROP_BUFFERS:
        g_value_set_uint(value, s.buffers);
        break;
    case PROP_FEATURES:
        g_value_set_string(value, s.features.c_str());
        break;
    case PROP_FEATURE_FILE:
        g_value_set_string(value, s.featureFile.c_str());
        break;
    case PROP_TIMEOUT:
        g_value_set_uint64(value, s.timeoutMs);
        break;
    case PROP_DELIVERED:
        g_value_set_uint64(value, state.stats.delivered);
        break;
    case PROP_LOST:
        g_value_set_uint64(value, state.stats.lost);
        break;
    case PROP_INCOMPLETE:
        g_value_set_uint64(value, state.stats.incomplete);
        break;
    case PROP_OUTSTANDING:
        g_value_set_uint(value, Outstanding(state));
        break;
    default:
        G_OBJECT_WARN_INVALID_PROPERTY_ID(object, id, pspec);
    }
}

constexpr auto kWritable =
    GParamFlags(G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS | GST_PARAM_MUTABLE_READY);
constexpr auto kStatistic = GParamFlags(G_PARAM_READABLE | G_PARAM_STATIC_STRINGS);

void InstallSettings(GObjectClass* klass) {
    g_object_class_install_property(
        klass, PROP_CAMERA,
        g_param_spec_string("camera", "Camera",
                            "Camera to open, named as the orvan tool names cameras: serial "
                            "number, user-defined name, IPv4 address or index in the order "
                            "'orvan list' prints; empty opens the first camera found",
                            "", kWritable));
    g_object_class_install_property(
        klass, PROP_BUFFERS,
        g_param_spec_uint("buffers", "Buffers",
                          "Camera buffers in the pool, which downstream holds without copies; "
                          "0 takes the SDK's automatic count, raised to at least 8 so that "
                          "downstream queues do not starve the camera",
                          0, 4096, 0, kWritable));
    g_object_class_install_property(
        klass, PROP_FEATURES,
        g_param_spec_string("features", "Features",
                            "Camera features written before streaming, in the order given, as "
                            "FEATURE=VALUE words separated by spaces, e.g. "
                            "\"ExposureTime=2000 Gain=6 TriggerMode=Off\"",
                            "", kWritable));
    g_object_class_install_property(
        klass, PROP_FEATURE_FILE,
        g_param_spec_string("feature-file", "Feature file",
                            "Feature file (as 'orvan save-features' writes) loaded into the "
                            "camera before streaming, before the 'features' are written",
                            "", kWritable));
    g_object_class_install_property(
        klass, PROP_TIMEOUT,
        g_param_spec_uint64("timeout", "Timeout",
                            "Milliseconds to wait for an image before posting an error; 0 waits "
                            "as long as the camera stays connected (for triggered cameras)",
                            0, G_MAXUINT64, 0, kWritable));
}

void InstallStatistics(GObjectClass* klass) {
    g_object_class_install_property(
        klass, PROP_DELIVERED,
        g_param_spec_uint64("delivered", "Delivered",
                            "Images passed downstream since the element last started", 0,
                            G_MAXUINT64, 0, kStatistic));
    g_object_class_install_property(
        klass, PROP_LOST,
        g_param_spec_uint64("lost", "Lost",
                            "Frames the camera sent that never arrived (gaps in the frame ids); "
                            "the next buffer carries the DISCONT flag",
                            0, G_MAXUINT64, 0, kStatistic));
    g_object_class_install_property(
        klass, PROP_INCOMPLETE,
        g_param_spec_uint64("incomplete", "Incomplete",
                            "Images that arrived incomplete and were dropped", 0, G_MAXUINT64, 0,
                            kStatistic));
    g_object_class_install_property(
        klass, PROP_OUTSTANDING,
        g_param_spec_uint("outstanding", "Outstanding",
                          "Buffers downstream still holds; each goes back to the camera when it "
                          "is released, and the camera closes once all are back",
                          0, G_MAXUINT, 0, kStatistic));
}

// ---- starting and stopping

void LoadFeatureFile(GenApi::INodeMap* nodeMap, const std::string& path) {
    if (path.empty())
        return;
    Orvan::FeatureStream stream(nodeMap);
    stream.Read(path.c_str());
}

void ResetRun(State& state) {
    state.stats.delivered = 0;
    state.stats.lost = 0;
    state.stats.incomplete = 0;
    state.clock.Reset();
    state.sequence.Reset();
    state.discont = true;
}

std::shared_ptr<CameraSession> OpenCamera(GstOrvanSrc* self, const Settings& settings) {
    try {
        return std::make_shared<CameraSession>(settings.camera);
    } catch (const std::exception& e) {
        const std::string name = settings.camera.empty() ? "(first)" : settings.camera;
        GST_ELEMENT_ERROR(self, RESOURCE, NOT_FOUND,
                          ("Could not open camera '%s': %s", name.c_str(), e.what()), (nullptr));
        return nullptr;
    }
}

// Parsed before the camera opens, so that a typo costs no camera round trip.
bool ConfigureCamera(GstOrvanSrc* self, CameraSession& session, const Settings& settings) {
    try {
        const auto features = Orvan::Gst::ParseFeatureSettings(settings.features);
        GenApi::INodeMap* nodeMap = session.Device().GetNodeMap();
        LoadFeatureFile(nodeMap, settings.featureFile);
        Orvan::Gst::ApplyFeatureSettings(nodeMap, features);
        return true;
    } catch (const std::exception& e) {
        GST_ELEMENT_ERROR(self, RESOURCE, SETTINGS,
                          ("Could not set the features of camera %s: %s",
                           session.Description().c_str(), e.what()),
                          (nullptr));
        return false;
    }
}

bool CheckFeatureSyntax(GstOrvanSrc* self, const Settings& settings) {
    try {
        Orvan::Gst::ParseFeatureSettings(settings.features);
        return true;
    } catch (const std::exception& e) {
        GST_ELEMENT_ERROR(self, RESOURCE, SETTINGS, ("Bad 'features' property: %s", e.what()),
                          (nullptr));
        return false;
    }
}

gboolean Start(GstBaseSrc* base) {
    GstOrvanSrc* self = GST_ORVAN_SRC(base);
    State& state = *self->state;
    const Settings settings = SettingsOf(state);
    if (!CheckFeatureSyntax(self, settings))
        return FALSE;
    std::shared_ptr<CameraSession> session = OpenCamera(self, settings);
    if (!session || !ConfigureCamera(self, *session, settings))
        return FALSE;
    GST_INFO_OBJECT(self, "opened camera %s", session->Description().c_str());
    std::lock_guard<std::mutex> lock(state.lock);
    ResetRun(state);
    state.session = session;
    state.lastSession = session;
    return TRUE;
}

// Buffers still downstream keep the session, and with it the stream, until they come back.
gboolean Stop(GstBaseSrc* base) {
    State& state = StateOf(base);
    std::shared_ptr<CameraSession> session;
    {
        std::lock_guard<std::mutex> lock(state.lock);
        session.swap(state.session);
        state.mapping = nullptr;
        state.conversion.reset();
    }
    if (session)
        GST_INFO_OBJECT(base, "closing camera, %u buffers downstream", session->Lent());
    return TRUE;
}

gboolean Unlock(GstBaseSrc* base) {
    StateOf(base).flushing = true;
    return TRUE;
}

gboolean UnlockStop(GstBaseSrc* base) {
    StateOf(base).flushing = false;
    return TRUE;
}

// ---- caps

GstCaps* GetCaps(GstBaseSrc* base, GstCaps* filter) {
    std::shared_ptr<CameraSession> session = SessionOf(StateOf(base));
    GstCaps* caps = nullptr;
    if (session) {
        try {
            caps = Orvan::Gst::CameraCaps(session->Device().GetNodeMap());
        } catch (const std::exception& e) {
            GST_WARNING_OBJECT(base, "cannot read the camera's formats: %s", e.what());
        }
    }
    if (!caps)
        caps = gst_pad_get_pad_template_caps(GST_BASE_SRC_PAD(base));
    if (filter) {
        GstCaps* both = gst_caps_intersect_full(filter, caps, GST_CAPS_INTERSECT_FIRST);
        gst_caps_unref(caps);
        caps = both;
    }
    return caps;
}

GstCaps* Fixate(GstBaseSrc* base, GstCaps* caps) {
    std::shared_ptr<CameraSession> session = SessionOf(StateOf(base));
    if (session) {
        try {
            return Orvan::Gst::FixateNearCamera(session->Device().GetNodeMap(), caps);
        } catch (const std::exception& e) {
            GST_WARNING_OBJECT(base, "cannot read the camera's settings: %s", e.what());
        }
    }
    return GST_BASE_SRC_CLASS(gst_orvan_src_parent_class)->fixate(base, caps);
}

GstClockTime FrameDuration(const GstCaps* caps) {
    int num = 0, den = 1;
    const GstStructure* s = gst_caps_get_structure(caps, 0);
    if (!gst_structure_get_fraction(s, "framerate", &num, &den) || num <= 0)
        return GST_CLOCK_TIME_NONE;
    return gst_util_uint64_scale_int(GST_SECOND, den, num);
}

std::shared_ptr<ConversionPool> MakeConversion(const std::shared_ptr<CameraSession>& session,
                                               const PixelFormatMapping& mapping,
                                               const GstCaps* caps) {
    if (!mapping.convertTo)
        return nullptr;
    int width = 0, height = 0;
    const GstStructure* s = gst_caps_get_structure(caps, 0);
    gst_structure_get_int(s, "width", &width);
    gst_structure_get_int(s, "height", &height);
    return std::make_shared<ConversionPool>(session, mapping, size_t(width), size_t(height));
}

// Negotiation with the stream running (a renegotiation) restarts it in the new format.
gboolean SetCaps(GstBaseSrc* base, GstCaps* caps) {
    State& state = StateOf(base);
    std::shared_ptr<CameraSession> session = SessionOf(state);
    if (!session)
        return FALSE;
    try {
        session->StopStream();
        const PixelFormatMapping& mapping =
            Orvan::Gst::ApplyCaps(session->Device().GetNodeMap(), caps);
        std::shared_ptr<ConversionPool> conversion = MakeConversion(session, mapping, caps);
        std::lock_guard<std::mutex> lock(state.lock);
        state.mapping = &mapping;
        state.conversion = conversion;
        state.frameDuration = FrameDuration(caps);
        return TRUE;
    } catch (const std::exception& e) {
        gchar* text = gst_caps_to_string(caps);
        GST_ELEMENT_ERROR(
            base, CORE, NEGOTIATION,
            ("Camera %s cannot send %s: %s", session->Description().c_str(), text, e.what()),
            (nullptr));
        g_free(text);
        return FALSE;
    }
}

gboolean Query(GstBaseSrc* base, GstQuery* query) {
    if (GST_QUERY_TYPE(query) != GST_QUERY_LATENCY)
        return GST_BASE_SRC_CLASS(gst_orvan_src_parent_class)->query(base, query);
    State& state = StateOf(base);
    std::lock_guard<std::mutex> lock(state.lock);
    if (!state.session)
        return FALSE;
    // An image leaves the camera one frame after its exposure began.
    const GstClockTime frame =
        GST_CLOCK_TIME_IS_VALID(state.frameDuration) ? state.frameDuration : 0;
    gst_query_set_latency(query, TRUE, frame, GST_CLOCK_TIME_NONE);
    return TRUE;
}

// ---- streaming

GstClockTime RunningTimeNow(GstElement* element) {
    GstClock* clock = gst_element_get_clock(element);
    if (!clock)
        return GST_CLOCK_TIME_NONE;
    const GstClockTime now = gst_clock_get_time(clock);
    gst_object_unref(clock);
    const GstClockTime base = gst_element_get_base_time(element);
    return now > base ? now - base : 0;
}

void Stamp(GstBaseSrc* base, State& state, GstBuffer* buffer, uint64_t frameId,
           uint64_t timestampNs) {
    GST_BUFFER_OFFSET(buffer) = frameId;
    GST_BUFFER_OFFSET_END(buffer) = frameId + 1;
    GST_BUFFER_DURATION(buffer) = state.frameDuration;
    if (state.discont)
        GST_BUFFER_FLAG_SET(buffer, GST_BUFFER_FLAG_DISCONT);
    state.discont = false;
    if (gst_base_src_get_do_timestamp(base))
        return;
    const GstClockTime arrival = RunningTimeNow(GST_ELEMENT(base));
    if (GST_CLOCK_TIME_IS_VALID(arrival))
        GST_BUFFER_PTS(buffer) = state.clock.Map(timestampNs, arrival);
}

// A target of the conversion pool, back in the pool unless a buffer took it.
struct Target {
    std::shared_ptr<ConversionPool> pool;
    Orvan::IImage* image = nullptr;
    ~Target() {
        if (image)
            pool->Release(image);
    }
};

// Null when the image cannot be passed on; it is back with the camera then. A converted image
// is, in any case: the buffer holds the target, which `target` then no longer owns.
GstBuffer* Deliver(GstBaseSrc* base, State& state, const std::shared_ptr<CameraSession>& session,
                   Target& target, Orvan::IImage* image) {
    const uint64_t frameId = image->GetFrameId(), timestampNs = image->GetTimestampNs();
    if (const uint64_t lost = state.sequence.Advance(frameId)) {
        state.stats.lost += lost;
        state.discont = true;
    }
    GstBuffer* buffer = nullptr;
    if (image->IsIncomplete()) {
        session->Requeue(image);
    } else if (!target.pool) {
        buffer = Orvan::Gst::WrapImage(session, image, *state.mapping);
    } else {
        buffer =
            Orvan::Gst::ConvertAndWrap(target.pool, target.image, *session, image, *state.mapping);
        target.image = nullptr;
    }
    if (!buffer) {
        ++state.stats.incomplete;
        state.discont = true;
        return nullptr;
    }
    Stamp(base, state, buffer, frameId, timestampNs);
    ++state.stats.delivered;
    return buffer;
}

GstFlowReturn Create(GstPushSrc* src, GstBuffer** out) {
    GstBaseSrc* base = GST_BASE_SRC(src);
    State& state = StateOf(src);
    std::shared_ptr<CameraSession> session = SessionOf(state);
    Target target;
    {
        std::lock_guard<std::mutex> lock(state.lock);
        target.pool = state.conversion;
    }
    if (!session || !state.mapping)
        return GST_FLOW_NOT_NEGOTIATED;
    const Settings settings = SettingsOf(state);
    const guint64 timeoutMs = settings.timeoutMs;
    try {
        if (!session->Streaming())
            session->StartStream(settings.buffers);
        for (*out = nullptr; !*out;) {
            if (target.pool && !target.image &&
                !(target.image = target.pool->Acquire(state.flushing)))
                return GST_FLOW_FLUSHING;
            Orvan::IImage* image = nullptr;
            const auto result = session->NextImage(timeoutMs, state.flushing, image);
            if (result == Orvan::Gst::WaitResult::Cancelled)
                return GST_FLOW_FLUSHING;
            if (result == Orvan::Gst::WaitResult::TimedOut) {
                GST_ELEMENT_ERROR(src, RESOURCE, READ,
                                  ("No image from camera %s within %" G_GUINT64_FORMAT " ms",
                                   session->Description().c_str(), timeoutMs),
                                  (nullptr));
                return GST_FLOW_ERROR;
            }
            *out = Deliver(base, state, session, target, image);
        }
        return GST_FLOW_OK;
    } catch (const std::exception& e) {
        GST_ELEMENT_ERROR(src, RESOURCE, READ, ("%s", e.what()), (nullptr));
        return GST_FLOW_ERROR;
    }
}

// ---- type

void Finalize(GObject* object) {
    delete GST_ORVAN_SRC(object)->state;
    G_OBJECT_CLASS(gst_orvan_src_parent_class)->finalize(object);
}

void InstallMetadata(GstElementClass* element) {
    gst_element_class_set_static_metadata(
        element, "Orvan camera source", "Source/Video/Hardware",
        "Streams images from a machine-vision camera through the Orvan SDK without copies",
        "Orvan");
    GstCaps* caps = Orvan::Gst::TemplateCaps();
    gst_element_class_add_pad_template(
        element, gst_pad_template_new("src", GST_PAD_SRC, GST_PAD_ALWAYS, caps));
    gst_caps_unref(caps);
}

} // namespace

static void gst_orvan_src_class_init(GstOrvanSrcClass* klass) {
    GST_DEBUG_CATEGORY_INIT(orvan_src_debug, "orvansrc", 0, "Orvan camera source");
    GObjectClass* object = G_OBJECT_CLASS(klass);
    object->set_property = SetProperty;
    object->get_property = GetProperty;
    object->finalize = Finalize;
    InstallSettings(object);
    InstallStatistics(object);
    InstallMetadata(GST_ELEMENT_CLASS(klass));
    GstBaseSrcClass* base = GST_BASE_SRC_CLASS(klass);
    base->start = Start;
    base->stop = Stop;
    base->unlock = Unlock;
    base->unlock_stop = UnlockStop;
    base->get_caps = GetCaps;
    base->fixate = Fixate;
    base->set_caps = SetCaps;
    base->query = Query;
    GST_PUSH_SRC_CLASS(klass)->create = Create;
}

static void gst_orvan_src_init(GstOrvanSrc* self) {
    self->state = new State();
    gst_base_src_set_live(GST_BASE_SRC(self), TRUE);
    gst_base_src_set_format(GST_BASE_SRC(self), GST_FORMAT_TIME);
}
