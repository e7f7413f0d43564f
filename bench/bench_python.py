"""12-megapixel images through `for image in camera.images()` beside the C++
GetImage/RequeueBuffer loop on the same virtual camera, in the same process and run.

The C++ loop is compiled into the module (orvan._testing.cpp_acquisition_loop) and drives the
very IDevice the Python loop uses, so both see the same camera, buffers and settings. The Python
loop touches image.array in every iteration, as an application would.

Throughput: the camera streams freely and the loops alternate for several rounds, the best round
of each counting, so that a busy machine does not favour whichever loop ran first.

Per-image overhead: while streaming, either loop mostly waits for the camera, and what a wait
costs (a sleep, a wake-up on a loaded machine) swamps the difference. So the camera first fills
every buffer and stops (MultiFrame), then one loop drains the waiting images without waiting:
the Python loop's extra time per image is the overhead, the start and end of its loop included.
A drain is over within a few milliseconds, which a shared machine often leaves alone: the
lowest of many drains counts, beside their median.

    build/bench/bench_python [--images N] [--rounds R] [--drains D]
"""

import argparse
import statistics
import time

import orvan
import orvan._testing as testing

TWELVE_MP = (4096, 3000)
# (width, height, buffers) of the drains: 12 MP images in as many buffers as memory allows
# comfortably, and small ones in enough buffers that a drain's first, cache-cold images weigh
# little. Nothing in either loop depends on the image's size.
DRAINS = [(*TWELVE_MP, 32), (64, 64, 1024)]


def make_fast(camera, width, height):
    features = camera.features
    features["PixelFormat"] = "Mono8"
    features["Width"] = width
    features["Height"] = height
    features["ExposureTime"] = 1.0
    features["DeviceLinkThroughputLimitMode"] = "Off"
    features["AcquisitionFrameRateEnable"] = False


def python_loop(camera, count):
    started = time.perf_counter()
    for image in camera.images(count=count, timeout=5.0):
        image.array
    return time.perf_counter() - started


def cpp_loop(camera, count):
    return testing.cpp_acquisition_loop(camera, count)


def throughput(camera, count, rounds):
    """Images per second of the best round of each loop, streaming."""
    seconds = {cpp_loop: [], python_loop: []}
    with camera.acquire(buffers=16):
        for _ in range(rounds):
            for loop, taken in seconds.items():
                taken.append(loop(camera, count))
    return count / min(seconds[cpp_loop]), count / min(seconds[python_loop])


def drained(camera, loop, buffers):
    """Seconds per image for loop to take a full set of images that are already waiting."""
    camera.features.execute("AcquisitionStart")
    while camera.stream_features["StreamOutputBufferCount"] < buffers:
        time.sleep(0.002)
    return loop(camera, buffers) / buffers


def overhead(camera, buffers, drains):
    """Median and lowest seconds per image of each loop over the drains."""
    seconds = {cpp_loop: [], python_loop: []}
    features = camera.features
    features["AcquisitionMode"] = "MultiFrame"
    features["AcquisitionFrameCount"] = buffers
    with camera.acquire(buffers=buffers):
        # The acquisition's own first frames are taken, so that each drain starts on an idle
        # camera with every buffer back in the queue.
        cpp_loop(camera, buffers)
        for _ in range(drains):
            for loop, taken in seconds.items():
                taken.append(drained(camera, loop, buffers))
    features["AcquisitionMode"] = "Continuous"
    return {loop: (statistics.median(taken), min(taken)) for loop, taken in seconds.items()}


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--images", type=int, default=300, help="images per throughput round")
    parser.add_argument("--rounds", type=int, default=5, help="throughput rounds per loop")
    parser.add_argument("--drains", type=int, default=41, help="drains per loop and size")
    args = parser.parse_args()
    testing.set_virtual_cameras(["Mono"])
    with orvan.System() as system, system.open(0) as camera:
        make_fast(camera, *TWELVE_MP)
        cpp, python = throughput(camera, args.images, args.rounds)
        print(f"12 MP streaming: C++ {cpp:7.1f} images/s   Python {python:7.1f} images/s   "
              f"Python/C++ {python / cpp:6.1%}")
        for width, height, buffers in DRAINS:
            make_fast(camera, width, height)
            times = overhead(camera, buffers, args.drains)
            (cpp_median, cpp), (python_median, python) = times[cpp_loop], times[python_loop]
            print(f"{width}x{height} waiting images: C++ {cpp * 1e6:5.2f} us/image   Python "
                  f"{python * 1e6:5.2f} us/image   Python overhead {(python - cpp) * 1e6:5.2f} "
                  f"us/image (lowest of {args.drains} drains of {buffers}; median "
                  f"{(python_median - cpp_median) * 1e6:.2f})")

if __name__ == "__main__":
    main()
