"""orvan view in a real browser: Debian's headless Chromium, driven through WebDriver, on a virtual
colour camera. Each test acts in the page as a user would. What it changed is read back through
the SDK in two ways: the viewer's feature tree, which the SDK reads from the camera past its
cache, and the images the stream delivers, whose timing and pixel format the camera itself sets.
(The virtual camera lives inside the viewer's process, so no second program can open it.)"""

import io
import json
import os
import re
import tempfile

import pytest
from PIL import Image
from selenium import webdriver
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.ui import Select

from conftest import TIMEOUT, wait_for

# Without these Chromium running as root in a sandbox without a network stalls or refuses.
BROWSER_FLAGS = [
    "--headless=new", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
    "--disable-background-networking", "--disable-component-update", "--disable-sync",
    "--disable-dev-shm-usage", "--window-size=1400,1000",
]


@pytest.fixture(scope="module")
def viewer(start_viewer):
    return start_viewer("Color", "0", "--port", "0")


@pytest.fixture(scope="module")
def page(viewer):
    options = webdriver.ChromeOptions()
    options.binary_location = os.environ.get("ORVAN_CHROMIUM", "/usr/bin/chromium")
    profile = tempfile.TemporaryDirectory()
    for flag in BROWSER_FLAGS + [f"--user-data-dir={profile.name}"]:
        options.add_argument(flag)
    service = Service(os.environ.get("ORVAN_CHROMEDRIVER", "/usr/bin/chromedriver"))
    driver = webdriver.Chrome(service=service, options=options)
    driver.set_page_load_timeout(TIMEOUT)
    try:
        driver.get(viewer.url)
        wait_for(lambda: shown_sequence(driver) > 0, "the first image in the page")
        wait_for(lambda: driver.find_elements(By.ID, "feature-ExposureTime"), "the feature tree")
        yield driver
    finally:
        driver.quit()
        profile.cleanup()


def shown_sequence(driver):
    return int(driver.find_element(By.ID, "view").get_attribute("data-sequence") or 0)


def picture(driver):
    """The live image as the browser draws it, decoded to RGB."""
    png = driver.find_element(By.ID, "view").screenshot_as_png
    return Image.open(io.BytesIO(png)).convert("RGB")


def coloured_pixels(image):
    return sum(1 for r, g, b in image.getdata() if max(r, g, b) - min(r, g, b) > 40)


def type_value(driver, name, text):
    field = driver.find_element(By.ID, f"feature-{name}")
    field.send_keys(Keys.CONTROL, "a")
    field.send_keys(text, Keys.TAB)  # leaving the field commits it


def choose(driver, name, entry):
    Select(driver.find_element(By.ID, f"feature-{name}")).select_by_value(entry)


def error_beside(driver, name):
    row = driver.find_element(By.CSS_SELECTOR, f'.feature[data-name="{name}"]')
    return row.find_element(By.CLASS_NAME, "error").text


def test_page_shows_the_moving_colour_image(viewer, page):
    Select(page.find_element(By.ID, "visibility")).select_by_visible_text("Expert")
    choose(page, "TestPattern", "ColorBar")
    wait_for(lambda: viewer.feature("TestPattern")["value"] == "ColorBar", "the colour bars")
    after = viewer.status()["frame"]["sequence"]
    wait_for(lambda: shown_sequence(page) > after + 1, "images of the colour bars")
    first = picture(page)
    assert coloured_pixels(first) > first.width * first.height // 4, "demosaiced into colour"
    screenshot = os.environ.get("ORVAN_VIEW_SCREENSHOT")
    if screenshot:
        page.execute_script("document.getElementById('side').scrollTop = 0")
        page.save_screenshot(screenshot)
    # The bars drift by a few rows per image; the same picture comes back only every 64 images.
    shown = shown_sequence(page)
    wait_for(lambda: shown_sequence(page) > shown + 1 and picture(page).tobytes() != first.tobytes(),
             "a screenshot whose pixels differ from the first")


def test_exposure_time_reaches_the_camera(viewer, page):
    wait_for(lambda: 0 < viewer.status()["frameIntervalMs"] < 30, "the short exposure")
    # Free-running, the camera starts an image when the last exposure ends: the time between the
    # timestamps of delivered images is the exposure time.
    type_value(page, "ExposureTime", "50000")
    wait_for(lambda: viewer.feature("ExposureTime")["value"] == "50000", "ExposureTime 50000")
    wait_for(lambda: viewer.status()["frameIntervalMs"] >= 49, "50 ms between images")
    type_value(page, "ExposureTime", "5000")
    wait_for(lambda: 0 < viewer.status()["frameIntervalMs"] < 30, "the short exposure again")


def test_pixel_format_reaches_the_camera(viewer, page):
    # Locked while streaming: the viewer stops the stream for the change and starts it again.
    choose(page, "PixelFormat", "Mono8")
    wait_for(lambda: viewer.feature("PixelFormat")["value"] == "Mono8", "PixelFormat Mono8")
    wait_for(lambda: viewer.status()["frame"]["pixelFormat"] == "Mono8", "Mono8 images")
    shown = viewer.status()["frame"]["sequence"]
    wait_for(lambda: shown_sequence(page) > shown, "a Mono8 image in the page")
    assert coloured_pixels(picture(page)) == 0, "a mono image is shown grey"
    choose(page, "PixelFormat", "BayerRG8")
    wait_for(lambda: viewer.status()["frame"]["pixelFormat"] == "BayerRG8", "BayerRG8 images")


def test_command_executes(viewer, page):
    choose(page, "TriggerMode", "On")
    wait_for(lambda: viewer.feature("TriggerMode")["value"] == "On", "TriggerMode On")
    # The last free-running image may still be on its way: wait until the count stands still.
    counts = []
    wait_for(lambda: counts.append(viewer.status()["images"]) or counts[-10:].count(counts[-1]) == 10,
             "no more images without a trigger")
    page.find_element(By.ID, "feature-TriggerSoftware").click()
    wait_for(lambda: viewer.status()["images"] == counts[-1] + 1, "one image for one trigger")
    assert error_beside(page, "TriggerSoftware") == ""
    choose(page, "TriggerMode", "Off")
    wait_for(lambda: viewer.status()["images"] > counts[-1] + 1, "free running again")


def test_invalid_value_shows_the_sdk_error(viewer, page):
    type_value(page, "ExposureTime", "5000000")
    shown = wait_for(lambda: error_beside(page, "ExposureTime"), "an error beside ExposureTime")
    status, answer = viewer.request("/api/feature", {"name": "ExposureTime", "value": "5000000"})
    assert status == 422
    assert shown == json.loads(answer)["error"]
    assert re.search(r"1e\+06|1000000", shown), "the camera's limit, as the SDK words it"
    assert viewer.feature("ExposureTime")["value"] == "5000"


def test_saved_image_decodes(viewer, page):
    link = page.find_element(By.ID, "save-image").get_attribute("href")
    status, png = viewer.request(link[link.index("/api/"):], token=False)  # the link has it
    assert status == 200 and png.startswith(b"\x89PNG")
    image = Image.open(io.BytesIO(png))
    image.load()
    frame = viewer.status()["frame"]
    assert image.size == (frame["width"], frame["height"])
    assert image.mode == "RGB", "a Bayer image is saved as shown"
