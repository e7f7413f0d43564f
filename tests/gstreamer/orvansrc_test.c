/* orvansrc_test CASE [SCRATCH_DIR]: one case of the element's checks in pipelines against the
 * virtual cameras, run as a GStreamer application runs it. Exit status 0 when the case held. */
#include "PatternCheck.h"

#include <GenTL/OrvanTestControl.h>
#include <gst/gst.h>
#include <gst/video/video.h>

#include <stdio.h>
#include <string.h>

/* Long enough for a slow sanitizer build to stream, short enough that a hang fails the case. */
#define WAIT_SECONDS 20

static int failures = 0;
static const char* scratch = ".";

#define CHECK(cond, ...)                                                                           \
    do {                                                                                           \
        if (!(cond)) {                                                                             \
            fprintf(stderr, "FAIL %s:%d: %s: ", __FILE__, __LINE__, #cond);                        \
            fprintf(stderr, __VA_ARGS__);                                                          \
            fputc('\n', stderr);                                                                   \
            ++failures;                                                                            \
        }                                                                                          \
    } while (0)

static void use_cameras(const char* first, const char* second) {
    const char* models[] = {first, second};
    OrvanTC_SetVirtualCameras(models, second ? 2 : 1, 1);
}

static GstElement* launch(const char* description) {
    GError* error = NULL;
    GstElement* pipeline = gst_parse_launch(description, &error);
    if (!pipeline) {
        fprintf(stderr, "cannot build '%s': %s\n", description, error->message);
        g_error_free(error);
    }
    return pipeline;
}

static GstElement* child(GstElement* pipeline, const char* name) {
    GstElement* element = gst_bin_get_by_name(GST_BIN(pipeline), name);
    gst_object_unref(element); /* the pipeline keeps it alive */
    return element;
}

/* Plays until end of stream or error; returns the error text (caller frees) or NULL at EOS.
 * "(timeout)" when neither came. */
static gchar* play_to_end(GstElement* pipeline) {
    gst_element_set_state(pipeline, GST_STATE_PLAYING);
    GstBus* bus = gst_element_get_bus(pipeline);
    GstMessage* message = gst_bus_timed_pop_filtered(bus, WAIT_SECONDS * GST_SECOND,
                                                     GST_MESSAGE_EOS | GST_MESSAGE_ERROR);
    gst_object_unref(bus);
    gchar* text = NULL;
    if (!message)
        return g_strdup("(timeout)");
    if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_ERROR) {
        GError* error = NULL;
        gst_message_parse_error(message, &error, NULL);
        text = g_strdup(error->message);
        g_error_free(error);
    }
    gst_message_unref(message);
    return text;
}

static void stop(GstElement* pipeline) {
    CHECK(gst_element_set_state(pipeline, GST_STATE_NULL) == GST_STATE_CHANGE_SUCCESS,
          "stopping the pipeline");
}

static guint outstanding(GstElement* pipeline) {
    guint count = 0;
    g_object_get(child(pipeline, "src"), "outstanding", &count, NULL);
    return count;
}

static guint64 statistic(GstElement* pipeline, const char* name) {
    guint64 value = 0;
    g_object_get(child(pipeline, "src"), name, &value, NULL);
    return value;
}

/* ---- what the sink saw */

typedef struct {
    guint count;
    guint64 lastOffset;
    gboolean offsetsIncrease;
    GstClockTime lastPts;
    gboolean ptsIncrease;
    guint discontAfterFirst;
    guint64 largestStep;
    GstBuffer* held; /* the first buffer, when the case keeps one */
    gboolean holdFirst;
} Seen;

static void on_handoff(GstElement* sink, GstBuffer* buffer, GstPad* pad, gpointer data) {
    (void)sink, (void)pad;
    Seen* seen = data;
    const guint64 offset = GST_BUFFER_OFFSET(buffer);
    const GstClockTime pts = GST_BUFFER_PTS(buffer);
    if (seen->count > 0) {
        seen->offsetsIncrease &= offset > seen->lastOffset;
        seen->ptsIncrease &= GST_CLOCK_TIME_IS_VALID(pts) && pts > seen->lastPts;
        if (offset - seen->lastOffset > seen->largestStep)
            seen->largestStep = offset - seen->lastOffset;
        if (GST_BUFFER_FLAG_IS_SET(buffer, GST_BUFFER_FLAG_DISCONT))
            ++seen->discontAfterFirst;
    } else if (seen->holdFirst) {
        seen->held = gst_buffer_ref(buffer);
    }
    seen->lastOffset = offset;
    seen->lastPts = pts;
    ++seen->count;
}

static void watch(GstElement* pipeline, Seen* seen) {
    memset(seen, 0, sizeof *seen);
    seen->offsetsIncrease = seen->ptsIncrease = TRUE;
    GstElement* sink = child(pipeline, "sink");
    g_object_set(sink, "signal-handoffs", TRUE, NULL);
    g_signal_connect(sink, "handoff", G_CALLBACK(on_handoff), seen);
}

/* Small, fast frames so that a hundred take a moment. */
#define FAST "Width=64 Height=32 ExposureTime=100 AcquisitionFrameRate=1000"

/* ---- cases */

static void exact_count(void) {
    use_cameras("Mono", NULL);
    GstElement* pipeline =
        launch("orvansrc name=src num-buffers=100 features=\"" FAST "\" ! fakesink name=sink");
    Seen seen;
    watch(pipeline, &seen);
    gchar* error = play_to_end(pipeline);
    CHECK(error == NULL, "%s", error);
    CHECK(seen.count == 100, "%u buffers", seen.count);
    CHECK(seen.offsetsIncrease, "offsets do not increase");
    CHECK(seen.ptsIncrease, "timestamps do not increase");
    CHECK(statistic(pipeline, "delivered") == 100, "delivered");
    stop(pipeline);
    gst_object_unref(pipeline);
    g_free(error);
}

/* The image that reaches the sink, copied with its caps. */
typedef struct {
    GstCaps* caps;
    GstBuffer* buffer;
} Last;

static void keep_last(GstElement* sink, GstBuffer* buffer, GstPad* pad, gpointer data) {
    (void)sink;
    Last* last = data;
    if (last->buffer)
        return;
    last->caps = gst_pad_get_current_caps(pad);
    last->buffer = gst_buffer_copy_deep(buffer);
}

static Last first_image(const char* description) {
    Last last = {NULL, NULL};
    GstElement* pipeline = launch(description);
    GstElement* sink = child(pipeline, "sink");
    g_object_set(sink, "signal-handoffs", TRUE, NULL);
    g_signal_connect(sink, "handoff", G_CALLBACK(keep_last), &last);
    gchar* error = play_to_end(pipeline);
    CHECK(error == NULL && last.buffer, "%s: %s", description, error);
    stop(pipeline);
    gst_object_unref(pipeline);
    g_free(error);
    return last;
}

static int image_matches(Last* image, const char* pfncName, int bayerBars) {
    GstVideoInfo info;
    GstMapInfo map;
    if (!image->buffer || !gst_video_info_from_caps(&info, image->caps))
        return 0;
    gst_buffer_map(image->buffer, &map, GST_MAP_READ);
    const unsigned width = GST_VIDEO_INFO_WIDTH(&info), height = GST_VIDEO_INFO_HEIGHT(&info);
    const size_t stride = GST_VIDEO_INFO_PLANE_STRIDE(&info, 0);
    const int ok = bayerBars
                       ? orvan_test_matches_demosaiced_bars(width, height, map.data, stride)
                       : orvan_test_matches_pattern(pfncName, width, height, 0, map.data, stride);
    gst_buffer_unmap(image->buffer, &map);
    return ok;
}

static void release(Last* image) {
    if (image->caps)
        gst_caps_unref(image->caps);
    if (image->buffer)
        gst_buffer_unref(image->buffer);
}

static void caps_set_camera(void) {
    use_cameras("Color", NULL);
    Last image = first_image("orvansrc num-buffers=3 ! "
                             "video/x-raw,format=GRAY8,width=640,height=480 ! fakesink name=sink");
    CHECK(image.buffer && gst_buffer_get_size(image.buffer) == 640 * 480, "640x480 GRAY8 image");
    CHECK(image_matches(&image, "Mono8", 0), "not the camera's Mono8 picture at 640x480");
    release(&image);
}

/* Each row: a camera set up by features, what turns its images into something pngenc takes,
 * and what the decoded PNG must show. */
static const struct {
    const char* model;
    const char* features;
    const char* convert;
    const char* pfncName; /* compared exactly, or NULL for demosaiced colour bars */
} pngCases[] = {
    {"Mono", "PixelFormat=Mono8", "", "Mono8"},
    {"Color", "PixelFormat=RGB8", "", "RGB8"},
    {"Color", "PixelFormat=BayerRG8 TestPattern=ColorBar",
     "bayer2rgb ! videoconvert ! video/x-raw,format=RGB !", NULL},
    {"Color", "PixelFormat=BayerBG8 TestPattern=ColorBar",
     "bayer2rgb ! videoconvert ! video/x-raw,format=RGB !", NULL},
    {"Color", "PixelFormat=BayerGR8 TestPattern=ColorBar",
     "bayer2rgb ! videoconvert ! video/x-raw,format=RGB !", NULL},
};

static void png_patterns(void) {
    for (size_t i = 0; i < G_N_ELEMENTS(pngCases); ++i) {
        use_cameras(pngCases[i].model, NULL);
        gchar* path = g_strdup_printf("%s/orvansrc-%zu.png", scratch, i);
        gchar* record = g_strdup_printf(
            "orvansrc num-buffers=1 features=\"%s Width=320 Height=240\" ! %s pngenc ! "
            "filesink name=sink location=%s",
            pngCases[i].features, pngCases[i].convert, path);
        GstElement* pipeline = launch(record);
        gchar* error = play_to_end(pipeline);
        CHECK(error == NULL, "%s: %s", record, error);
        stop(pipeline);
        gst_object_unref(pipeline);
        gchar* decode = g_strdup_printf("filesrc location=%s ! pngdec ! fakesink name=sink", path);
        Last image = first_image(decode);
        CHECK(image_matches(&image, pngCases[i].pfncName, pngCases[i].pfncName == NULL),
              "%s: the PNG is not the camera's picture", pngCases[i].features);
        release(&image);
        g_free(decode), g_free(record), g_free(path), g_free(error);
    }
}

/* Each row: a camera in a format GStreamer may have no name for, the caps asked of it (and what
 * turns them into something the check reads), and what the image must show. */
enum Check { EXACT, SCALED8, SCALED16, DEMOSAICED };
static const struct {
    const char* model;
    const char* features;
    const char* caps;
    enum Check check;
    const char* pfncName; /* the camera's picture the image is checked against */
} convertCases[] = {
    /* Converted, and kept in the camera's format rather than switched to Mono16 or RGB8. */
    {"Mono", "PixelFormat=Mono12", "video/x-raw,format=GRAY16_LE", SCALED16, "Mono12"},
    {"Mono", "PixelFormat=Mono10p", "video/x-raw,format=GRAY16_LE", SCALED16, "Mono10"},
    {"Mono", "PixelFormat=Mono12Packed", "video/x-raw,format=GRAY16_LE", SCALED16, "Mono12"},
    {"Mono", "PixelFormat=Mono12", "video/x-raw,format=GRAY8", SCALED8, "Mono12"},
    {"Color", "PixelFormat=BayerRG12 TestPattern=ColorBar", "video/x-raw,format=RGB", DEMOSAICED,
     NULL},
    {"Color", "PixelFormat=BayerGB12p TestPattern=ColorBar",
     "video/x-raw,format=BGR ! videoconvert ! video/x-raw,format=RGB", DEMOSAICED, NULL},
    /* A format GStreamer names is preferred to converting a deeper one. */
    {"Mono", "PixelFormat=Mono8", "video/x-raw,format=GRAY16_LE", EXACT, "Mono16"},
    /* With no caps asked, a deep camera format comes through whole. */
    {"Mono", "PixelFormat=Mono10", "video/x-raw", SCALED16, "Mono10"},
};

static int converted_matches(Last* image, enum Check check, const char* pfncName) {
    GstVideoInfo info;
    GstMapInfo map;
    if (!image->buffer || !gst_video_info_from_caps(&info, image->caps))
        return 0;
    gst_buffer_map(image->buffer, &map, GST_MAP_READ);
    const unsigned width = GST_VIDEO_INFO_WIDTH(&info), height = GST_VIDEO_INFO_HEIGHT(&info);
    const size_t stride = GST_VIDEO_INFO_PLANE_STRIDE(&info, 0);
    int ok = 0;
    if (check == EXACT)
        ok = orvan_test_matches_pattern(pfncName, width, height, 0, map.data, stride);
    else if (check == DEMOSAICED) /* demosaiced here, not an RGB camera format's own picture */
        ok = orvan_test_matches_demosaiced_bars(width, height, map.data, stride) &&
             !orvan_test_matches_pattern("RGB8", width, height, 1, map.data, stride);
    else
        ok = orvan_test_matches_scaled_mono(pfncName, check == SCALED8 ? 8 : 16, width, height,
                                            map.data, stride);
    gst_buffer_unmap(image->buffer, &map);
    return ok;
}

static void converted_formats(void) {
    for (size_t i = 0; i < G_N_ELEMENTS(convertCases); ++i) {
        use_cameras(convertCases[i].model, NULL);
        gchar* description = g_strdup_printf(
            "orvansrc num-buffers=2 features=\"%s Width=320 Height=240\" ! %s ! fakesink name=sink",
            convertCases[i].features, convertCases[i].caps);
        Last image = first_image(description);
        CHECK(converted_matches(&image, convertCases[i].check, convertCases[i].pfncName),
              "%s: not the camera's picture", description);
        release(&image);
        g_free(description);
    }
}

/* Each row: a pipeline that must end in an error whose text names what went wrong. */
static const struct {
    const char* description;
    const char* expected;
} errorCases[] = {
    {"orvansrc camera=NoSuchCamera ! fakesink", "NoSuchCamera"},
    {"orvansrc camera=7 ! fakesink", "'7'"},
    {"orvansrc features=\"NoSuchFeature=1\" ! fakesink", "NoSuchFeature"},
    {"orvansrc features=\"Gain=loud\" ! fakesink", "Gain"},
    {"orvansrc features=\"ExposureTime\" ! fakesink", "ExposureTime"},
    {"orvansrc feature-file=/nonexistent/orvan.txt ! fakesink", "features"},
    {"orvansrc ! video/x-raw,format=I420 ! fakesink", ""},
};

static void bus_errors(void) {
    for (size_t i = 0; i < G_N_ELEMENTS(errorCases); ++i) {
        use_cameras("Mono", NULL);
        GstElement* pipeline = launch(errorCases[i].description);
        gchar* error = play_to_end(pipeline);
        CHECK(error && strcmp(error, "(timeout)") != 0 && strstr(error, errorCases[i].expected),
              "%s: got '%s'", errorCases[i].description, error ? error : "end of stream");
        stop(pipeline);
        gst_object_unref(pipeline);
        g_free(error);
    }
}

static gboolean wait_for_count(Seen* seen, guint count) {
    for (int i = 0; i < WAIT_SECONDS * 100 && seen->count < count; ++i)
        g_usleep(10000);
    return seen->count >= count;
}

/* A Mono camera streaming freely, with the sink watched, once its first frames are through. */
static GstElement* start_streaming(Seen* seen) {
    use_cameras("Mono", NULL);
    GstElement* pipeline = launch("orvansrc name=src features=\"" FAST "\" ! fakesink name=sink");
    watch(pipeline, seen);
    gst_element_set_state(pipeline, GST_STATE_PLAYING);
    CHECK(wait_for_count(seen, 5), "streaming did not start");
    return pipeline;
}

static void unplugged(void) {
    Seen seen;
    GstElement* pipeline = start_streaming(&seen);
    OrvanTC_SetDeviceConnected("Mono-0", 0);
    gchar* error = play_to_end(pipeline);
    CHECK(error && strstr(error, "disconnected"), "got '%s'", error ? error : "end of stream");
    stop(pipeline);
    CHECK(outstanding(pipeline) == 0, "buffers still out after stop");
    gst_object_unref(pipeline);
    g_free(error);
}

/* A buffer held past the stop keeps its camera buffer; releasing it gives it back, and the
 * camera opens again for the next run. */
static void buffers_return(void) {
    use_cameras("Mono", NULL);
    GstElement* pipeline = launch("orvansrc name=src num-buffers=10 features=\"" FAST
                                  "\" ! queue ! fakesink name=sink");
    Seen seen;
    watch(pipeline, &seen);
    seen.holdFirst = TRUE;
    gchar* error = play_to_end(pipeline);
    CHECK(error == NULL, "%s", error);
    stop(pipeline);
    CHECK(outstanding(pipeline) == 1, "%u out while one is held", outstanding(pipeline));
    gst_buffer_unref(seen.held);
    CHECK(outstanding(pipeline) == 0, "%u out after release", outstanding(pipeline));
    g_free(error);
    seen.count = 0, seen.holdFirst = FALSE;
    error = play_to_end(pipeline);
    CHECK(error == NULL && seen.count == 10, "second run: %s, %u buffers", error, seen.count);
    gst_element_set_state(pipeline, GST_STATE_PAUSED);
    gst_element_set_state(pipeline, GST_STATE_READY);
    CHECK(outstanding(pipeline) == 0, "%u out after PAUSED to READY", outstanding(pipeline));
    stop(pipeline);
    gst_object_unref(pipeline);
    g_free(error);
}

/* Faults hit frames the camera has yet to send: each is injected, then waited past. */
static void frame_faults(void) {
    Seen seen;
    GstElement* pipeline = start_streaming(&seen);
    OrvanTC_InjectFrameFault("Mono-0", ORVAN_TC_FAULT_DROP, 3);
    CHECK(wait_for_count(&seen, seen.count + 20), "streaming stopped");
    OrvanTC_InjectFrameFault("Mono-0", ORVAN_TC_FAULT_INCOMPLETE, 2);
    CHECK(wait_for_count(&seen, seen.count + 20), "streaming stopped");
    gst_element_send_event(pipeline, gst_event_new_eos());
    gchar* error = play_to_end(pipeline);
    CHECK(error == NULL, "%s", error);
    CHECK(statistic(pipeline, "lost") == 3, "lost %" G_GUINT64_FORMAT, statistic(pipeline, "lost"));
    CHECK(statistic(pipeline, "incomplete") == 2, "incomplete %" G_GUINT64_FORMAT,
          statistic(pipeline, "incomplete"));
    CHECK(seen.discontAfterFirst == 2, "%u DISCONT buffers", seen.discontAfterFirst);
    CHECK(seen.largestStep == 4, "largest offset step %" G_GUINT64_FORMAT, seen.largestStep);
    stop(pipeline);
    gst_object_unref(pipeline);
    g_free(error);
}

static const struct {
    const char* name;
    void (*run)(void);
} cases[] = {
    {"count", exact_count},   {"caps", caps_set_camera},      {"png", png_patterns},
    {"errors", bus_errors},   {"unplug", unplugged},          {"release", buffers_return},
    {"faults", frame_faults}, {"convert", converted_formats},
};

int main(int argc, char** argv) {
    gst_init(&argc, &argv);
    if (argc > 2)
        scratch = argv[2];
    for (size_t i = 0; argc > 1 && i < G_N_ELEMENTS(cases); ++i) {
        if (strcmp(argv[1], cases[i].name) != 0)
            continue;
        cases[i].run();
        OrvanTC_Reset();
        return failures ? 1 : 0;
    }
    fprintf(stderr, "usage: orvansrc_test CASE [SCRATCH_DIR]\n");
    return 2;
}
