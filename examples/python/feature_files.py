"""Saves a camera's settings to a feature file and restores them."""

import os
import sys
import tempfile

import orvan

path = sys.argv[1] if len(sys.argv) > 1 else os.path.join(tempfile.gettempdir(), "camera.pfs")
with orvan.System() as system:
    with system.open(0) as camera:
        camera.features["Width"] = 800
        camera.features["Gain"] = 6.0
        camera.save_features(path)
        camera.features["Width"] = 1024
        camera.features["Gain"] = 0.0
        camera.load_features(path)
        print(f"Restored from {path}: Width {camera.features['Width']}, "
              f"Gain {camera.features['Gain']}")
