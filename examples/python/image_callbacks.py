"""Receives images through a callback on the SDK's thread instead of asking for each one.

The callback runs with the GIL held only for the call, and the image is valid only during it.
"""

import threading

import orvan

done = threading.Event()
frames = []


def on_image(image):
    frames.append(image.frame_id)
    if len(frames) == 20:
        done.set()


with orvan.System() as system:
    with system.open(0) as camera:
        camera.on_image(on_image)
        with camera.acquire():
            arrived = done.wait(timeout=10.0)
        camera.on_image(None)
print(f"Callback received {len(frames)} images, the last one was image {frames[-1]}"
      if arrived else "Fewer than 20 images arrived within 10 s")
