"""Opens the first camera, sets a few features and takes images as NumPy arrays.

image.array views the camera's own buffer: nothing is copied. The loop gives each image back
to the camera as it moves on; keep image.copy() (or image.array.copy()) to hold pixels longer.
"""

import orvan

with orvan.System() as system:
    with system.open(0) as camera:
        camera.features["Width"] = 640
        camera.features["Height"] = 480
        camera.features["PixelFormat"] = "Mono8"
        camera.features["ExposureTime"] = 2000.0
        for image in camera.images(count=10):
            pixels = image.array
            print(f"Image {image.frame_id}: {pixels.shape} {pixels.dtype}, "
                  f"mean {pixels.mean():.1f}")
            del pixels
        print("Acquired 10 images")
