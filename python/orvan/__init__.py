"""Orvan camera SDK for Python.

    import orvan

    with orvan.System() as system:
        with system.open(0) as camera:
            camera.features["ExposureTime"] = 2000.0
            for image in camera.images(count=10):
                print(image.frame_id, image.array.mean())

Images delivered by a camera are NumPy arrays over the camera's own buffers: no pixel is
copied. Errors of the SDK are raised as subclasses of orvan.GenericException.
"""

from ._orvan import (  # noqa: F401
    AccessException,
    AcquireScope,
    BadAllocException,
    Camera,
    DeviceInfo,
    DynamicCastException,
    FeatureInfo,
    Features,
    GenericException,
    Image,
    ImageIterator,
    InterfaceInfo,
    InvalidArgumentException,
    Logger,
    LogicalErrorException,
    OutOfRangeException,
    PropertyException,
    RuntimeException,
    System,
    TimeoutException,
    convert,
    log,
    version,
    write_logging_configuration,
)

import sys as _sys

from ._orvan import _testing

# Test support stays importable as orvan._testing without being part of the API's namespace.
_sys.modules[__name__ + "._testing"] = _testing
del _sys

__version__ = version()
