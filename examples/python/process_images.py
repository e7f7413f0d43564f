"""Processes images without a display: thresholds, finds the bright stripes, averages frames.

The arrays go straight into NumPy (and into OpenCV, when it is installed) without a copy.
"""

import numpy as np

import orvan

try:
    import cv2
except ImportError:
    cv2 = None

with orvan.System() as system:
    with system.open(0) as camera:
        camera.features["Width"] = 320
        camera.features["Height"] = 240
        camera.features["PixelFormat"] = "Mono8"
        average = np.zeros((240, 320), np.float64)
        for image in camera.images(count=20):
            pixels = image.array
            if cv2 is not None:
                _, mask = cv2.threshold(pixels, 128, 255, cv2.THRESH_BINARY)
            else:
                mask = np.where(pixels > 128, 255, 0).astype(np.uint8)
            average += pixels
            bright = np.count_nonzero(mask) / mask.size
            del pixels
        average /= 20
print(f"Processed 20 images: {bright:.0%} bright in the last, mean level {average.mean():.1f}")
