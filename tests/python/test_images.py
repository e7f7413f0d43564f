"""Images as NumPy arrays over the camera's buffers, and what happens once they go back."""

import gc

import numpy as np
import pytest

import orvan
import orvan._testing as testing
from conftest import make_fast


@pytest.mark.parametrize("model, pixel_format, shape, dtype", [
    ("Mono", "Mono8", (32, 64), np.uint8),
    ("Mono", "Mono12", (32, 64), np.uint16),
    ("Color", "RGB8", (32, 64, 3), np.uint8),
    ("Color", "RGBa8", (32, 64, 4), np.uint8),
    ("Color", "BayerRG8", (32, 64), np.uint8),
])
def test_array_views_the_buffer_with_the_formats_shape(open_system, model, pixel_format, shape,
                                                       dtype):
    system = open_system(model)
    with system.open() as camera:
        make_fast(camera)
        camera.features["PixelFormat"] = pixel_format
        with camera.acquire(), camera.get_image() as image:
            array = image.array
            assert (array.shape, array.dtype) == (shape, dtype)
            assert array.ctypes.data == testing.buffer_address(image)
            assert not array.flags.writeable
            assert image.pixel_format == pixel_format
            del array


@pytest.mark.parametrize("packed, plain", [
    ("Mono10p", "Mono10"), ("Mono12p", "Mono12"),
    ("Mono10Packed", "Mono10"), ("Mono12Packed", "Mono12"),
])
def test_unpacked_matches_the_unpacked_format(camera, packed, plain):
    frames = {}
    for pixel_format in (packed, plain):
        camera.features["PixelFormat"] = pixel_format
        with camera.acquire(), camera.get_image() as image:
            frames[pixel_format] = (image.frame_id, image.unpacked())
    assert frames[packed][0] == frames[plain][0]
    # The first row carries the frame stamp, written over the pixels in each format's layout.
    np.testing.assert_array_equal(frames[packed][1][1:], frames[plain][1][1:])
    assert frames[packed][1].dtype == np.uint16


@pytest.mark.parametrize("give_back", [
    lambda camera, image: image.requeue(),
    lambda camera, image: camera.stop(),
])
@pytest.mark.parametrize("use", [
    lambda image: image.array,
    lambda image: image.width,
    lambda image: image.copy(),
    lambda image: image.verify_crc(),
])
def test_image_given_back_refuses_use(camera, give_back, use):
    camera.start()
    image = camera.get_image()
    give_back(camera, image)
    assert not image.valid
    with pytest.raises(orvan.LogicalErrorException):
        use(image)


def test_with_block_and_loop_give_images_back(camera):
    seen = []
    for image in camera.images(count=3):
        assert camera.acquiring
        seen.append(image)
    assert not camera.acquiring
    assert len(set(map(id, seen))) == 3
    assert [i.valid for i in seen] == [False, False, False]
    with camera.acquire():
        with camera.get_image() as image:
            pass
        assert not image.valid


def test_arrays_kept_from_the_loop_keep_their_own_buffers(camera):
    with camera.acquire(buffers=8):
        kept = [(image.frame_id, image.array) for image in camera.images(count=6)]
        # The first bytes of each buffer carry the stamp of the frame drawn into it.
        stamps = [int.from_bytes(array[0, :8].tobytes(), "little") for _, array in kept]
        assert stamps == [frame for frame, _ in kept]
        del kept


def test_live_array_keeps_its_buffer_out_of_the_pool(camera):
    with camera.acquire(buffers=3):
        image = camera.get_image()
        kept, frame = image.array, image.frame_id
        before = kept.copy()
        image.requeue()
        for _ in camera.images(count=20):
            pass
        # Refilled by the camera, the stamp in the first bytes would name a later frame.
        assert int.from_bytes(kept[0, :8].tobytes(), "little") == frame
        np.testing.assert_array_equal(kept, before)
        del kept


def test_stop_and_close_wait_for_live_arrays(system):
    camera = system.open()
    make_fast(camera)
    with camera.acquire():
        kept = camera.get_image().array
    assert not camera.acquiring
    with pytest.raises(orvan.LogicalErrorException):
        camera.start()
    assert kept.sum() >= 0
    del kept
    gc.collect()
    camera.start()
    kept = camera.get_image().array
    camera.close()
    system.close()
    # The camera and the system close once the array goes; until then it reads real memory.
    assert kept.shape == (32, 64)
    del kept


def test_copy_owns_its_pixels(camera):
    with camera.acquire():
        with camera.get_image() as image:
            copy = image.copy()
            assert copy.array.ctypes.data != image.array.ctypes.data
            np.testing.assert_array_equal(copy.array, image.array)
    assert copy.valid and copy.array.shape == (32, 64)
    copy.requeue()
    assert copy.array.shape == (32, 64)


def test_chunks_and_crc(camera):
    camera.features["ChunkModeActive"] = True
    for chunk in ("CRC", "ExposureTime", "FrameID"):
        camera.features["ChunkSelector"] = chunk
        camera.features["ChunkEnable"] = True
    camera.features["ExposureTime"] = 120.0
    with camera.acquire(), camera.get_image() as image:
        assert image.verify_crc()
        assert image.chunk("ChunkExposureTime") == 120.0
        assert image.chunk("ChunkFrameID") == image.frame_id
        with pytest.raises(KeyError):
            image.chunk("ChunkNoSuchThing")


def test_get_image_needs_an_acquisition(camera):
    with pytest.raises(orvan.LogicalErrorException):
        camera.get_image(timeout=0.1)


@pytest.fixture
def color_camera(open_system):
    system = open_system("Color")
    with system.open() as camera:
        make_fast(camera)
        yield camera


def test_convert_swaps_channels_exactly(color_camera):
    color_camera.features["PixelFormat"] = "RGB8"
    with color_camera.acquire(), color_camera.get_image() as image:
        bgr = orvan.convert(image, "BGR8")
        np.testing.assert_array_equal(bgr, image.array[..., ::-1])
    assert bgr.flags.writeable


@pytest.mark.parametrize("method", ["bilinear", "hq", "ahd"])
def test_convert_demosaics_bayer_for_opencv(color_camera, method):
    color_camera.features["PixelFormat"] = "BayerRG8"
    with color_camera.acquire(), color_camera.get_image() as image:
        bgr = orvan.convert(image, "BGR8", method=method)
    assert (bgr.shape, bgr.dtype) == ((32, 64, 3), np.uint8)
    assert bgr.std() > 0


@pytest.mark.parametrize("pixel_format, method", [("NoSuchFormat", "hq"), ("BGR8", "sharp")])
def test_convert_refuses_unknown_names(color_camera, pixel_format, method):
    with color_camera.acquire(), color_camera.get_image() as image:
        with pytest.raises(ValueError):
            orvan.convert(image, pixel_format, method=method)
