"""The page can be used with the keyboard alone."""

import unittest

import numpy
from selenium.webdriver.common.keys import Keys

from page import PAGES, PARAMETERS, PageTest, docking_page, pair_page, scan_page, trajectory_page
from pictures import box_of, canvas_pixels

STEPS = {"r": 0.01, "theta": 0.1, "phi": 0.1, "alpha": 0.1, "beta": 0.1, "gamma": 0.1}
ENDS = {"theta": 180, "phi": 360, "alpha": 360, "beta": 180, "gamma": 360}

# Of what Tab should reach: one of the buttons of a group, and what is neither hidden nor switched off.
REACHABLE = """
    const groups = new Set();
    return [...document.querySelectorAll('button, input, select, textarea, summary, canvas, [tabindex]')]
      .filter((node) => {
        if (node.disabled || node.tabIndex < 0 || node.getClientRects().length === 0) return false;
        if (node.type !== 'radio') return true;
        return !groups.has(node.name) && Boolean(groups.add(node.name));
      })
      .map((node) => node.type === 'radio' ? node.name : node.id || node.tagName);"""

FOCUSED = """
    const node = document.activeElement;
    if (node === document.body || node === document.documentElement) return null;
    const style = getComputedStyle(node);
    const box = node.getBoundingClientRect();
    return { name: node.type === 'radio' ? node.name : node.id || node.tagName,
      outline: style.outlineStyle === 'none' ? 0 : parseFloat(style.outlineWidth),
      colour: style.outlineColor,
      background: getComputedStyle(document.body).backgroundColor,
      isSeen: box.bottom > 0 && box.top < innerHeight && box.width > 0 };"""


class Keyboard(PageTest):
    def pixels(self):
        self.rest()
        return canvas_pixels(self.browser, "picture")

    def assert_same_picture(self, one, two):
        self.assertEqual(int((one != two).any(axis=2).sum()), 0)

    # --- sliders and fields ---

    def test_sliders_have_steps(self):
        self.open(pair_page())
        for name, step in STEPS.items():
            before = self.pose()[name]
            self.keys(f"slider-{name}", Keys.ARROW_RIGHT)
            self.assertAlmostEqual(self.pose()[name], before + step, places=6)
            self.keys(f"slider-{name}", Keys.ARROW_LEFT, Keys.ARROW_DOWN)
            self.assertAlmostEqual(self.pose()[name], before - step, places=6)
            self.keys(f"slider-{name}", Keys.PAGE_UP)
            self.assertGreater(self.pose()[name], before + 5 * step)
            self.keys(f"slider-{name}", Keys.HOME)
            self.assertEqual(self.pose()[name], 0)
            if name in ENDS:
                self.keys(f"slider-{name}", Keys.END)
                self.assertEqual(self.pose()[name], ENDS[name])

    def test_fields_take_typed_numbers(self):
        self.open(pair_page())
        self.keys("field-beta", Keys.CONTROL + "a")
        self.browser.switch_to.active_element.send_keys("61.25")
        self.assertEqual(self.pose()["beta"], 61.25)
        self.assertEqual(float(self.by_id("slider-beta").get_property("value")), 61.3)  # the nearest step
        self.keys("field-beta", Keys.ARROW_UP)
        self.assertAlmostEqual(self.pose()["beta"], 61.3, delta=0.06)

    # --- the picture ---

    def test_the_picture_turns_and_comes_back(self):
        self.open(pair_page())
        first = self.pixels()
        for there in (Keys.ARROW_RIGHT, Keys.ARROW_LEFT, Keys.ARROW_UP, Keys.ARROW_DOWN):
            self.keys("picture", there)
            self.assertGreater(int((self.pixels() != first).any(axis=2).sum()), 2000, repr(there))
            self.keys("picture", "0")
            self.assert_same_picture(self.pixels(), first)

    def test_the_picture_zooms(self):
        self.open(pair_page())
        for name in ("frames", "angles", "contacts"):
            self.press(f"show-{name}")
        left, top, right, bottom = box_of(self.pixels())
        self.keys("picture", "-")
        box = box_of(self.pixels())
        self.assertAlmostEqual((box[2] - box[0]) * 1.15, right - left, delta=4)
        self.keys("picture", "+")
        box = box_of(self.pixels())
        self.assertAlmostEqual(box[2] - box[0], right - left, delta=1)
        self.assertAlmostEqual(box[3] - box[1], bottom - top, delta=1)

    def test_the_picture_moves(self):
        self.open(pair_page())
        for name in ("frames", "angles", "contacts"):
            self.press(f"show-{name}")
        self.keys("picture", "0")
        before = self.pixels()
        box = numpy.array(box_of(before))
        for key, (dx, dy) in {Keys.ARROW_RIGHT: (1, 0), Keys.ARROW_UP: (0, -1)}.items():
            self.keys("picture", "0", Keys.SHIFT + key + Keys.NULL)
            step = 0.05 * before.shape[0]
            moved = numpy.array(box_of(self.pixels())) - box
            self.assertTrue((abs(moved - step * numpy.array([dx, dy, dx, dy])) <= 1.5).all(), moved)
        self.keys("picture", Keys.HOME)
        self.assert_same_picture(self.pixels(), before)

    def test_the_picture_looks_along_axes(self):
        self.open(pair_page())
        for letter in "xyz":
            self.keys("picture", "0", letter)
            by_key = self.pixels()
            self.keys("picture", "0")
            self.press(f"view-{letter}")
            self.assert_same_picture(by_key, self.pixels())

    # --- poses ---

    def test_the_map(self):
        self.open(scan_page())
        self.assertEqual((self.pose()["r"], self.pose()["theta"]), (2, 0))
        self.keys("map", Keys.ARROW_RIGHT, Keys.ARROW_RIGHT, Keys.ARROW_UP)
        self.assertEqual((self.pose()["r"], self.pose()["theta"]), (2.5, 15))
        self.keys("map", Keys.ARROW_LEFT, Keys.ARROW_DOWN, Keys.ARROW_DOWN)
        self.assertEqual((self.pose()["r"], self.pose()["theta"]), (2.25, 0))
        self.assertIn("chosen: pose 14,", self.by_id("map").get_attribute("aria-label"))

    def test_the_player(self):
        self.open(scan_page())
        self.keys("row-slider", Keys.ARROW_RIGHT)
        self.assertEqual(self.pose()["theta"], 15)
        self.keys("next", Keys.ENTER)
        self.keys("next", " ")
        self.assertEqual(self.pose()["theta"], 45)
        self.keys("previous", Keys.ENTER)
        self.assertEqual(self.pose()["theta"], 30)

    def test_the_curves(self):
        self.open(trajectory_page())
        far = 120 // 20
        for keys, frame in (((Keys.ARROW_RIGHT,), 2), ((Keys.END,), 120), ((Keys.ARROW_LEFT,), 119),
                            ((Keys.PAGE_DOWN,), 119 - far), ((Keys.HOME,), 1), ((Keys.ARROW_LEFT,), 1)):
            self.keys("curves", *keys)
            self.assertEqual(self.by_id("row-text").text, f"frame {frame}")

    def test_the_list(self):
        self.open(docking_page())
        first = self.pose()
        self.run_script("document.querySelector('input[type=radio]:checked').focus()")
        self.browser.switch_to.active_element.send_keys(Keys.ARROW_DOWN)
        self.settle()
        self.assertEqual(self.by_id("row-text").text, "minimum 2")
        self.assertNotEqual(self.pose(), first)

    # --- the way by Tab ---

    def walk(self, *key):
        """Names in the order in which a key reaches them, from the beginning of the page to its end."""
        names = []
        for _ in range(80):
            self.browser.switch_to.active_element.send_keys(*key)
            focused = self.run_script(FOCUSED)
            if focused is None or focused["name"] in names[:1]:
                return names
            self.assertGreaterEqual(focused["outline"], 2, focused)
            self.assertNotEqual(focused["colour"], focused["background"], focused)
            self.assertTrue(focused["isSeen"], focused)
            names.append(focused["name"])
        self.fail(f"Tab does not come to an end: {names}")

    def test_tab_reaches_every_control(self):
        for name, make in PAGES.items():
            with self.subTest(name):
                self.open(make())
                wanted = self.run_script(REACHABLE)
                self.assertGreaterEqual(len(wanted), 30)
                self.assertTrue({f"slider-{parameter}" for parameter in PARAMETERS} <= set(wanted))
                found = self.walk(Keys.TAB)
                self.assertEqual(sorted(set(wanted) - set(found)), [])
                # What has scroll bars may be reached too.
                self.assertTrue(set(found) - set(wanted) <= {"list-panel", "copied"}, found)

    def test_tab_goes_back(self):
        self.open(pair_page())
        wanted = self.run_script(REACHABLE)
        self.run_script("document.querySelector('summary').focus()")
        found = self.walk(Keys.SHIFT + Keys.TAB + Keys.NULL)
        self.assertEqual(sorted(set(wanted) - set(found) - {"SUMMARY"}), [])


if __name__ == "__main__":
    unittest.main()
