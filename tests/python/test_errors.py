"""The GenICam exceptions seen from Python, and the logger's configuration."""

import json

import pytest

import orvan


@pytest.mark.parametrize("error, builtin", [
    (orvan.TimeoutException, TimeoutError),
    (orvan.InvalidArgumentException, ValueError),
    (orvan.AccessException, PermissionError),
    (orvan.RuntimeException, RuntimeError),
    (orvan.BadAllocException, MemoryError),
])
def test_each_exception_is_also_the_builtin_python_code_catches(error, builtin):
    assert issubclass(error, orvan.GenericException) and issubclass(error, builtin)


def test_bad_timeout_is_a_value_error(system):
    with pytest.raises(ValueError):
        system.devices(timeout=-1.0)


def test_logging_configuration_is_what_the_logger_reads(tmp_path):
    path = tmp_path / "morlu_log.conf"
    orvan.write_logging_configuration(str(path), level="debug", file=True, ports=(1, 2, 3))
    config = json.loads(path.read_text())
    assert config["levels"]["orvan"] == 500
    assert config["ports"] == {"orvan_out": 1, "orvan_in": 2, "ez_in": 3}
    assert config["logging"]["file"] is True


def test_unknown_log_level_is_refused():
    with pytest.raises(ValueError):
        orvan.log("loud", "message")
