// orvansrc: a live push source streaming one camera through the SDK.
#ifndef ORVAN_GSTREAMER_ORVANSRC_H
#define ORVAN_GSTREAMER_ORVANSRC_H

#include <gst/base/gstpushsrc.h>

G_BEGIN_DECLS

#define GST_TYPE_ORVAN_SRC (gst_orvan_src_get_type())
G_DECLARE_FINAL_TYPE(GstOrvanSrc, gst_orvan_src, GST, ORVAN_SRC, GstPushSrc)

G_END_DECLS

#endif
