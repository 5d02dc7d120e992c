"""The map, the profile, the list and the curves choose the poses of their table."""

import csv
import random
import re
import unittest

import numpy
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.keys import Keys

from page import (EXAMPLES, FOLDER, PageTest, docking_page, dravo, energy_page, page_of,
                  profile_page, scan_page, trajectory_page)
from pictures import canvas_pixels, rgb

# The two ends of the scale (viridis).
LOWEST, HIGHEST = rgb("#440154"), rgb("#fde725")


def table_of(name):
    with open(FOLDER / f"{name}.csv", newline="") as file:
        return list(csv.DictReader(file))


def runs(flags):
    """[(begin, end), ...] of what is true."""
    steps = numpy.flatnonzero(numpy.diff(numpy.concatenate([[0], flags.astype(int), [0]])))
    return list(zip(steps[::2], steps[1::2]))


class Poses(PageTest):
    def press_at(self, name, x, y):
        """In pixels from the upper left corner of a canvas."""
        canvas = self.by_id(name)
        size = canvas.size
        ActionChains(self.browser, duration=0).move_to_element_with_offset(
            canvas, round(x - size["width"] / 2), round(y - size["height"] / 2)).click().perform()

    def area_of_map(self, pixels):
        """left, top, right, bottom of the cells: what is coloured, without the bar at the right."""
        coloured = (pixels.max(axis=2) - pixels.min(axis=2)) > 40
        middle_row = pixels.shape[0] // 2
        left, right = max(runs(coloured[middle_row]), key=lambda run: run[1] - run[0])
        top, bottom = max(runs(coloured[:, (left + right) // 2]), key=lambda run: run[1] - run[0])
        return left, top, right, bottom

    def assert_pose(self, row):
        """The parameters by which a row of the table was placed, to the four decimals that are shown."""
        for name, value in self.pose().items():
            placed = float(row.get(f"{name}_applied", row[name]))
            self.assertAlmostEqual(value, placed, delta=5.1e-5, msg=f"{name} of {row}")

    def number_chosen(self, name):
        label = self.by_id(name).get_attribute("aria-label")
        return int(re.search(r"chosen: \w+ (\d+)", label)[1])

    # --- maps ---

    def test_cells(self):
        """Where a pose is pressed, it is shown, and the cell has the colour of its value."""
        self.open(scan_page())
        rows = table_of("scan")
        distances, angles = (sorted({float(row[name]) for row in rows}) for name in ("r", "theta"))
        self.assertEqual((len(distances), len(angles)), (17, 13))
        values = [float(row["shortest"]) for row in rows]
        pixels = canvas_pixels(self.browser, "map")
        left, top, right, bottom = self.area_of_map(pixels)
        chance = random.Random(7)
        for _ in range(25):
            i, j = chance.randrange(17), chance.randrange(13)
            x = left + (i + 0.5) * (right - left) / 17
            y = bottom - (j + 0.5) * (bottom - top) / 13
            self.press_at("map", x, y)
            number = self.number_chosen("map")
            row = rows[number - 1]
            self.assertEqual(int(row["index"]), number)
            self.assertEqual((float(row["r"]), float(row["theta"])), (distances[i], angles[j]))
            self.assert_pose(row)
            self.assertEqual(self.by_id("row-text").text, f"pose {number}")
        colours = []
        for number in numpy.argsort(values):
            i, j = distances.index(float(rows[number]["r"])), angles.index(float(rows[number]["theta"]))
            if (i, j) != (0, 0):  # under the marker
                colours.append(pixels[int(bottom - (j + 0.5) * (bottom - top) / 13),
                                      int(left + (i + 0.5) * (right - left) / 17)])
        greens = [colour[1] for colour in colours]
        self.assertTrue((numpy.diff(greens) >= 0).all())  # green rises along the scale
        self.assertLess(abs(colours[0] - LOWEST).max(), 3)
        self.assertLess(abs(colours[-1] - HIGHEST).max(), 3)

    def test_the_distance_that_is_told(self):
        """It is that of the table."""
        self.open(scan_page())
        row = table_of("scan")[100]
        self.run_script("""
            const slider = document.getElementById('row-slider');
            slider.value = '101';
            slider.dispatchEvent(new Event('input'));""")
        self.settle()
        self.assert_pose(row)
        shortest = self.run_script("return document.querySelector('#distances dd').textContent")
        self.assertEqual(shortest, f"{float(row['shortest']):.4f} \u00c5")

    def test_other_axes(self):
        """Maps of other columns: the same poses at other places."""
        self.open(scan_page())
        self.run_script("""
            for (const [id, value] of [['map-x', 'theta'], ['map-y', 'r'], ['map-colour', 'clearance']]) {
              const select = document.getElementById(id);
              select.value = value;
              select.dispatchEvent(new Event('change'));
            }""")
        self.settle()
        left, top, right, bottom = self.area_of_map(canvas_pixels(self.browser, "map"))
        self.press_at("map", left + 2.5 * (right - left) / 13, bottom - 4.5 * (bottom - top) / 17)
        self.assertEqual((self.pose()["theta"], self.pose()["r"]), (30, 3))
        self.assertIn("Map of clearance over theta, degrees, and r, Angstrom",
                      self.by_id("map").get_attribute("aria-label"))

    def test_moved_from_a_pose(self):
        self.open(scan_page())
        self.set_values({"r": 4.44}, "slider")
        self.assertEqual(self.by_id("row-text").text, "moved from pose 1")
        self.press("reset-pose")
        self.assertEqual(self.by_id("row-text").text, "pose 1")
        self.assert_pose(table_of("scan")[0])

    def test_lowest_energy_is_shown_first(self):
        self.open(energy_page())
        rows = table_of("energies")
        computed = [row for row in rows if row["e_int_kcal_mol"]]
        lowest = min(computed, key=lambda row: float(row["e_int_kcal_mol"]))
        self.assertEqual(self.by_id("row-text").text, f"pose {lowest['index']}")
        self.assert_pose(lowest)
        self.assertEqual(self.by_id("map-colour").get_property("value"), "e_int_kcal_mol")

    def test_points(self):
        """Random directions are no grid: each pose is a point."""
        dravo("scan", EXAMPLES / "formamide-dimer/formamide-dimer.xyz", "--split", 6, "--r", 5,
              "--random", 500, "--table", "--output", "points")
        self.open(page_of("points", "points"))
        rows = table_of("points")
        pixels = canvas_pixels(self.browser, "map")
        height, width, _ = pixels.shape
        chance = random.Random(8)
        x, y = (self.by_id(f"map-{name}").get_property("value") for name in "xy")
        found = set()
        for _ in range(10):
            self.press_at("map", width * chance.uniform(0.3, 0.7), height * chance.uniform(0.3, 0.7))
            number = self.number_chosen("map")
            self.assert_pose(rows[number - 1])
            found.add((float(rows[number - 1][x]), float(rows[number - 1][y])))
        self.assertGreater(len(found), 5)

    # --- profile, list, curves ---

    def assert_marked(self, name, x, before, most):
        """What is marked on a canvas since `before` is at most so many pixels to the side of x."""
        self.settle()
        new = (canvas_pixels(self.browser, name) != before).any(axis=(0, 2))
        new[:len(new) // 4] = False  # there was the marker of the first pose
        columns = numpy.flatnonzero(new)
        self.assertLessEqual(abs((columns[0] + columns[-1] + 1) / 2 - x), most)

    def test_profile(self):
        self.open(profile_page())
        rows = table_of("pulled")
        self.assertIn("Profile of shortest", self.by_id("map").get_attribute("aria-label"))
        before = canvas_pixels(self.browser, "map")
        height, width, _ = before.shape
        numbers = []
        for k in range(8):
            x = width * (0.3 + 0.06 * k)
            self.press_at("map", x, height / 2)
            numbers.append(self.number_chosen("map"))
            self.assert_pose(rows[numbers[-1] - 1])
            self.assert_marked("map", x, before, 0.5 * width / len(rows))
        steps = numpy.diff(numbers)
        self.assertTrue((steps > 0).all() and steps.max() - steps.min() <= 1, numbers)

    def test_list(self):
        self.open(docking_page())
        rows = table_of("minima")
        self.assertGreaterEqual(len(rows), 2)
        titles = [cell.text for cell in self.browser.find_elements("css selector", "#list thead th")]
        self.assertEqual(titles, list(rows[0]))
        for k in reversed(range(len(rows))):
            line = self.browser.find_elements("css selector", "#list tbody tr")[k]
            line.find_elements("css selector", "td")[3].click()
            self.assert_pose(rows[k])
            self.assertEqual(self.by_id("row-text").text, f"minimum {k + 1}")
            self.assertEqual(line.get_attribute("class"), "chosen")
            distance = float(line.find_elements("css selector", "td")[2].text)
            self.assertAlmostEqual(distance, float(rows[k]["r"]), delta=5.1e-5)

    def test_curves(self):
        trajectory_page()
        frames = [FOLDER / "frames.xyz", "--split", 6, "--frame", "1:13"]
        self.open(page_of("few-frames", *frames))
        rows = list(csv.DictReader(dravo("identify", *frames).splitlines()))
        self.assertEqual(len(rows), 13)
        width, height = (self.by_id("curves").size[key] for key in ("width", "height"))
        last = 1
        for part in (0.3, 0.45, 0.6, 0.9):
            self.press_at("curves", part * width, part * height)
            number = self.number_chosen("curves")
            self.assertGreater(number, last)
            last = number
            self.assertEqual(self.by_id("row-text").text, f"frame {number}")
            self.assert_pose(rows[number - 1])
            self.assertLess(abs(self.cursor_of_curves() - part * width), 0.5 * width / 12)

    def cursor_of_curves(self):
        """The column with the line through all curves, which is the only one that is red."""
        self.settle()
        pixels = canvas_pixels(self.browser, "curves")
        red = (pixels[:, :, 0] - pixels[:, :, 2] > 100).sum(axis=0)
        self.assertGreater(red.max(), 0.8 * pixels.shape[0])
        return red.argmax()

    def test_frames_have_the_atoms_of_the_file(self):
        self.open(trajectory_page())
        self.keys("curves", Keys.END)
        self.press("copy-xyz")
        frames = dravo("extract", "frames", "--poses", 120).splitlines()[2:]
        copied = self.by_id("copied").get_property("value").splitlines()[2:]
        self.assertEqual(len(copied), len(frames))
        for one, two in zip(copied, frames):
            self.assertEqual(one.split()[0], two.split()[0])
            for a, b in zip(one.split()[1:4], two.split()[1:4]):
                # Numbers of the page have seven digits.
                self.assertAlmostEqual(float(a), float(b), delta=2e-6)

    def test_play(self):
        """Goes to the last pose and stops."""
        self.open(profile_page())
        last = int(self.by_id("row-slider").get_attribute("max"))
        self.run_script("""
            const slider = document.getElementById('row-slider');
            slider.value = String(arguments[0] - 3);
            slider.dispatchEvent(new Event('input'));""", last)
        self.press("play")
        self.assertEqual(self.by_id("play").get_attribute("aria-pressed"), "true")
        self.changed(lambda: self.by_id("play").text, "Stop")
        self.assertEqual(self.by_id("row-slider").get_property("value"), str(last))
        self.assert_pose(table_of("pulled")[-1])


if __name__ == "__main__":
    unittest.main()
