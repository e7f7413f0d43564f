"""Callbacks on the SDK's threads, waits that release the GIL, and memory over many images."""

import _thread
import gc
import threading
import time
import tracemalloc

import pytest

import orvan
import orvan._testing as testing


def wait_until(predicate, seconds=5.0):
    deadline = time.monotonic() + seconds
    while not predicate() and time.monotonic() < deadline:
        time.sleep(0.01)
    return predicate()


def test_image_callback_runs_on_an_sdk_thread_under_load(camera):
    seen = []
    main = threading.get_ident()

    def on_image(image):
        seen.append((threading.get_ident(), image.frame_id, int(image.array[1].sum())))

    camera.on_image(on_image)
    with camera.acquire():
        assert wait_until(lambda: len(seen) >= 300)
    camera.on_image(None)
    assert all(thread != main for thread, _, _ in seen)
    frames = [frame for _, frame, _ in seen]
    assert frames == sorted(frames)


@pytest.mark.filterwarnings("ignore::pytest.PytestUnraisableExceptionWarning")
def test_failing_callback_does_not_stop_delivery(camera):
    calls = []

    def on_image(image):
        calls.append(image.frame_id)
        raise ValueError("the application's bug")

    camera.on_image(on_image)
    with camera.acquire():
        assert wait_until(lambda: len(calls) >= 5)
    camera.on_image(None)


def test_disconnect_callback_reports_loss(system):
    camera = system.open()
    states = []
    system.on_disconnect(camera, states.append)
    testing.set_connected(camera.info.device_id, False)
    assert wait_until(lambda: False in states)
    testing.set_connected(camera.info.device_id, True)


def test_event_callback_via_on_change(camera):
    frames = []
    camera.features["EventSelector"] = "ExposureEnd"
    camera.features["EventNotification"] = "On"

    def on_event(name):
        frames.append(camera.features["EventExposureEndFrameID"])

    handle = camera.features.on_change("EventExposureEnd", on_event)
    with camera.acquire():
        for _ in camera.images(count=5):
            pass
        assert wait_until(lambda: len(frames) >= 3)
    assert camera.features.remove_callback(handle)
    assert not camera.features.remove_callback(handle)


@pytest.mark.parametrize("wait", [
    lambda camera: camera.get_image(timeout=0.5),
    lambda camera: next(camera.images(timeout=0.5)),
])
def test_other_threads_run_while_an_image_is_awaited(triggered, wait):
    ticks = []
    stop = threading.Event()

    def count():
        while not stop.is_set():
            ticks.append(1)
            time.sleep(0.001)

    worker = threading.Thread(target=count)
    worker.start()
    before = len(ticks)
    with pytest.raises(TimeoutError) as raised:
        wait(triggered)
    stop.set()
    worker.join()
    assert isinstance(raised.value, orvan.TimeoutException)
    assert len(ticks) - before > 50


def test_ctrl_c_interrupts_an_endless_wait(triggered):
    timer = threading.Timer(0.3, _thread.interrupt_main)
    timer.start()
    started = time.monotonic()
    with pytest.raises(KeyboardInterrupt):
        triggered.get_image(timeout=None)
    assert time.monotonic() - started < 3.0
    timer.join()


def through_the_loop(camera, count):
    for image in camera.images(count=count):
        image.array.sum()


def one_by_one(camera, count):
    for _ in range(count):
        with camera.get_image() as image:
            image.array.sum()


@pytest.mark.parametrize("take", [through_the_loop, one_by_one])
def test_memory_stable_over_ten_thousand_images(camera, take):
    camera.features["Width"] = 16
    camera.features["Height"] = 16
    camera.features["ExposureTime"] = 1.0
    with camera.acquire(buffers=8):
        take(camera, 500)
        gc.collect()
        tracemalloc.start()
        objects = len(gc.get_objects())
        base, _ = tracemalloc.get_traced_memory()
        take(camera, 10000)
        gc.collect()
        grown = tracemalloc.get_traced_memory()[0] - base
        tracemalloc.stop()
    assert grown < 64 * 1024
    assert len(gc.get_objects()) - objects < 100
