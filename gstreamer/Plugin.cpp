// The plugin's entry point: libgstorvan.so registers orvansrc.
#include "OrvanSrc.h"

#include <gst/gst.h>

#define PACKAGE "orvan"

namespace {

gboolean PluginInit(GstPlugin* plugin) {
    return gst_element_register(plugin, "orvansrc", GST_RANK_NONE, GST_TYPE_ORVAN_SRC);
}

} // namespace

GST_PLUGIN_DEFINE(GST_VERSION_MAJOR, GST_VERSION_MINOR, orvan,
                  "Images from Orvan machine-vision cameras", PluginInit, ORVAN_GST_VERSION,
                  "Proprietary", "Orvan", "https://orvan.invalid/")
