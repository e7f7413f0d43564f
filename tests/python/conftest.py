"""Shared fixtures: the SDK opened on chosen virtual cameras, cameras made small and fast."""

import gc

import pytest

import orvan
import orvan._testing as testing


def make_fast(camera, width=64, height=32):
    camera.features["Width"] = width
    camera.features["Height"] = height
    camera.features["ExposureTime"] = 100.0


@pytest.fixture
def open_system():
    """Opens a System on the given virtual camera models; closes it and resets after the test."""
    opened = []

    def open_on(*models, interfaces=1):
        testing.set_virtual_cameras(list(models), interfaces)
        system = orvan.System()
        opened.append(system)
        return system

    yield open_on
    for system in opened:
        system.close()
    # Arrays a failing test left behind must not keep the camera for the next test.
    gc.collect()
    testing.reset()


@pytest.fixture
def system(open_system):
    return open_system("Mono")


@pytest.fixture
def camera(system):
    with system.open(0) as opened:
        make_fast(opened)
        yield opened


@pytest.fixture
def triggered(camera):
    """A camera that sends an image only per software trigger, acquiring."""
    camera.features["TriggerMode"] = "On"
    camera.features["TriggerSource"] = "Software"
    with camera.acquire(buffers=4):
        yield camera
