"""Light and dark, little motion, narrow screens, and machines without WebGL."""

import re
import time
import unittest

from page import PAGES, PageTest, new_browser, pair_page, profile_page
from pictures import box_of, canvas_pixels

# Of texts: their colour, and the first background behind them.
COLOURS = """
    const behind = (node) => {
      for (; node; node = node.parentElement) {
        const colour = getComputedStyle(node).backgroundColor;
        if (colour !== 'rgba(0, 0, 0, 0)') return colour;
      }
      return 'rgb(255, 255, 255)';
    };
    return [...document.querySelectorAll(
      'h1, h2, p, label, button, select, th, td, dt, dd, textarea, caption, summary')]
      .filter((node) =>
        node.getClientRects().length > 0 && node.textContent.trim() !== '' && !node.disabled)
      .map((node) => [node.textContent.trim().slice(0, 20), getComputedStyle(node).color, behind(node)]);"""

OVERFLOWING = """
    const width = document.documentElement.clientWidth;
    const scrolls = (node) =>
      node && (getComputedStyle(node).overflowX === 'auto' || scrolls(node.parentElement));
    return [...document.querySelectorAll('button, input, select, textarea, canvas, p, dl, section')]
      .filter((node) => {
        const box = node.getBoundingClientRect();
        return box.width > 0 && !node.closest('.unseen') && !scrolls(node.parentElement) &&
          (box.right > width + 0.5 || box.left < -0.5);
      })
      .map((node) => node.id || node.tagName);"""


BOXES = """
    return ['picture', 'reset-view', 'map', 'curves', 'list', 'reset-pose'].map((id) => {
      const box = document.getElementById(id).getBoundingClientRect();
      return `${id} ${Math.round(box.left)} ${Math.round(box.top)}`;
    });"""


def luminance(text):
    """Relative luminance of rgb(...), as guidelines for accessibility define it (WCAG 2)."""
    parts = [int(part) / 255 for part in re.findall(r"\d+", text)[:3]]
    linear = [part / 12.92 if part <= 0.04045 else ((part + 0.055) / 1.055) ** 2.4 for part in parts]
    return 0.2126 * linear[0] + 0.7152 * linear[1] + 0.0722 * linear[2]


def contrast(one, two):
    bright, dim = sorted((luminance(one), luminance(two)), reverse=True)
    return (bright + 0.05) / (dim + 0.05)


class Looks(PageTest):
    def is_dark(self):
        """Of the page and of all canvases, which must agree."""
        self.settle()
        body = luminance(self.run_script("return getComputedStyle(document.body).backgroundColor")) < 0.2
        for name in ("picture", "map", "curves"):
            if self.by_id(name).is_displayed():
                self.assertEqual(canvas_pixels(self.browser, name)[1, 1].max() < 50, body, name)
        return body

    def choose(self, theme):
        self.run_script("""
            const select = document.getElementById('theme');
            select.value = arguments[0];
            select.dispatchEvent(new Event('change'));""", theme)

    def test_the_system_decides(self):
        for name in ("pair", "scan", "trajectory"):
            self.emulate(prefers_color_scheme="dark")
            self.open(PAGES[name]())
            self.assertTrue(self.is_dark())
            self.emulate(prefers_color_scheme="light")
            self.assertFalse(self.is_dark())

    def test_the_choice_decides(self):
        self.open(PAGES["scan"]())
        self.choose("dark")
        self.assertTrue(self.is_dark())
        self.emulate(prefers_color_scheme="dark")
        self.choose("light")
        self.assertFalse(self.is_dark())
        self.choose("auto")
        self.assertTrue(self.is_dark())

    def test_contrast(self):
        """Of all texts at least 4.5, also of those that are wrong."""
        for scheme in ("light", "dark"):
            self.emulate(prefers_color_scheme=scheme)
            self.open(PAGES["scan"]())
            self.set_values({"theta": 200}, "field")
            self.set_values({"r": 0.5}, "slider")
            self.settle()
            texts = self.run_script(COLOURS)
            self.assertGreater(len(texts), 40)
            poor = [text for text in texts if contrast(*text[1:]) < 4.5]
            self.assertEqual(poor, [], scheme)

    # --- motion ---

    def poses_played(self, seconds):
        self.open(profile_page())
        self.press("play")
        time.sleep(seconds)
        self.press("play")
        return int(self.by_id("row-slider").get_property("value")) - 1

    def test_little_motion(self):
        """Many poses a second, or one by one for those who asked for little motion."""
        self.assertGreaterEqual(self.poses_played(1.2), 5)
        self.emulate(prefers_reduced_motion="reduce")
        self.assertIn(self.poses_played(1.2), (1, 2))

    def test_nothing_moves_by_itself(self):
        self.open(PAGES["scan"]())
        self.press("view-x")
        self.assertEqual(self.run_script("return document.getAnimations().length"), 0)
        before = canvas_pixels(self.browser, "picture")
        time.sleep(0.5)
        self.assertTrue((canvas_pixels(self.browser, "picture") == before).all())

    def test_nothing_jumps(self):
        """The words about a pose may be long or short: what stands below them stays where it is."""
        long = {"r": 12.34, "theta": 123.4, "phi": 234.5, "alpha": 234.5, "beta": 111.1, "gamma": 222.2}
        for name in ("pair", "scan", "trajectory"):
            for size in ((1300, 900), (800, 1000), (360, 740)):
                with self.subTest(name, size=size):
                    self.resize(*size)
                    self.open(PAGES[name]())
                    before = self.run_script(BOXES)
                    self.told()
                    self.assertEqual(self.run_script(BOXES), before)
                    self.set_values(long, "slider")
                    self.changed(lambda: "theta 123.4" in self.by_id("status").text, False)
                    self.assertEqual(self.run_script(BOXES), before)

    # --- screens ---

    def test_narrow_screen(self):
        for name, make in PAGES.items():
            with self.subTest(name):
                self.resize(360, 740)
                self.open(make())
                self.run_script("document.querySelector('details').open = true")
                self.settle()
                wide = self.run_script(
                    "return [document.documentElement.scrollWidth, document.documentElement.clientWidth]")
                self.assertLessEqual(wide[0], wide[1])
                self.assertEqual(self.run_script(OVERFLOWING), [])
                pixels = canvas_pixels(self.browser, "picture")
                height, width, _ = pixels.shape
                left, top, right, bottom = box_of(pixels)
                self.assertTrue(left > 0 and top > 0 and right < width and bottom < height)

    def test_canvases_have_the_size_in_which_they_are_shown(self):
        """Also when a scroll bar has come, and when the window has changed."""
        for name in ("scan", "trajectory"):
            self.open(PAGES[name]())
            for size in ((1300, 900), (800, 1000), (1300, 900)):
                self.resize(*size)
                self.settle()
                for canvas in ("picture", "map", "curves"):
                    if self.by_id(canvas).is_displayed():
                        width, height, shown, tall = self.run_script("""
                            const canvas = document.getElementById(arguments[0]);
                            return [canvas.width, canvas.height, canvas.clientWidth, canvas.clientHeight];
                            """, canvas)
                        self.assertEqual((width, height), (shown, tall), (canvas, size))

    def test_picture_beside_a_map_is_about_square(self):
        self.open(PAGES["scan"]())
        width, height = self.run_script("""
            const canvas = document.getElementById('picture');
            return [canvas.clientWidth, canvas.clientHeight];""")
        self.assertTrue(0.8 < height / width < 1.25, (width, height))

    def test_without_webgl(self):
        self.open(pair_page())
        usual = canvas_pixels(self.browser, "picture")
        self.browser = new_browser("--disable-3d-apis")
        self.addCleanup(self.browser.quit)
        self.resize(1300, 900)
        self.open(pair_page())
        self.assertIsNone(self.run_script("return document.createElement('canvas').getContext('webgl')"))
        found = canvas_pixels(self.browser, "picture")
        self.assertEqual(found.shape, usual.shape)
        self.assertLess(float((abs(found - usual).max(axis=2) > 40).mean()), 0.001)
        box_of(found)
        self.set_values({"r": 9}, "slider")
        self.settle()
        self.assertEqual(self.pose()["r"], 9)
        self.assertEqual(self.console(), [])


if __name__ == "__main__":
    unittest.main()
