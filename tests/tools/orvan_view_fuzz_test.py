"""orvan view bound beyond the loopback address: every request without its access token is refused,
and a few thousand random requests, with and without the token, never bring the server down nor
draw anything but a proper answer."""

import http.client
import json
import os
import random
import socket
import subprocess

import pytest

from conftest import ORVAN, TIMEOUT

ROUTES = [
    ("GET", "/"), ("GET", "/index.html"), ("GET", "/viewer.js"), ("GET", "/api/cameras"),
    ("GET", "/api/status"), ("GET", "/api/features"), ("GET", "/api/frame"),
    ("GET", "/api/image.png"), ("GET", "/api/settings"), ("POST", "/api/open"),
    ("POST", "/api/feature"), ("POST", "/api/command"), ("POST", "/api/acquisition"),
    ("POST", "/api/settings"),
]


@pytest.fixture(scope="module")
def viewer(start_viewer):
    # Another loopback address stands for "beyond localhost": the rule is the same for any
    # address but 127.0.0.1, and the test's traffic stays on this machine.
    served = start_viewer("Mono", "0", "--bind", "127.0.0.2", "--port", "0")
    assert served.host == "127.0.0.2" and served.token
    return served


def send(viewer, method, path, body=b"", content_type="application/json"):
    """Any bytes in the path, which HTTP clients would refuse to send."""
    head = (f"{method} {path} HTTP/1.1\r\nHost: {viewer.host}\r\nContent-Type: {content_type}\r\n"
            f"Content-Length: {len(body)}\r\nConnection: close\r\n\r\n")
    with socket.create_connection((viewer.host, viewer.port), timeout=TIMEOUT) as client:
        client.sendall(head.encode("utf-8", "surrogatepass") + body)
        response = http.client.HTTPResponse(client, method=method)
        response.begin()
        return response.status, response.read()


@pytest.mark.parametrize("method, path", ROUTES)
def test_requests_without_the_token_are_refused(viewer, method, path):
    body = b'{"name": "Width", "value": "64", "action": "stop"}'
    for query in ["", "?token=", "?token=" + viewer.token[:-1], "?token=" + "0" * 32]:
        status, answer = send(viewer, method, path + query, body)
        assert status == 403 and b"access token" in answer, f"{method} {path}{query}"
    status, _ = send(viewer, method, viewer.path(path), body)
    assert status != 403


def test_a_second_viewer_cannot_take_the_port(viewer):
    second = subprocess.run([ORVAN, "view", "0", "--bind", viewer.host, "--port", str(viewer.port)],
                            env=dict(os.environ, ORVAN_GIGE_INTERFACES="", ORVAN_GENTL_PRODUCERS="0"),
                            capture_output=True, text=True, timeout=TIMEOUT)
    assert second.returncode == 1 and "cannot listen" in second.stderr


def random_text(rng, length):
    alphabet = "abcXYZ019 _-./%?&=#:;'\"\\<>{}[]\x00\x7f\u00e9\u2603"
    return "".join(rng.choice(alphabet) for _ in range(length))


def random_path(rng, viewer, path):
    roll = rng.random()
    if roll < 0.1:
        path += random_text(rng, rng.randrange(1, 40))
    elif roll < 0.15:
        path = "/" + "".join(f"%{rng.randrange(256):02x}" for _ in range(rng.randrange(1, 30)))
    elif roll < 0.17:
        path = "/" + "a" * rng.randrange(1000, 9000)
    if path.startswith("/api/frame"):
        # A well-formed request for an image that does not exist yet waits for it; keep to the
        # malformed and the immediate ones.
        path += rng.choice(["?after=x", "?after=-1", "?after=", "?after=0"])
    return viewer.path(path) if rng.random() < 0.9 else path


class Material:
    """Names and values the camera knows, so that many requests get as far as the camera."""

    def __init__(self, viewer):
        self.values = {}  # feature name -> values it had, its limits and entries
        odd = ["", "nan", "1e308", str(-2**63), "0x10", "start", "OV100000"]
        pending = list(viewer.api("/api/features"))
        while pending:
            item = pending.pop()
            pending.extend(item.get("features", []))
            # A reset would restart the camera early and leave little for the other requests.
            if item["type"] != "Category" and item["name"] != "DeviceReset":
                own = [str(item[key]) for key in ("value", "min", "max") if key in item]
                self.values[item["name"]] = own + item.get("entries", []) + odd
        status, settings = viewer.request("/api/settings")
        assert status == 200
        self.settings = settings.decode().splitlines()

    def settings_file(self, rng):
        lines = [line for line in self.settings if rng.random() < 0.9]
        if rng.random() < 0.5:
            lines.insert(rng.randrange(len(lines) + 1), random_text(rng, 30))
        return "\n".join(lines)

    def body(self, rng):
        roll = rng.random()
        if roll < 0.15:
            return bytes(rng.randrange(256) for _ in range(rng.randrange(0, 300)))
        if roll < 0.25:
            return random_text(rng, rng.randrange(0, 200)).encode("utf-8", "surrogatepass")
        name = rng.choice(list(self.values))
        fields = {"name": name, "value": rng.choice(self.values[name]),
                  "action": rng.choice(["start", "stop", "single", "pause"]),
                  "serial": rng.choice(["OV100000", "OV999999", "0"]),
                  "content": self.settings_file(rng)}
        for key in rng.sample(list(fields), rng.randrange(0, 3)):
            fields[key] = rng.choice([None, 7, [], {}, random_text(rng, 8)])
        return json.dumps(fields).encode()


def test_random_requests_get_proper_answers(viewer):
    rng = random.Random(20260512)
    material = Material(viewer)
    methods = ["GET", "POST", "PUT", "DELETE", "OPTIONS", "HEAD", "PATCH"]
    answered = set()
    for number in range(3000):
        method, path = rng.choice(ROUTES)
        if rng.random() < 0.1:
            method = rng.choice(methods)
        path = random_path(rng, viewer, path)
        content_type = "application/json" if rng.random() < 0.9 else "text/plain"
        body = material.body(rng) if method != "GET" else b""
        try:
            status, answer = send(viewer, method, path, body, content_type)
        except (http.client.HTTPException, OSError) as error:
            raise AssertionError(f"request {number}: {method} {path[:200]!r}: {error}")
        assert status < 500, f"request {number}: {method} {path[:200]!r} {body[:200]!r}: {status}"
        if status >= 400 and method != "HEAD":
            assert json.loads(answer)["error"], f"request {number}: {status} without a message"
        answered.add(status)
    # The requests reached the camera, which took some and refused others.
    assert {200, 400, 403, 404, 422} <= answered
    assert viewer.process.poll() is None
    assert viewer.status()["camera"]["model"] == "VirtualMono"


def test_malformed_requests_are_refused(viewer):
    rng = random.Random(7)
    lines = [b"GARBAGE\r\n\r\n", b"GET\r\n\r\n", b"GET / HTTP/9.9\r\n\r\n", b"\x00\xff" * 50 + b"\r\n\r\n",
             b"GET /" + b"x" * 20000 + b" HTTP/1.1\r\n\r\n",
             b"POST /api/feature HTTP/1.1\r\nContent-Length: 99999999999999999999\r\n\r\n"]
    lines += [bytes(rng.randrange(256) for _ in range(rng.randrange(1, 200))) + b"\r\n\r\n"
              for _ in range(200)]
    for raw in lines:
        with socket.create_connection((viewer.host, viewer.port), timeout=TIMEOUT) as client:
            client.sendall(raw)
            client.shutdown(socket.SHUT_WR)
            reply = b""
            while chunk := client.recv(65536):
                reply += chunk
        # The server may hang up on bytes that are not HTTP at all; when it answers, it refuses.
        assert reply == b"" or reply.startswith((b"HTTP/1.1 4", b"HTTP/1.0 4")), raw[:80]
    assert viewer.status()["camera"]["model"] == "VirtualMono"
