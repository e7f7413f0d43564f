"""Discovery, opening cameras by every kind of name, and the system's own features."""

import pytest

import orvan


def test_version_is_the_sdks():
    assert orvan.version().count(".") == 3


def test_devices_describe_each_virtual_camera(open_system):
    system = open_system("Mono", "Color", interfaces=2)
    devices = system.devices(timeout=1.0)
    assert sorted(d.model for d in devices) == ["VirtualColor", "VirtualMono"]
    assert len({d.serial for d in devices}) == 2
    assert any(i.id == "VirtualIF1" for i in system.interfaces())


@pytest.mark.parametrize("name", ["serial", "index", "index_text", "info", "user_name"])
def test_open_by_every_kind_of_name(open_system, name):
    system = open_system("Mono", "Color")
    wanted = system.devices()[1]
    if name == "user_name":
        with system.open(wanted) as camera:
            camera.features["DeviceUserID"] = "left"
        wanted = system.devices()[1]
    which = {"serial": wanted.serial, "index": 1, "index_text": "1", "info": wanted,
             "user_name": "left"}[name]
    with system.open(which) as camera:
        assert camera.info.serial == wanted.serial


@pytest.mark.parametrize("which", ["no-such-camera", 7, "7"])
def test_unknown_camera_is_a_value_error(system, which):
    with pytest.raises(orvan.InvalidArgumentException) as raised:
        system.open(which)
    assert isinstance(raised.value, ValueError)


def test_closed_system_refuses_use(open_system):
    system = open_system("Mono")
    camera = system.open()
    system.close()
    assert camera.closed
    with pytest.raises(orvan.LogicalErrorException):
        system.devices()
    with pytest.raises(orvan.LogicalErrorException):
        camera.features["Width"]


def test_system_features_are_the_transport_layers(system):
    assert system.features["TLModelName"]
