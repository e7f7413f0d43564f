"""Features by name, typed by their nodes, on every node map of a camera."""

import pytest

import orvan


@pytest.mark.parametrize("name, kind, value", [
    ("Width", int, 48),
    ("ExposureTime", float, 250.0),
    ("ExposureTime", float, 300),
    ("PixelFormat", str, "Mono12"),
    ("ChunkModeActive", bool, True),
    ("DeviceUserID", str, "bench-left"),
])
def test_values_round_trip_with_the_nodes_type(camera, name, kind, value):
    camera.features[name] = value
    read = camera.features[name]
    assert type(read) is kind
    assert read == value


@pytest.mark.parametrize("name, value, error, builtin", [
    ("Width", 10**9, orvan.OutOfRangeException, ValueError),
    ("PixelFormat", "NoSuchFormat", orvan.LogicalErrorException, RuntimeError),
    ("DeviceModelName", "x", orvan.RuntimeException, RuntimeError),
    ("Width", "wide", TypeError, TypeError),
    ("Width", 1.5, TypeError, TypeError),
    ("NoSuchFeature", 1, KeyError, KeyError),
])
def test_refused_writes_raise_mapped_exceptions(camera, name, value, error, builtin):
    with pytest.raises(error) as raised:
        camera.features[name] = value
    assert isinstance(raised.value, builtin)
    if isinstance(raised.value, orvan.GenericException):
        assert name in str(raised.value) or value in str(raised.value)


def test_info_reports_limits_entries_and_access(camera):
    width = camera.features.info("Width")
    assert (width.type, width.access, width.min, width.max) == ("int", "RW", 16, 4096)
    assert width.inc >= 1
    exposure = camera.features.info("ExposureTime")
    assert exposure.type == "float" and exposure.unit
    fmt = camera.features.info("PixelFormat")
    assert fmt.type == "enum" and "Mono12p" in fmt.entries
    assert camera.features.info("DeviceModelName").access == "RO"


def test_iteration_lists_features_not_categories(camera):
    names = list(camera.features)
    assert "Width" in names and "TriggerSoftware" in names
    assert all(camera.features.info(n).type != "category" for n in names)
    assert "Width" in camera.features and "Nope" not in camera.features


def test_execute_runs_a_command(triggered):
    triggered.features.execute("TriggerSoftware")
    with triggered.get_image(timeout=2.0) as image:
        assert image.frame_id >= 1


@pytest.mark.parametrize("attribute, name", [
    ("stream_features", "StreamAnnouncedBufferCount"),
    ("device_features", "DeviceSerialNumber"),
    ("interface_features", "InterfaceID"),
])
def test_transport_layer_maps(camera, attribute, name):
    assert name in getattr(camera, attribute)


def test_feature_file_restores_settings(camera, tmp_path):
    path = str(tmp_path / "camera.pfs")
    camera.features["Width"] = 96
    camera.features["Gain"] = 3.0
    camera.save_features(path)
    camera.features["Width"] = 128
    camera.features["Gain"] = 0.0
    camera.load_features(path)
    assert (camera.features["Width"], camera.features["Gain"]) == (96, 3.0)


def test_loading_a_missing_file_raises(camera, tmp_path):
    with pytest.raises(orvan.RuntimeException):
        camera.load_features(str(tmp_path / "missing.pfs"))
