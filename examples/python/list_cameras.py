"""Lists the interfaces and every camera found on them."""

import orvan

with orvan.System() as system:
    for interface in system.interfaces():
        print(f"Interface {interface.id}")
    devices = system.devices(timeout=1.0)
    for index, info in enumerate(devices):
        print(f"Camera {index}: {info.vendor} {info.model}, serial {info.serial}, ip {info.ip}")
    print(f"Found {len(devices)} camera(s)")
