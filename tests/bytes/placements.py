"""Cases of qn-dravo: bundled inputs, every prescribed stop, and inputs that are drawn."""
import math
import random
import struct
from dataclasses import dataclass
from pathlib import Path

from running import Case

ROOT = Path(__file__).resolve().parents[2]
INPUT = "QN-input-GEOMETRY.xyz"
EXAMPLES = {path.parent.name: path.read_text() for path in sorted(ROOT.glob(f"examples/*/{INPUT}"))}


@dataclass
class Pair:
    """An input file taken apart; everything keeps its text."""
    atoms: list[tuple[str, ...]]  # label, x, y, z
    n1: str
    values: list[str]  # r, theta, phi, alpha, beta, gamma

    def text(self):
        lines = [str(len(self.atoms)), *(" ".join(atom) for atom in self.atoms), "n1", self.n1,
                 "position", *self.values[:3], "rotation", *self.values[3:], "end"]
        return "\n".join(lines) + "\n"

    def molecule(self, number):
        n1 = int(self.n1)
        return self.atoms[:n1] if number == 1 else self.atoms[n1:]


def example(name):
    lines = EXAMPLES[name].splitlines()
    n = int(lines[0])
    return Pair([tuple(line.split()) for line in lines[1:n + 1]], lines[n + 2],
                lines[n + 4:n + 7] + lines[n + 8:n + 11])


def pair_of(one, two):
    return Pair([*one, *two], str(len(one)), example("formamide-dimer").values)


def placement(kind, name, text, command="qn-dravo", **more):
    return Case(f"{kind}/{name}", kind, command, {INPUT: text, **more})


# --- bundled inputs -----------------------------------------------------------------------------

def bundled():
    for name, text in EXAMPLES.items():
        yield placement("example", name, text)
    for folder in ("read_input", "whole_run"):
        for path in sorted(ROOT.glob(f"tests/fuzz/corpus/{folder}/*")):
            yield placement("corpus", f"{folder}/{path.name}", path.read_bytes())


# --- a dimer with other lines -------------------------------------------------------------------

DIMER = EXAMPLES["formamide-dimer"].splitlines()  # 24 lines
LINE_OF = {"N": 1, "atom": 4, "n1": 15, "r": 17, "theta": 18, "phi": 19, "alpha": 21, "beta": 22,
           "gamma": 23}


def with_lines(changes, line_end="\n"):
    lines = [changes.get(number, line) for number, line in enumerate(DIMER, 1)]
    return line_end.join(lines) + line_end


FULL_TURN = ["-0.2", "-1e-9", "-90", "0", "0.09", "0.1", "359.6", "360.4", "360.5", "400", "1e308",
             "inf", "-inf", "nan", "1e-320", "-0.0"]
HALF_TURN = ["-0.2", "-1", "0", "0.04", "0.05", "0.4", "0.5", "179.5", "179.91", "179.92", "180",
             "180.09", "180.4", "180.5", "190", "-1e308", "inf", "-inf", "nan", "1e-320"]
DISTANCES = ["-1.5", "-1e-9", "0", "1e-320", "0.09", "0.095", "0.0999991", "0.1", "1.5", "9.96",
             "99.96", "999.96", "9999.9", "9999.95", "1e308", "inf", "-inf", "nan"]
VALUES = {"r": DISTANCES, "theta": HALF_TURN, "phi": FULL_TURN, "alpha": FULL_TURN,
          "beta": HALF_TURN, "gamma": FULL_TURN}


def parameter_values():
    for parameter, values in VALUES.items():
        for value in values:
            text = with_lines({LINE_OF[parameter]: value})
            yield placement("parameter", f"{parameter} {value}", text)
    for alpha, gamma in (("200", "160"), ("360", "0"), ("0", "360"), ("90", "-5")):
        text = with_lines({21: alpha, 22: "0.3", 23: gamma})
        yield placement("parameter", f"beta 0.3 alpha {alpha} gamma {gamma}", text)


def many_atoms(count, n1=6, r="160"):
    """On a lattice, so that few of them are close to each other. An iodine in a corner of each
    molecule gives all axes a direction."""
    sites = ((k % 53, k // 53 % 53, k // 2809) for k in range(count))
    atoms = [("I" if k in (0, n1) else "CNO"[k % 3], f"{2.1 * x:.1f}", f"{2.2 * y:.1f}",
              f"{2.3 * z:.1f}") for k, (x, y, z) in enumerate(sites)]
    return Pair(atoms, str(n1), [r, *example("formamide-dimer").values[1:]]).text()


def counts():
    yield placement("count", "5 atoms", pair_of(example("water-dimer").molecule(1),
                                               example("water-dimer").molecule(1)[:2]).text())
    for n1 in ("2", "0", "-3", "3", "9", "10", "12", "13", "200000", "2147483647"):
        yield placement("count", f"n1 {n1}", with_lines({15: n1}))
    for n in ("0", "-3"):
        yield placement("count", f"N {n}", f"{n}\nn1\n6\n")
    yield placement("count", "8000 atoms", many_atoms(8000, 3000))
    yield placement("count", "8000 atoms, overlapping", many_atoms(8000, 3000, "30"))
    yield placement("count", "150000 atoms", many_atoms(150000, 75000))
    yield placement("count", "150001 atoms", many_atoms(150001))


# --- lines that cannot be read, and odd ones that can -------------------------------------------

BAD_ITEMS = ["12.0", "1e1", "abc", "2147483648", "99999999999999999999", "+-5", "-", "0xC", "3*4",
             "/", "1.0abc", "1.2.3", "1e", ".", "1e400", "9o", "1;5", "infinite", "'1.0'", ",", "",
             " ", "6,5", "\u22120.04", "\u03b1=214", "\0", "\x1b[2J\x7f", "9o " + 300 * "x",
             1000 * "9", 100 * " " + "9o"]
ODD_ATOMS = ["N 1,,2 0", ",1 2 3", "3*N 1 2 3", "/ 1 2 3", "'N 1 2 3", "N -0.04 -2.29", "N -0.04",
             "N", "N -0.04 -2.29,", "N -0.04 -2.29\n\n \t", "N 1\0 0 0", "N\0 x 0 0", "N\t1\tx\t0",
             "\tN\t-0.04,\t-2.29 ,0\t", "N\n-0.04\n-2.29\n0", "N -4.0D-02 -.229d+1 0Q0",
             "N -0,04 -2.29 0", "N 1e-320 -2.29 0", "'7' -0.04 -2.29 0", "\n \t\r\nN -0.04 -2.29 0",
             "\u03b1 1.0 x 2", "N -0.04 -2.29 0 / 'x", "N +.5 -3. 1e-400"]
COMMENTS = ["formamide dimer", "formamide", "-169.5", "H 1 2 3 optimised", "", "\nformamide dimer",
            "'formamide' \"dimer\"", "Properties=species:S:1:pos:R:3"]


def lines_left_out():
    for number in range(1, len(DIMER) + 1):
        lines = DIMER[:number - 1] + DIMER[number:]
        yield placement("line", f"{number} missing", "\n".join(lines) + "\n")
        yield placement("line", f"{number} blank", with_lines({number: " "}))
        yield placement("line", f"{number} and more missing", "\n".join(DIMER[:number - 1]))


def short(text):
    return repr(text) if len(text) <= 40 else f"{text[:10]!r} to {len(text)} characters"


def items():
    for item in BAD_ITEMS:
        for place in ("N", "n1", "r", "gamma"):
            yield placement("item", f"{place} {short(item)}", with_lines({LINE_OF[place]: item}))
        text = with_lines({LINE_OF["atom"]: f"N 0.5 {item} 0"})
        yield placement("item", f"y {short(item)}", text)
    for atom in ODD_ATOMS:
        yield placement("item", f"atom {short(atom)}", with_lines({LINE_OF["atom"]: atom}))
    for comment in COMMENTS:
        yield placement("comment", repr(comment), with_lines({1: "12\n" + comment}))


def whole_files():
    text = "\n".join(DIMER) + "\n"
    files = {
        "line ends of Windows": with_lines({}, "\r\n"), "line ends of old": with_lines({}, "\r"),
        "byte-order mark": "\ufeff" + text, "16-bit characters": text.encode("utf-16"),
        "Latin-1": with_lines({4: "\xc5ngstr\xf6m x 0 0"}).encode("latin-1"), "empty": "",
        "blank lines": "\n\n\n", "text behind the end": text + "\xff 1,,2 /\n\n",
        "N without atoms": "2147483647\nH 0 0 0\nH 1 0 0\n", "no end of the last line": text[:-1],
        "10 MB of blanks": with_lines({17: 10_000_000 * " " + "6.5"}),
        "10 MB of letters": with_lines({17: 10_000_000 * "x"}),
    }
    for name, contents in files.items():
        yield placement("file", name, contents)


# --- molecules that are symmetric, far, huge or unknown -----------------------------------------

def single_precision(x):
    return struct.unpack("f", struct.pack("f", x))[0]


def free_axes():
    """Two moments are equal, and the oxygen lies in the plane of their axes, which may have any
    directions in it: rounding turns them from one alignment to the next."""
    carbon, oxygen = single_precision(12.011), single_precision(15.999)
    x = oxygen * 1.2 / (2.0 * carbon)
    y = math.sqrt(oxygen * 1.2 * 1.2 / (2.0 * carbon) + x * x)
    places = [("O", 1.2, 0.0, 0.0), ("C", -x, y, 0.0), ("C", -x, -y, 0.0), ("C", 0.0, 0.0, 2.5),
              ("C", 0.0, 0.0, -2.5)]
    return [(label, *map(repr, place)) for label, *place in places]


def symmetric_molecules():
    formamide, water, uracil = (example(name) for name in (
        "formamide-dimer", "water-dimer", "uracil-dimer-stack"))
    for name, one, two in (("water 1", water, formamide), ("water 2", formamide, water),
                           ("uracil 1", uracil, formamide), ("uracil 2", formamide, uracil),
                           ("both", water, uracil)):
        yield placement("symmetric", name, pair_of(one.molecule(1), two.molecule(2)).text())
    lines = {"linear": ["H 0 0 0", "C 0 0 1.07", "N 0 0 2.22"], "one place": 3 * ["O 1 2 3"],
             "one element": ["C 0 0 0", "C 1.5 0 0", "C 0 1.5 0", "C 0.1 0.2 1.5"],
             "spherical": ["C 0 0 0", "H 1 1 1", "H 1 -1 -1", "H -1 1 -1", "H -1 -1 1"]}
    molecules = {name: [tuple(line.split()) for line in atoms] for name, atoms in lines.items()}
    for name, atoms in (molecules | {"free axes": free_axes()}).items():
        for number, pair in ((1, pair_of(atoms, formamide.molecule(2))),
                             (2, pair_of(formamide.molecule(1), atoms))):
            yield placement("symmetric", f"{name} {number}", pair.text())


LABELS = ["D", "C1", "CA", "Ca", "Carbon", "XX", "0", "93", "-1", "92", "17", "'O'", '"Cl"', "''",
          "'  O'", "o", "\x1bN", "\u03b1", "~", "'H e'", "1.0"]


def labels():
    for label in LABELS:
        text = with_lines({7: f"{label} -1.70418544 -1.09860749 0.0"})
        yield placement("label", repr(label), text)
    dimer = example("formamide-dimer")
    unknown = [("Q" + str(k), *atom[1:]) for k, atom in enumerate(dimer.atoms)]
    yield placement("label", "all unknown", Pair(unknown, "6", dimer.values).text())
    one_unknown = Pair(unknown[:6] + dimer.atoms[6:], "6", dimer.values)
    yield placement("label", "molecule 1 unknown", one_unknown.text())


def moved(atoms, shift, scale=1.0):
    return [(atom[0], *(repr(scale * float(x) + d) for x, d in zip(atom[1:], shift)))
            for atom in atoms]


def far_molecules():
    """Neighbouring numbers near 1e16 are two apart, so the tip of a unit vector there may point
    anywhere, and no rotation brings the two frames together."""
    dimer = example("formamide-dimer")
    one, two = dimer.molecule(1), dimer.molecule(2)
    for far in (1e6, 1e12, 1e14, 1e15, 3e15, 1e16, 1e20):
        for axis in range(3):
            shift = [far if k == axis else 0.0 for k in range(3)]
            for name, pair in (("1", pair_of(moved(one, shift), two)),
                               ("2", pair_of(one, moved(two, shift))),
                               ("both", pair_of(moved(one, shift), moved(two, shift)))):
                yield placement("far", f"{name} {far:g} {'xyz'[axis]}", pair.text())


def huge_molecule(size):
    """Its centre of mass is exactly the origin as long as it stands as it does here: the masses are
    single-precision numbers, so that products of two are exact and cancel. Once it is turned, the
    centre is off by the rounding of its huge coordinates, and its frame is lost."""
    s, c, n, o = (single_precision(mass) for mass in (32.06, 12.011, 14.007, 15.999))
    atoms = [("S", c, n, o), ("C", -s, 0.0, 0.0), ("N", 0.0, -s, 0.0), ("O", 0.0, 0.0, -s)]
    for x, y, z in ((40.0, -30.0, 5.0), (0.0, 3.0, 60.0)):
        atoms += [("F", x, y, z), ("F", -x, -y, -z)]
    return [(label, *(repr(size * x) for x in position)) for label, *position in atoms]


def huge_molecules():
    formamide = example("formamide-dimer").molecule(1)
    for exponent in range(-4, 141, 8):
        pair = pair_of(formamide, huge_molecule(2.0 ** exponent))
        yield placement("huge", f"2 to the {exponent}", pair.text())


def odd_coordinates():
    for value in ("nan", "-nan", "inf", "-Infinity", "1e200", "-1e200", "1e308", "1e150", "1e100",
                  "1e30", "1e-200", "99999.5", "-99999.5", "999999.9", "1e7"):
        for line in (2, 5, 13):
            label, *position = DIMER[line - 1].split()
            for axis in range(3):
                changed = [value if k == axis else x for k, x in enumerate(position)]
                text = with_lines({line: " ".join([label, *changed])})
                yield placement("coordinate", f"{value} line {line} {'xyz'[axis]}", text)
        dimer = example("formamide-dimer")
        dimer.atoms = [(label, value, value, value) for label, *_ in dimer.atoms]
        yield placement("coordinate", f"{value} everywhere", dimer.text())


# --- folders that hold something already, and systems that refuse -------------------------------

AGAIN = {
    "twice": "qn-dravo; qn-dravo",
    "over others": "qn-dravo; sed -i 17s/.*/2.5/ QN-input*; qn-dravo",
    "over the longer": "head -c 1000000 /dev/zero > QN-LOG-PARAM.txt; "
                       "cp QN-LOG-PARAM.txt input-GEOMETRY.xyz; qn-dravo",
    "from input-GEOMETRY": "qn-dravo; mv input-GEOMETRY.xyz QN-input-GEOMETRY.xyz; qn-dravo",
}
FAULTS = [
    "rm QN-input*; qn-dravo", "rm QN-input*; mkdir QN-input-GEOMETRY.xyz; qn-dravo",
    "rm QN-input*; ln -s gone QN-input-GEOMETRY.xyz; qn-dravo", "mkdir QN-LOG-PARAM.txt; qn-dravo",
    "mkdir input-GEOMETRY.xyz; qn-dravo", "mkdir input-GEOMETRY.xyz.part; qn-dravo",
    "ln -s /dev/full QN-LOG-PARAM.txt; qn-dravo", "qn-dravo > /dev/full", "qn-dravo >&-",
    "qn-dravo 2>&-", "qn-dravo <&-", "(ulimit -f 1; qn-dravo)", "(ulimit -f 20; qn-dravo)",
    "qn-dravo --help", "qn-dravo more words",
]


def repeated_runs():
    for name, text in EXAMPLES.items():
        for title, command in AGAIN.items():
            yield placement("again", f"{name} {title}", text, command)
    stopped = with_lines({17: "-1"})
    yield placement("again", "a stop over results", EXAMPLES["formamide-dimer"],
                    "qn-dravo; mv stopped QN-input-GEOMETRY.xyz; qn-dravo", stopped=stopped)
    yield placement("again", "a symmetric pair over results", EXAMPLES["formamide-dimer"],
                    "qn-dravo; mv water QN-input-GEOMETRY.xyz; qn-dravo",
                    water=EXAMPLES["water-dimer"])


def faults():
    for command in FAULTS:
        yield placement("fault", command, EXAMPLES["formamide-dimer"], command)


# --- drawn inputs -------------------------------------------------------------------------------

def written(rng, x):
    """A number in one of the ways in which people write them."""
    return rng.choice([repr(x), f"{x:.2f}", f"{x:.10f}", f"{x:.12E}".replace("E", "D")])


def drawn_angle(rng, highest):
    special = ["0", "0.04", "0.05", "0.09", "0.1", "0.4", "0.5", "90", "180"]
    special += ["179.5", "179.92", "180.09"] if highest == 180 else ["270", "359.6", "360", "360.4"]
    return rng.choice(special) if rng.random() < 0.35 else written(rng, rng.uniform(0, highest))


def drawn_values(rng):
    special = ["0", "0.05", "0.095", "0.1", "9.96", "99.96", "999.96", "9999.9"]
    r = rng.choice(special) if rng.random() < 0.25 else written(rng, rng.uniform(0.0, 12.0))
    return [r, *(drawn_angle(rng, highest) for highest in (180, 360, 360, 180, 360))]


def drawn_turn(rng):
    """The rows of a rotation matrix, of a random quaternion."""
    w, x, y, z = (rng.gauss(0.0, 1.0) for _ in range(4))
    s = 2.0 / (w * w + x * x + y * y + z * z)
    return [[1 - s * (y * y + z * z), s * (x * y - w * z), s * (x * z + w * y)],
            [s * (x * y + w * z), 1 - s * (x * x + z * z), s * (y * z - w * x)],
            [s * (x * z - w * y), s * (y * z + w * x), 1 - s * (x * x + y * y)]]


def turned(rng, atoms):
    rows, shift = drawn_turn(rng), [rng.uniform(-20, 20) for _ in range(3)]
    places = [[math.fsum(a * float(x) for a, x in zip(row, position)) + d
               for row, d in zip(rows, shift)] for _, *position in atoms]
    return [(atom[0], *map(repr, place)) for atom, place in zip(atoms, places)]


def spelt(rng, atoms):
    return [(label, *(written(rng, float(x)) for x in position)) for label, *position in atoms]


def drawn_pose(rng, name):
    pair = example(name)
    if rng.random() < 0.5:
        pair = pair_of(turned(rng, pair.molecule(1)), turned(rng, pair.molecule(2)))
        pair.atoms = spelt(rng, pair.atoms)
    pair.values = drawn_values(rng)
    return pair


COMMON = ["H", "C", "N", "O", "F", "P", "S", "Cl"]
BOXES = [(3.0, 3.0, 3.0), (3.0, 2.0, 1.0), (4.0, 2.0, 1.5), (3.0, 2.5, 0.0), (3.0, 0.6, 0.4)]


def mirrored(atoms, axis):
    """The atoms and their mirror images: one axis of the molecule has no direction."""
    images = [[f"{-float(x)!r}" if k == axis else x for k, x in enumerate(position)]
              for _, *position in atoms]
    return atoms + [(atom[0], *image) for atom, image in zip(atoms, images)]


def drawn_molecule(rng):
    """3 to 20 atoms of any elements at any places, at times in mirror images. Flat and thin ones
    often turn out symmetric."""
    box = rng.choices(BOXES, [4, 4, 4, 2, 1])[0]
    mirror = rng.choice([0, 1, 2, None, None]) if box[2] >= 1.0 else None
    count = rng.randint(3, 20) if mirror is None else rng.randint(2, 10)
    labels_drawn = [rng.choice(COMMON) if rng.random() < 0.8 else str(rng.randint(1, 92))
                    for _ in range(count)]
    atoms = [(label, *(repr(rng.uniform(-side, side)) for side in box)) for label in labels_drawn]
    return turned(rng, atoms if mirror is None else mirrored(atoms, mirror))


def drawn_pair(rng):
    one = drawn_molecule(rng)
    two = turned(rng, one) if rng.random() < 0.15 else drawn_molecule(rng)
    return Pair(spelt(rng, [*one, *two]), str(len(one)), drawn_values(rng))


def drawn(seed, count):
    """Half of them examples in random poses, half pairs of random atoms."""
    rng = random.Random(seed)
    names = list(EXAMPLES)
    for k in range(count // 2):
        name = names[k % len(names)]
        yield placement("pose", f"{name} {k}", drawn_pose(rng, name).text())
    for k in range(count - count // 2):
        yield placement("pair", str(k), drawn_pair(rng).text())


def placements(seed, count):
    for cases in (bundled(), parameter_values(), counts(), lines_left_out(), items(), whole_files(),
                  symmetric_molecules(), labels(), far_molecules(), huge_molecules(),
                  odd_coordinates(), repeated_runs(), faults(), drawn(seed, count)):
        yield from cases
