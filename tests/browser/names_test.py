"""Names and comments that look like markup are shown as they are, and nothing in them is run."""

import unittest
import xml.etree.ElementTree

from page import DOWNLOADS, EXAMPLES, FOLDER, PageTest, dravo, page_of

EVIL = "script><img src=x onerror=alert(1)>.xyz"  # in a folder "<", as "</script>" has a slash
COMMENT = "</script><script>alert(2)</script><!-- %DATA% @SCRIPT@ <svg onload=alert(3)>"

FIND_EVIL = """
    return { images: document.images.length, scripts: document.scripts.length,
      svg: document.querySelectorAll('svg').length,
      handlers: [...document.querySelectorAll('*')].filter((node) =>
        [...node.attributes].some(({ name }) => name.startsWith('on'))).length };"""


def water_pair(file, comment):
    """Two waters, with this comment, in a file of any name."""
    lines = (EXAMPLES / "water-dimer/water-dimer.xyz").read_text().splitlines()
    lines[1] = comment
    file.parent.mkdir(exist_ok=True)
    file.write_text("\n".join(lines) + "\n")
    return file


class HostileNames(PageTest):
    def check(self, page, title):
        self.console()
        self.browser.execute_cdp_cmd("Page.enable", {})
        script = self.browser.execute_cdp_cmd("Page.addScriptToEvaluateOnNewDocument", {
            "source": "window.alerts = []; window.alert = (what) => window.alerts.push(what);"})
        self.addCleanup(self.browser.execute_cdp_cmd, "Page.removeScriptToEvaluateOnNewDocument", script)
        self.open(page)
        self.told()
        for name in ("copy-input", "copy-command", "copy-xyz"):
            if self.by_id(name).is_displayed():
                self.press(name)
        self.assertEqual(self.run_script("return window.alerts"), [])
        self.assertEqual(self.run_script(FIND_EVIL), {"images": 0, "scripts": 2, "svg": 0, "handlers": 0})
        self.assertEqual(self.browser.title, title)
        self.assertEqual(self.by_id("title").text, title)
        self.assertEqual(self.console(), [])

    def test_file(self):
        file = water_pair(FOLDER / "<" / EVIL, COMMENT)
        self.check(page_of("evil", file, "--split", 3), EVIL)
        for name in DOWNLOADS.glob("*"):
            name.unlink()
        self.press("save-svg")
        [saved] = self.changed(lambda: [name for name in DOWNLOADS.glob("*") if name.suffix == ".svg"], [])
        self.assertRegex(saved.name, r"^[A-Za-z0-9._-]+\.svg$")
        root = xml.etree.ElementTree.fromstring(saved.read_text())
        self.assertEqual(root.find("{http://www.w3.org/2000/svg}title").text, EVIL)
        self.assertIsNone(root.find(".//{http://www.w3.org/2000/svg}script"))

    def test_the_command_of_such_a_file(self):
        """It is quoted, so that a shell reads the name as one word."""
        file = water_pair(FOLDER / "<" / EVIL, COMMENT)
        self.open(page_of("evil", file, "--split", 3))
        self.press("copy-command")
        self.assertIn(f"'{file}'", self.by_id("copied").get_property("value"))

    def test_two_files(self):
        water = water_pair(FOLDER / "<" / "a&amp;<b>.xyz", COMMENT)
        one = FOLDER / "\"'><script>alert(4)<.xyz"
        one.write_text((EXAMPLES / "water-dimer/water.xyz").read_text())
        page = page_of("two-evil", one, EXAMPLES / "argon-hcn/argon.xyz", "--r", 4)
        self.check(page, f"{one.name} and argon.xyz")
        self.check(page_of("entities", water, "--split", 3), water.name)

    def test_results(self):
        """The name of a scan, which its page has as title."""
        file = water_pair(FOLDER / "<" / EVIL, COMMENT)
        name = "<img src=x onerror=alert(5)>"
        dravo("scan", file, "--split", 3, "--r", "3:5:1", "--phi", "0:90:30", "--exact", "--output", name)
        self.check(page_of("evil-scan", name), name)

    def test_trajectory(self):
        one = water_pair(FOLDER / "<" / EVIL, COMMENT)
        two = FOLDER / "<" / "<style>body{display:none}.xyz"
        two.write_text(2 * one.read_text())
        self.check(page_of("evil-frames", two, "--split", 3, "--frame", "all"), two.name)


if __name__ == "__main__":
    unittest.main()
