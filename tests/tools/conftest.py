"""What the viewer's tests share: `orvan view` running on virtual cameras, and its requests."""

import http.client
import json
import os
import re
import select
import signal
import subprocess
import time
import urllib.parse

import pytest

ORVAN = os.environ.get("ORVAN_TOOL", "orvan")
# A loaded two-core machine may take its time: every wait is for a condition, up to this long.
TIMEOUT = 60


def wait_for(condition, what, timeout=TIMEOUT):
    """Polls condition() until it returns something true, and returns that."""
    deadline = time.monotonic() + timeout
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > deadline:
            raise AssertionError(f"timed out after {timeout} s waiting for {what}")
        time.sleep(0.1)


class Viewer:
    """A running `orvan view` and the requests its page makes."""

    def __init__(self, process, url):
        self.process = process
        self.url = url
        parts = urllib.parse.urlsplit(url)
        self.host, self.port = parts.hostname, parts.port
        self.token = urllib.parse.parse_qs(parts.query).get("token", [None])[0]

    def connect(self):
        return http.client.HTTPConnection(self.host, self.port, timeout=TIMEOUT)

    def path(self, path, token=True):
        if token and self.token:
            path += ("&" if "?" in path else "?") + "token=" + self.token
        return path

    def request(self, path, body=None, token=True):
        """(status, body bytes); a body is sent as JSON with POST."""
        connection = self.connect()
        try:
            if body is None:
                connection.request("GET", self.path(path, token))
            else:
                connection.request("POST", self.path(path, token), json.dumps(body),
                                   {"Content-Type": "application/json"})
            response = connection.getresponse()
            return response.status, response.read()
        finally:
            connection.close()

    def api(self, path, body=None):
        status, data = self.request(path, body)
        assert status == 200, f"{path}: {status} {data[:300]!r}"
        return json.loads(data)

    def status(self):
        return self.api("/api/status")

    def feature(self, name):
        """The feature's state as the SDK reads it from the camera now."""
        pending = list(self.api("/api/features"))
        while pending:
            item = pending.pop()
            if item["name"] == name and item["type"] != "Category":
                return item
            pending.extend(item.get("features", []))
        raise AssertionError(f"no feature {name}")


@pytest.fixture(scope="module")
def start_viewer(tmp_path_factory):
    """start_viewer(models, *arguments) runs `orvan view` on those virtual camera models; each
    one must stop cleanly on Ctrl-C when the module's tests are done."""
    started = []

    def start(models, *arguments):
        environment = dict(os.environ, ORVAN_VIRTUAL_CAMERAS=models, ORVAN_GIGE_INTERFACES="",
                           ORVAN_GENTL_PRODUCERS="0")
        process = subprocess.Popen([ORVAN, "view", *arguments], env=environment, text=True,
                                   cwd=tmp_path_factory.mktemp("view"),
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        started.append(process)
        ready, _, _ = select.select([process.stdout], [], [], TIMEOUT)
        line = process.stdout.readline() if ready else ""
        found = re.search(r"http://\S+", line)
        assert found, f"orvan view printed no URL: {line!r}"
        return Viewer(process, found.group(0))

    yield start
    for process in started:
        assert process.poll() is None, "orvan view ended before it was stopped"
        process.send_signal(signal.SIGINT)
        output, errors = process.communicate(timeout=TIMEOUT)
        assert process.returncode == 0 and errors == "", f"exit {process.returncode}: {errors}"
        assert output.rstrip().endswith("stopped")
