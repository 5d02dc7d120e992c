"""Pages of the built program, and a browser without a screen that opens them.

DRAVO_PROGRAM is the program, DRAVO_EXAMPLES the folder of examples.
"""

import atexit
import functools
import json
import os
import pathlib
import shutil
import subprocess
import tempfile
import time
import unittest

from selenium import webdriver
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By

PROGRAM = pathlib.Path(os.environ["DRAVO_PROGRAM"]).resolve()
EXAMPLES = pathlib.Path(os.environ["DRAVO_EXAMPLES"]).resolve()
PARAMETERS = ("r", "theta", "phi", "alpha", "beta", "gamma")

FOLDER = pathlib.Path(tempfile.mkdtemp(prefix="dravo-browser-"))
atexit.register(shutil.rmtree, FOLDER, ignore_errors=True)
DOWNLOADS = FOLDER / "downloads"

FORMAMIDE = [EXAMPLES / "formamide-dimer/QN-input-GEOMETRY.xyz"]
WATER = [EXAMPLES / "water-dimer/water-dimer.xyz", "--split", 3]
ARGON_HCN = [EXAMPLES / "argon-hcn/argon.xyz", EXAMPLES / "argon-hcn/hcn.xyz", "--r", 4]
HCN_WATER = [EXAMPLES / "argon-hcn/hcn.xyz", EXAMPLES / "water-dimer/water.xyz", "--r", 3.5, "--theta", 70]


# --- the program ----------------------------------------------------------------------------------


def dravo(*words, folder=FOLDER):
    """What `dravo` writes to standard output."""
    done = subprocess.run(
        [PROGRAM, *map(str, words)], cwd=folder, capture_output=True, text=True, check=False
    )
    if done.returncode != 0:
        raise RuntimeError(f"dravo {' '.join(map(str, words))}: {done.stderr}")
    return done.stdout


def has_engine():
    """Whether energies can be computed."""
    return (PROGRAM.parent / "dravo-xtb-worker").exists() or "DRAVO_XTB_WORKER" in os.environ


def needs_engine():
    if not has_engine():
        raise unittest.SkipTest("needs dravo-xtb-worker, which is built where libxtb is")


@functools.lru_cache(maxsize=None)
def page_of(name, *words):
    """The page that `dravo view` writes for these words: its path."""
    page = FOLDER / f"{name}.html"
    dravo("view", *words, "-o", page)
    return page


def pair_page():
    return page_of("formamide-pair", *FORMAMIDE)


@functools.lru_cache(maxsize=None)
def scan_page():
    """2 to 6 Angstrom by 13 directions."""
    dravo("scan", *FORMAMIDE, "--r", "2:6:0.25", "--theta", "0:180:15", "--phi", 0, "--alpha", 0,
          "--beta", 90, "--gamma", 0, "--exact", "--output", "scan")
    return page_of("scan", "scan")


@functools.lru_cache(maxsize=None)
def profile_page():
    dravo("scan", EXAMPLES / "formamide-dimer/formamide-dimer.xyz", "--split", 6, "--r", "2.8:6:0.1",
          "--output", "pulled")
    return page_of("pulled", "pulled")


@functools.lru_cache(maxsize=None)
def energy_page():
    needs_engine()
    dravo("scan", EXAMPLES / "formamide-dimer/formamide-dimer.xyz", "--split", 6, "--r", "2.8:4.2:0.2",
          "--beta", "60:120:10", "--energy", "gfnff", "--output", "energies")
    return page_of("energies", "energies")


@functools.lru_cache(maxsize=None)
def docking_page():
    needs_engine()
    water = EXAMPLES / "water-dimer/water.xyz"
    dravo("dock", water, water, "--score", "gfnff", "--starts", 40, "--output", "minima")
    return page_of("minima", "minima")


@functools.lru_cache(maxsize=None)
def trajectory_page():
    dravo("scan", *FORMAMIDE, "--random", 60, "--r", "4,5", "--exact", "--output", "frames")
    return page_of("trajectory", FOLDER / "frames.xyz", "--split", 6, "--frame", "all")


PAGES = {
    "pair": pair_page, "scan": scan_page, "profile": profile_page, "energies": energy_page,
    "docking": docking_page, "trajectory": trajectory_page,
}


# --- the browser ----------------------------------------------------------------------------------


def new_browser(*arguments):
    options = webdriver.ChromeOptions()
    options.binary_location = "/usr/bin/chromium"
    for argument in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage",
                     "--force-device-scale-factor=1", "--window-size=1300,900",
                     f"--user-data-dir={tempfile.mkdtemp(dir=FOLDER)}", *arguments):
        options.add_argument(argument)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
    options.add_experimental_option("prefs", {
        "download.default_directory": str(DOWNLOADS), "download.prompt_for_download": False})
    browser = webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)
    atexit.register(browser.quit)
    browser.set_script_timeout(60)
    return browser


@functools.lru_cache(maxsize=None)
def shared_browser():
    """One for all tests: to start another takes longer than most of them."""
    return new_browser()


class PageTest(unittest.TestCase):
    """A test with a browser in `self.browser`, as it was at the beginning, and short ways to a page."""

    def setUp(self):
        self.browser = shared_browser()
        self.emulate()
        self.resize(1300, 900)

    # --- how the browser is ---

    def emulate(self, **features):
        """Of media, as prefers_color_scheme="dark"; those not named are as they are without."""
        usual = {"prefers_color_scheme": "light", "prefers_reduced_motion": "no-preference"}
        self.browser.execute_cdp_cmd("Emulation.setEmulatedMedia", {"features": [
            {"name": name.replace("_", "-"), "value": value}
            for name, value in {**usual, **features}.items()]})

    def resize(self, width, height):
        """Of what the page sees, in pixels."""
        self.browser.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
            "width": width, "height": height, "deviceScaleFactor": 1, "mobile": False})

    def open(self, page):
        self.browser.get(page.as_uri())
        self.settle()

    def settle(self):
        """Until what was asked is painted: the second picture of the screen from now has it."""
        self.browser.execute_async_script(
            "const [done] = arguments;"
            "requestAnimationFrame(() => requestAnimationFrame(() => done()));")

    def rest(self):
        """Until a picture that has been turned or changed has its details: without them it is faster."""
        time.sleep(0.25)
        self.settle()

    # --- the page ---

    def run_script(self, script, *arguments):
        return self.browser.execute_script(script, *arguments)

    def by_id(self, name):
        return self.browser.find_element(By.ID, name)

    def press(self, name):
        self.by_id(name).click()

    def keys(self, name, *keys):
        self.run_script("document.getElementById(arguments[0]).focus()", name)
        self.browser.switch_to.active_element.send_keys(*keys)
        self.settle()

    def data(self):
        """What the program wrote for the script of the page."""
        return json.loads(self.run_script("return document.getElementById('data').textContent"))

    def pose(self):
        """The six parameters as the fields show them, with up to four decimals."""
        return {name: float(self.by_id(f"field-{name}").get_property("value")) for name in PARAMETERS}

    def set_values(self, values, kind):
        """kind: "slider" or "field"."""
        self.run_script("""
            for (const [name, value] of Object.entries(arguments[0])) {
              const input = document.getElementById(`${arguments[1]}-${name}`);
              input.value = String(value);
              input.dispatchEvent(new Event('input'));
              input.dispatchEvent(new Event('change'));
            }""", values, kind)

    def told(self):
        """What is told about the pose when it has been at rest for a while."""
        return self.changed(lambda: self.by_id("picture").get_attribute("aria-label"), "The pair")

    def changed(self, read, before, seconds=5):
        """What `read` gives when it is something else than `before`."""
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            value = read()
            if value != before:
                return value
            time.sleep(0.02)
        self.fail(f"still {before!r} after {seconds} s")

    def console(self):
        """Messages since the last call."""
        return [f"{line['level']}: {line['message']}" for line in self.browser.get_log("browser")]
