"""What assistive technology is told: as the browser computes it."""

import re
import unittest

from selenium.webdriver.common.keys import Keys

from page import (PAGES, PARAMETERS, PageTest, docking_page, pair_page, scan_page,
                  trajectory_page)

CONTROLS = {"button", "checkbox", "combobox", "DisclosureTriangle", "radio", "slider", "spinbutton",
            "textbox"}


class Access(PageTest):
    def tree(self):
        """{role: [names]} of all that is not hidden from assistive technology."""
        nodes = self.browser.execute_cdp_cmd("Accessibility.getFullAXTree", {})["nodes"]
        found = {}
        for node in nodes:
            if not node.get("ignored"):
                name = node.get("name", {}).get("value", "")
                found.setdefault(node["role"]["value"], []).append(name)
        return found

    def headings(self):
        return self.run_script("""
            return [...document.querySelectorAll('h1, h2, h3, h4, h5, h6')]
              .filter((node) => node.getClientRects().length > 0)
              .map((node) => [Number(node.tagName[1]), node.textContent]);""")

    def test_every_control_has_a_name(self):
        for name, make in PAGES.items():
            with self.subTest(name):
                self.open(make())
                tree = self.tree()
                names = [text for role in CONTROLS for text in tree.get(role, [])]
                self.assertGreaterEqual(len(names), 28)
                self.assertNotIn("", [text.strip() for text in names])
                for parameter in PARAMETERS:
                    for role in ("slider", "spinbutton"):
                        words = [re.findall(r"\w+", text) for text in tree[role]]
                        self.assertEqual(sum(parameter in text for text in words), 1)
                self.assertEqual(sorted(names), sorted(set(names)))

    def test_tables_lists_and_regions(self):
        self.open(docking_page())
        tree = self.tree()
        self.assertEqual(tree["radio"][:2], ["1", "2"])
        self.assertIn("Minima; the chosen one is shown in the picture", tree["table"])
        for region in ("Picture", "Minima", "Parameters", "Distances", "Copy this pose"):
            self.assertIn(region, tree["region"])
        self.assertEqual(tree["main"], [""])
        self.assertEqual(len(tree["status"]), 2)  # words about the pose, and which minimum it is

    def test_language_and_title(self):
        for name in ("pair", "scan"):
            self.open(PAGES[name]())
            self.assertEqual(self.run_script("return document.documentElement.lang"), "en")
            self.assertEqual(self.browser.title, self.by_id("title").text)

    def test_headings(self):
        for name, make in PAGES.items():
            with self.subTest(name):
                self.open(make())
                self.run_script("document.querySelector('details').open = true")
                found = self.headings()
                self.assertEqual([level for level, _ in found].count(1), 1)
                self.assertEqual(found[0][0], 1)
                before = 0
                for level, text in found:
                    self.assertLessEqual(level, before + 1, text)
                    self.assertNotEqual(text.strip(), "")
                    before = level

    def test_the_picture_says_what_it_shows(self):
        self.open(pair_page())
        self.assertEqual(self.by_id("picture").get_attribute("role"), "img")
        label = self.told()
        self.assertIn("r 6.50 Angstrom, theta 84.0, phi 11.0, "
                      "alpha 214.0, beta 152.0, gamma 306.0 degrees", label)
        self.assertIn("closest atoms H6 and H11, 4.6394 Angstrom", label)
        self.keys("slider-theta", Keys.ARROW_RIGHT)
        after = self.changed(lambda: self.by_id("picture").get_attribute("aria-label"), label)
        self.assertIn("theta 84.1", after)
        self.assertIn("theta 84.1", self.by_id("status").text)
        self.assertIn(after, self.tree()["image"])

    def test_maps_and_curves_say_what_is_chosen(self):
        for make, name, begin in ((scan_page, "map", "Map of shortest"),
                                  (trajectory_page, "curves", "Curves of the six parameters")):
            self.open(make())
            before = self.by_id(name).get_attribute("aria-label")
            self.assertTrue(before.startswith(begin), before)
            self.keys(name, Keys.ARROW_RIGHT)
            after = self.by_id(name).get_attribute("aria-label")
            self.assertNotEqual(after.split("chosen:")[1], before.split("chosen:")[1])
            self.assertIn(after, self.tree()["application"])

    def test_what_is_wrong_is_told(self):
        self.open(pair_page())
        self.set_values({"beta": 190}, "field")
        self.assertIn("beta: expected 0 to 180", self.by_id("status").text)
        self.assertEqual(self.by_id("field-beta").get_attribute("aria-describedby"), "note-beta")
        self.assertTrue(self.by_id("note-beta").is_displayed())

    def test_ids_stand_once(self):
        for name, make in PAGES.items():
            self.open(make())
            ids = self.run_script("return [...document.querySelectorAll('[id]')].map(({ id }) => id)")
            self.assertEqual(len(ids), len(set(ids)), name)


if __name__ == "__main__":
    unittest.main()
