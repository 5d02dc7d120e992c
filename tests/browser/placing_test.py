"""The sliders and number fields move molecule 1 to the coordinates that the program gives."""

import itertools
import random
import unittest

from page import ARGON_HCN, FOLDER, FORMAMIDE, HCN_WATER, PARAMETERS, WATER, PageTest, dravo, page_of

# Eight decimals are written, and the last one may be rounded differently.
TOLERANCE = 1.01e-8

# Sets the inputs of one pose after the other, and gives the extended xyz text of each.
COPIED_OF_POSES = """
    const [poses, kind] = arguments;
    return poses.map((pose) => {
      for (const [name, value] of Object.entries(pose)) {
        const input = document.getElementById(`${kind}-${name}`);
        if (input.disabled) continue;
        input.value = value;
        input.dispatchEvent(new Event('input'));
        input.dispatchEvent(new Event('change'));
      }
      document.getElementById('copy-xyz').click();
      return document.getElementById('copied').value;
    });"""


def frames_of(text):
    """[[symbol, x, y, z, molecule], ...] of each frame."""
    lines, frames = text.splitlines(), []
    while lines:
        count = int(lines[0])
        frames.append([[word if k == 0 else float(word) for k, word in enumerate(line.split())]
                       for line in lines[2:2 + count]])
        del lines[:2 + count]
    return frames


def random_poses(count, seed, decimals):
    """decimals: of r and of the angles."""
    chance = random.Random(seed)
    ends = {"r": (1.5, 20), "theta": (0, 180), "beta": (0, 180)}
    return [{name: f"{chance.uniform(*ends.get(name, (0, 360))):.{decimals[name == 'r']}f}"
             for name in PARAMETERS} for _ in range(count)]


def poles():
    """All combinations of the ends of the angles."""
    ends = {"r": ["3.5"], "theta": ["0", "180"], "beta": ["0", "180"]}
    return [dict(zip(PARAMETERS, values))
            for values in itertools.product(*(ends.get(name, ["0", "180", "360"]) for name in PARAMETERS))]


def without_pose(pair):
    """The words of a pair but --r and what follows, which tables replace."""
    return pair[:pair.index("--r")] if "--r" in pair else pair


class Placing(PageTest):
    def assert_atoms(self, found, atoms, words):
        self.assertEqual(len(found), len(atoms))
        for one, two in zip(found, atoms):
            self.assertEqual((one[0], one[4]), (two[0], two[4]))
            for k in (1, 2, 3):
                self.assertAlmostEqual(one[k], two[k], delta=TOLERANCE, msg=words)

    def compare(self, name, pair, poses, kind):
        """pair: words of the command; kind: "slider" or "field"."""
        self.open(page_of(name, *pair))
        idle = self.data()["idle"]
        for parameter in PARAMETERS:
            self.assertEqual(self.by_id(f"{kind}-{parameter}").is_enabled(), parameter not in idle)
        copied = self.run_script(COPIED_OF_POSES, poses, kind)

        table = FOLDER / f"{name}-{kind}.csv"
        rows = [",".join(pose[parameter] for parameter in PARAMETERS) for pose in poses]
        table.write_text("\n".join([",".join(PARAMETERS), *rows]) + "\n")
        dravo("scan", *without_pose(pair), "--zip", table, "--exact", "--quiet", "--overwrite",
              "--output", f"{name}-places")
        expected = frames_of((FOLDER / f"{name}-places.xyz").read_text())

        self.assertEqual(len(copied), len(expected))
        for pose, text, atoms in zip(poses, copied, expected):
            [found] = frames_of(text)
            self.assert_atoms(found, atoms, f"{kind}s {pose}")

    def test_two_formamides_by_fields(self):
        self.compare("formamides", FORMAMIDE, random_poses(200, 1, (6, 6)), "field")

    def test_two_formamides_by_sliders(self):
        """Sliders have steps of 0.01 Angstrom and 0.1 degrees."""
        self.compare("formamides", FORMAMIDE, random_poses(200, 2, (1, 2)), "slider")

    def test_poles_of_the_angles(self):
        for kind in ("field", "slider"):
            self.compare("formamides", FORMAMIDE, poles(), kind)

    def test_two_waters(self):
        self.compare("waters", WATER, random_poses(30, 3, (6, 6)) + poles(), "field")

    def test_linear_molecule_on_water(self):
        self.compare("hcn-water", HCN_WATER, random_poses(30, 4, (6, 6)) + poles(), "field")
        self.compare("hcn-water", HCN_WATER, random_poses(30, 5, (1, 2)), "slider")

    def test_atom_on_linear_molecule(self):
        self.compare("argon-hcn", ARGON_HCN, random_poses(30, 6, (6, 6)) + poles(), "field")

    def test_one_value_at_a_time(self):
        """Each slider alone, as `dravo place` has it, and the field and the slider show the same."""
        self.open(page_of("formamides", *FORMAMIDE))
        values = {"r": 4.25, "theta": 61.3, "phi": 302.1, "alpha": 17.9, "beta": 44.4, "gamma": 98.7}
        for name, value in values.items():
            self.press("reset-pose")
            self.set_values({name: value}, "slider")
            self.assertEqual(self.pose()[name], value)
            self.assertEqual(float(self.by_id(f"slider-{name}").get_property("value")), value)
            self.press("copy-xyz")
            [found] = frames_of(self.by_id("copied").get_property("value"))
            [atoms] = frames_of(dravo("place", *FORMAMIDE, f"--{name}", value, "--exact"))
            self.assert_atoms(found, atoms, name)

    def test_the_command_that_is_copied(self):
        """It makes the coordinates that the page has."""
        self.open(page_of("formamides", *FORMAMIDE))
        self.set_values({"r": 5.25, "theta": 70.5, "alpha": 33.3}, "field")
        self.press("copy-command")
        words = self.by_id("copied").get_property("value").split()
        self.assertEqual(words[:2], ["dravo", "place"])
        self.press("copy-xyz")
        [found] = frames_of(self.by_id("copied").get_property("value"))
        [atoms] = frames_of(dravo("place", *FORMAMIDE, *words[3:]))
        self.assert_atoms(found, atoms, words)

    def test_values_out_of_range(self):
        """A wrong value moves nothing and says what is wrong."""
        self.open(page_of("formamides", *FORMAMIDE))
        before = self.pose()
        self.set_values({"theta": 200}, "field")
        note = self.by_id("note-theta")
        self.assertTrue(note.is_displayed())
        self.assertIn("expected 0 to 180", note.text)
        self.assertEqual(self.by_id("field-theta").get_attribute("aria-invalid"), "true")
        self.press("copy-input")
        self.assertIn(f"{before['theta']:.8f}", self.by_id("copied").get_property("value"))


if __name__ == "__main__":
    unittest.main()
