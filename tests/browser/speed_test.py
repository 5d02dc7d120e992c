"""How fast pages open and pictures turn, without a graphics card.

Each time may be measured again once: other programs may be running.
"""

import os
import sys
import unittest

from large_pairs import large_pair
from page import FORMAMIDE, PageTest, dravo, page_of

LARGEST_PAGE = 10_000_000  # bytes
LONGEST_OPENING = 2000  # milliseconds

# Turns the picture by an arrow key with every picture of the screen; milliseconds between these. A pixel
# is read each time, so that none is left to be painted later.
TURN = """
    const [count, done] = arguments;
    const canvas = document.getElementById('picture');
    const times = [];
    const step = (time) => {
      times.push(time);
      canvas.getContext('2d').getImageData(5, 5, 1, 1);
      if (times.length > count) {
        done(times.slice(1).map((end, k) => end - times[k]));
        return;
      }
      canvas.dispatchEvent(new KeyboardEvent('keydown', { key: 'ArrowRight' }));
      requestAnimationFrame(step);
    };
    requestAnimationFrame(step);"""

# By dragging, with labels.
DRAG = """
    const [count, done] = arguments;
    const canvas = document.getElementById('picture');
    const times = [];
    let x = 100;
    canvas.setPointerCapture = () => {};
    const send = (type) => canvas.dispatchEvent(new PointerEvent(type, {
      pointerId: 1, clientX: canvas.getBoundingClientRect().left + x, clientY: 300,
      button: 0, buttons: 1 }));
    const step = (time) => {
      times.push(time);
      canvas.getContext('2d').getImageData(5, 5, 1, 1);
      if (times.length > count) {
        send('pointerup');
        done(times.slice(1).map((end, k) => end - times[k]));
        return;
      }
      x += 3;
      send('pointermove');
      requestAnimationFrame(step);
    };
    send('pointerdown');
    requestAnimationFrame(step);"""


def note(words):
    print(f"{words} (load of the machine {os.getloadavg()[0]:.1f})", file=sys.stderr)


class Speed(PageTest):
    def best_of_two(self, measure, is_enough):
        value = measure()
        return value if is_enough(value) else measure()

    # --- opening ---

    def milliseconds_to_the_first_pose(self, page):
        """From the beginning of the navigation until the pose is painted."""
        self.browser.get("about:blank")
        self.open(page)
        end = self.run_script("return performance.now()")
        self.assertNotEqual(self.by_id("field-r").get_property("value"), "")
        return end

    def test_a_hundred_thousand_poses(self):
        dravo("scan", *FORMAMIDE, "--r", "3:7:1", "--random", 20000, "--exact", "--table",
              "--output", "many")
        page = page_of("many", "many")
        size = page.stat().st_size
        self.assertLessEqual(size, LARGEST_PAGE)
        time = self.best_of_two(
            lambda: self.milliseconds_to_the_first_pose(page), lambda found: found < LONGEST_OPENING)
        note(f"100,000 poses: {size / 1e6:.1f} MB, painted after {time:.0f} ms")
        self.assertLess(time, LONGEST_OPENING)
        self.assertEqual(self.by_id("row-slider").get_attribute("max"), "100000")

    # --- turning ---

    def pictures_a_second(self, script, count):
        """After a beginning in which things are made once."""
        self.browser.execute_async_script(script, 20)
        return 1000 * count / sum(self.browser.execute_async_script(script, count))

    def check_turning(self, atoms, least):
        self.open(page_of(f"large-{atoms}", *large_pair(atoms)))
        for words, script in (("arrow keys", TURN), ("dragging", DRAG)):
            rate = self.best_of_two(
                lambda: self.pictures_a_second(script, 120), lambda found: found >= least)
            note(f"{atoms} atoms turn by {words} with {rate:.1f} pictures a second")
            self.assertGreaterEqual(rate, least, words)

    def test_fifty_atoms(self):
        """As often as the screen is drawn, 60 times a second; some pictures may be lost to other programs."""
        self.check_turning(50, 55)

    def test_a_thousand_atoms(self):
        self.check_turning(1000, 15)

    def test_a_thousand_atoms_follow_a_slider(self):
        """With distances and contacts."""
        self.open(page_of("large-1000", *large_pair(1000)))
        turn = "canvas.dispatchEvent(new KeyboardEvent('keydown', { key: 'ArrowRight' }));"
        self.assertIn(turn, TURN)
        script = TURN.replace(turn, """
            const slider = document.getElementById('slider-alpha');
            slider.value = String(times.length % 300);
            slider.dispatchEvent(new Event('input'));""")
        rate = self.best_of_two(lambda: self.pictures_a_second(script, 30), lambda found: found >= 5)
        note(f"1000 atoms follow a slider with {rate:.1f} pictures a second")
        self.assertGreaterEqual(rate, 5)


if __name__ == "__main__":
    unittest.main()
