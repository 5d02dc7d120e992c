"""What the buttons save, and what they let people copy."""

import struct
import time
import unittest
import zlib

import numpy

from page import DOWNLOADS, FOLDER, FORMAMIDE, PageTest, dravo, pair_page
from pictures import box_of, canvas_pixels, png_pixels


# Browsers number files of the same name.
NAME = r"^QN-input-GEOMETRY( \(\d+\))?\."


def chunks_of(png):
    """[(kind, data), ...]; what is damaged is an error."""
    if png[:8] != b"\x89PNG\r\n\x1a\n":
        raise AssertionError("no PNG")
    chunks, place = [], 8
    while place < len(png):
        size, kind = struct.unpack(">I4s", png[place:place + 8])
        data = png[place + 8:place + 8 + size]
        [sum_of_chunk] = struct.unpack(">I", png[place + 8 + size:place + 12 + size])
        if sum_of_chunk != zlib.crc32(kind + data):
            raise AssertionError(f"{kind} is damaged")
        chunks.append((kind, data))
        place += 12 + size
    return chunks


class Saving(PageTest):
    def setUp(self):
        super().setUp()
        for file in DOWNLOADS.glob("*"):
            file.unlink()
        self.open(pair_page())

    def saved(self, button):
        """Name and bytes of the file that a button saves."""
        self.press(button)
        end = time.monotonic() + 10
        while time.monotonic() < end:
            files = list(DOWNLOADS.glob("*"))
            if files and files[0].suffix != ".crdownload" and files[0].stat().st_size > 0:
                data = files[0].read_bytes()
                files[0].unlink()
                return files[0].name, data
            time.sleep(0.05)
        self.fail(f"{button} saved nothing")

    def drawn(self, *options):
        file = FOLDER / "drawn.svg"
        dravo("draw", *FORMAMIDE, "--angles", *options, "-o", file, "--overwrite")
        return file.read_bytes()

    def test_png(self):
        shown = canvas_pixels(self.browser, "picture")
        name, png = self.saved("save-png")
        self.assertRegex(name, NAME + "png$")
        self.assertEqual(self.by_id("status").text, "saved QN-input-GEOMETRY.png")
        chunks = chunks_of(png)
        self.assertEqual(chunks[-1][0], b"IEND")
        width, height = struct.unpack(">II", chunks[0][1][:8])
        self.assertEqual((width, height), (2 * shown.shape[1], 2 * shown.shape[0]))
        pixels = png_pixels(self.browser, png)
        self.assertIsNotNone(pixels)
        half = pixels.reshape(shown.shape[0], 2, shown.shape[1], 2, 3).mean(axis=(1, 3))
        self.assertLess(float((numpy.abs(half - shown).max(axis=2) > 100).mean()), 0.01)
        box_of(pixels)

    def test_svg_of_the_first_view(self):
        name, svg = self.saved("save-svg")
        self.assertRegex(name, NAME + "svg$")
        self.assertEqual(svg.decode(), self.drawn().decode())

    def test_svg_in_the_dark(self):
        self.emulate(prefers_color_scheme="dark")
        self.settle()
        self.assertEqual(self.saved("save-svg")[1].decode(), self.drawn("--theme", "dark").decode())

    def test_svg_of_another_pose_from_elsewhere(self):
        self.set_values({"r": 5.5, "beta": 100}, "field")
        self.press("view-x")
        self.press("show-frames")
        self.assertEqual(
            self.saved("save-svg")[1].decode(),
            self.drawn("--view", "x", "--no-frames", "--r", 5.5, "--beta", 100).decode())

    def test_svg_after_zooming(self):
        """What is seen, in the size of the canvas."""
        self.keys("picture", "+", "+")
        _, svg = self.saved("save-svg")
        height, width, _ = canvas_pixels(self.browser, "picture").shape
        self.assertIn(f'width="{width}" height="{height}"'.encode(), svg)
        self.assertNotEqual(svg, self.drawn())

    def test_end_of_an_input_file(self):
        """It is what `dravo identify` prints, for a pair that stands as it has been placed."""
        pose = {"r": 5.25, "theta": 70.5, "phi": 20, "alpha": 33.3, "beta": 44.5, "gamma": 55.25}
        self.set_values(pose, "field")
        self.press("copy-input")
        lines = self.by_id("copied").get_property("value").splitlines()
        self.assertEqual([line.split()[0] for line in lines], [
            "position", "5.25000000", "70.50000000", "20.00000000",
            "rotation", "33.30000000", "44.50000000", "55.25000000", "end"])
        head, _, _ = FORMAMIDE[0].read_text().partition("position")
        file = FOLDER / "copied.xyz"
        file.write_text(head + "\n".join(lines) + "\n")
        self.press("copy-xyz")
        copied = self.by_id("copied").get_property("value").splitlines()[2:]
        placed = dravo("place", file, "--exact").splitlines()[2:]
        self.assertEqual([line.split()[:4] for line in placed], [line.split()[:4] for line in copied])

    def test_copied_text_is_on_the_clipboard(self):
        """Or it is selected, where a page may not write there."""
        self.press("copy-command")
        said = self.changed(lambda: self.by_id("status").text, "")
        if not said.startswith("copied"):
            self.assertIn("Ctrl+C", said)
        self.run_script("document.getElementById('copied').focus()")
        text = self.by_id("copied").get_property("value")
        self.assertIn("dravo place", text)
        self.browser.execute_cdp_cmd("Browser.grantPermissions", {"permissions": ["clipboardReadWrite"]})
        read = self.browser.execute_async_script(
            "const [done] = arguments;"
            "navigator.clipboard.readText().then(done, (error) => done(String(error)));")
        self.assertEqual(read, text)


if __name__ == "__main__":
    unittest.main()
