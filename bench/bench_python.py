"""Images per second through `for image in camera.images()` beside the C++ GetImage/RequeueBuffer
loop on the same virtual camera, in the same process and run.

The C++ loop is compiled into the module (orvan._testing.cpp_acquisition_loop) and drives the
very IDevice the Python loop uses, so both see the same camera, buffers and settings. The two
loops alternate for several rounds and the best round of each counts, which keeps a noisy,
shared machine from favouring whichever loop ran first. The Python loop touches image.array in
every iteration, as an application would.

Throughput is set by the camera, so the wall-clock difference between the loops is mostly
noise; the per-image overhead is taken from the CPU time of the calling thread instead (both
loops run on it, and waiting for an image costs none), its difference divided by the count.

    build/bench/bench_python [--images N] [--rounds R]
"""

import argparse
import time

import orvan
import orvan._testing as testing

FRAMES = {"12 MP": (4096, 3000), "small": (64, 64)}


def make_fast(camera, width, height):
    features = camera.features
    features["PixelFormat"] = "Mono8"
    features["Width"] = width
    features["Height"] = height
    features["ExposureTime"] = 1.0
    features["DeviceLinkThroughputLimitMode"] = "Off"
    features["AcquisitionFrameRateEnable"] = False


def python_loop(camera, count):
    for image in camera.images(count=count, timeout=5.0):
        image.array


def cpp_loop(camera, count):
    testing.cpp_acquisition_loop(camera, count)


def timed(loop, camera, count):
    wall, cpu = time.perf_counter(), time.thread_time()
    loop(camera, count)
    return time.perf_counter() - wall, time.thread_time() - cpu


def measure(camera, count, rounds):
    cpp, python = [], []
    for _ in range(rounds):
        cpp.append(timed(cpp_loop, camera, count))
        python.append(timed(python_loop, camera, count))
    best = lambda runs: (min(r[0] for r in runs), min(r[1] for r in runs))  # noqa: E731
    return best(cpp), best(python)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--images", type=int, default=300)
    parser.add_argument("--rounds", type=int, default=5)
    args = parser.parse_args()
    testing.set_virtual_cameras(["Mono"])
    with orvan.System() as system, system.open(0) as camera:
        for label, (width, height) in FRAMES.items():
            make_fast(camera, width, height)
            count = args.images if label != "small" else args.images * 20
            with camera.acquire(buffers=16):
                (cpp, cpp_cpu), (python, python_cpu) = measure(camera, count, args.rounds)
            overhead_us = (python_cpu - cpp_cpu) / count * 1e6
            print(f"{label:>6}: C++ {count / cpp:9.1f} images/s   Python {count / python:9.1f} "
                  f"images/s   Python/C++ {cpp / python:6.1%}   "
                  f"Python overhead {overhead_us:5.2f} us/image (CPU)")


if __name__ == "__main__":
    main()
