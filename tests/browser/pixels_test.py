"""What is drawn is where the coordinates of the program are, as seen from each direction."""

import unittest

import numpy
from selenium.webdriver.common.keys import Keys

from page import FOLDER, FORMAMIDE, PageTest, dravo, pair_page
from pictures import Sight, around, box_of, canvas_pixels, scene_of

# Of elements that the pair has. Light from the upper left makes balls brighter than their colour.
BRIGHTNESS = 110


def channels(colour):
    """The names of the channels, the strongest first."""
    return "".join(name for _, name in sorted(zip(colour, "rgb"), reverse=True))


class Pixels(PageTest):
    @classmethod
    def setUpClass(cls):
        name = FOLDER / "formamide.bild"
        if not name.exists():
            dravo("draw", *FORMAMIDE, "--no-angles", "-o", name)
        cls.balls, cls.arrows = scene_of(name.read_text())

    def pixels(self):
        self.rest()
        return canvas_pixels(self.browser, "picture")

    def show(self, *wanted):
        for name in ("frames", "angles", "contacts", "labels"):
            if self.by_id(f"show-{name}").is_selected() != (name in wanted):
                self.press(f"show-{name}")

    def check_balls(self, sight, pixels):
        seen = 0
        for ball in self.balls:
            if sight.covering(ball.centre, 12):
                continue
            seen += 1
            found = around(pixels, sight.pixel(ball.centre), 1)
            expected = 255 * numpy.array(ball.colour)
            self.assertTrue((found > expected - 60).all() and (found < expected + BRIGHTNESS).all(),
                            f"{ball}: {found}")
        self.assertGreaterEqual(seen, 5)

    def check_arrows(self, sight, pixels):
        seen = 0
        for arrow in self.arrows:
            # In the head, which lies beyond the atoms.
            along = arrow.tip - arrow.tail
            point = arrow.tip - 0.12 * along / numpy.linalg.norm(along)
            flat = numpy.linalg.norm(sight.pixel(arrow.tip) - sight.pixel(arrow.tail))
            if sight.covering(point, 12) or flat < 40:
                continue
            seen += 1
            found = around(pixels, sight.pixel(point), 1)
            self.assertEqual(channels(found), channels(arrow.colour), f"{arrow}: {found}")
            self.assertGreater(max(found) - min(found), 60, f"{arrow}: {found}")
        self.assertGreaterEqual(seen, 3)

    def check_view(self, view):
        """From a view, azimuth and elevation in degrees: balls alone, then arrows."""
        self.show()
        pixels = self.pixels()
        sight = Sight(self.balls, view, box_of(pixels))
        self.assertAlmostEqual(sight.scale, sight.scale_upwards, delta=0.03 * sight.scale)
        self.check_balls(sight, pixels)
        self.show("frames")
        pixels = self.pixels()
        self.check_arrows(sight, pixels)
        return pixels

    def test_first_view(self):
        self.assertEqual(len(self.balls), 12)
        self.assertEqual(len(self.arrows), 6)
        self.open(pair_page())
        pixels = self.check_view((35, 20))
        self.assertTrue((pixels[0, 0] == 255).all())

    def test_along_y(self):
        self.open(pair_page())
        self.press("view-y")
        self.check_view((90, 0))

    def test_after_keys(self):
        self.open(pair_page())
        self.keys("picture", *[Keys.ARROW_RIGHT] * 6, *[Keys.ARROW_DOWN] * 3)
        self.check_view((5, 35))

    def test_dark(self):
        self.emulate(prefers_color_scheme="dark")
        self.open(pair_page())
        pixels = self.check_view((35, 20))
        self.assertLess(pixels[0, 0].max(), 40)

    def test_balls_follow_a_slider(self):
        """A pair that is 3 Angstrom farther apart is drawn there."""
        self.open(pair_page())
        self.set_values({"r": 9.5}, "slider")
        name = FOLDER / "farther.bild"
        dravo("draw", *FORMAMIDE, "--r", 9.5, "--no-angles", "-o", name, "--overwrite")
        self.balls, self.arrows = scene_of(name.read_text())
        self.check_view((35, 20))

    def test_fills_the_canvas(self):
        """At the beginning, and nothing is cut while it turns."""
        self.open(pair_page())
        pixels = self.pixels()
        height, width, _ = pixels.shape
        left, top, right, bottom = box_of(pixels)
        self.assertGreater(max((right - left) / width, (bottom - top) / height), 0.75)
        for key in [Keys.ARROW_RIGHT] * 12 + [Keys.ARROW_DOWN] * 5:
            self.keys("picture", key, key, key)
            left, top, right, bottom = box_of(self.pixels())
            self.assertTrue(left > 0 and top > 0 and right < width and bottom < height)


if __name__ == "__main__":
    unittest.main()
