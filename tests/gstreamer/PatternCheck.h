/* The virtual cameras' test pictures, checked from C: what the element's test compares the
 * images that came through a pipeline against. */
#ifndef ORVAN_TESTS_GSTREAMER_PATTERNCHECK_H
#define ORVAN_TESTS_GSTREAMER_PATTERNCHECK_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Non-zero when the rows (each `stride` bytes apart) are exactly the camera's picture in that
 * pixel format, for the frame number stamped into them. colorBars selects the ColorBar test
 * pattern instead of the default moving diagonal. */
int orvan_test_matches_pattern(const char* pfncName, unsigned width, unsigned height, int colorBars,
                               const uint8_t* rows, size_t stride);

/* Non-zero when an RGB image demosaiced from a Bayer camera's colour bars shows, wherever the
 * bars are flat around a pixel, exactly the colours of the camera's RGB8 picture of some frame.
 * A wrong colour-filter phase swaps red and blue and fails. */
int orvan_test_matches_demosaiced_bars(unsigned width, unsigned height, const uint8_t* rgb,
                                       size_t stride);

/* Non-zero when the rows show the camera's picture of a 10- to 14-bit mono format (`pfncName`,
 * stored in 16 bits) as the image factory converts it to `outBits` (8: the most significant
 * bits; 16: scaled to the full range by repeating the bits downwards), for some frame. The
 * first eight pixels are left out: they carry the frame stamp, not the picture. */
int orvan_test_matches_scaled_mono(const char* pfncName, unsigned outBits, unsigned width,
                                   unsigned height, const uint8_t* rows, size_t stride);

#ifdef __cplusplus
}
#endif

#endif
