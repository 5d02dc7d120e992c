"""Cases of dravo: shell commands, one a line, in a folder with the files that they name."""
import random

from placements import (DIMER, EXAMPLES, INPUT, ROOT, drawn_pair, example, free_axes, moved,
                        pair_of, with_lines)
from running import Case

# --- files --------------------------------------------------------------------------------------


def xyz(atoms, comment="made by hand"):
    return "\n".join([str(len(atoms)), comment, *atoms]) + "\n"


def replaced_labels(atoms, names):
    return [f"{names[atom.split()[0]]} {' '.join(atom.split()[1:])}" for atom in atoms]


ATOMS = DIMER[1:13]  # formamide twice
WATER = EXAMPLES["water-dimer"].splitlines()[1:4]
MIXED = [atom for two in zip(ATOMS[:6], ATOMS[6:]) for atom in two]
BOHR = [" ".join([label, *(f"{float(x) / 0.529177:.7f}" for x in position)])
        for label, *position in map(str.split, ATOMS)]
EXTENDED = [f"{k} {' '.join(atom.split()[1:])} {atom.split()[0]}" for k, atom in enumerate(ATOMS)]

FORMAMIDE, OTHER = (example("formamide-dimer").molecule(number) for number in (1, 2))

GOOD_FILES = {
    **{name + ".xyz": text for name, text in EXAMPLES.items()},
    "one.xyz": xyz(ATOMS[:6]), "two.xyz": xyz(ATOMS[6:]), "water.xyz": xyz(WATER),
    "dimer.xyz": xyz(ATOMS), "mixed.xyz": xyz(MIXED), "bohr.xyz": xyz(BOHR),
    "numbers.xyz": xyz(replaced_labels(ATOMS, {"C": "6", "O": "8", "N": "7", "H": "1"})),
    "upper.xyz": xyz(replaced_labels(ATOMS, {"C": "c", "O": "CL", "N": "n", "H": "H"})),
    "frames.xyz": xyz(ATOMS[:6] + WATER) + xyz(ATOMS, "the second"),
    "extended.xyz": xyz(EXTENDED, 'Properties=id:I:1:pos:R:3:species:S:1 pbc="F F F"'),
    "nested/dimer.xyz": xyz(ATOMS), "free.xyz": pair_of(free_axes(), FORMAMIDE).text(),
    "plan.toml": (ROOT / "examples/scan/plan.toml").read_text(),
    "list.toml": 'zip = "poses.csv"\ncontacts = "drop"\n',
    "random.toml": "r = [3.5, \"5:7:1\"]\nrandom = 40\nseed = 11\n",
    "files.toml": "r = 6\nrandom = 3\nfiles = true\n",
    "poses.csv": "r,theta,phi,alpha,beta,gamma\n" + "".join(
        f"{3 + 0.25 * k},{7 * k},{11 * k},{13 * k},{5 * k},{17 * k}\n" for k in range(20)),
    "mixed.csv": "gamma,note,beta,alpha,phi,theta,r\n1,x,2,3,4,5,6\n0,,180,360,360,0,2.5\n",
}

BAD_PAIRS = {
    **{f"label-{label}.xyz": xyz([label + ATOMS[0][1:], *ATOMS[1:]])
       for label in ("D", "CA", "X", "Np", "C1", "Zz")},
    **{f"properties-{k}.xyz": xyz(ATOMS, f"Properties={text}") for k, text in enumerate((
        "pos:R:3", "species:S:1", "species:S:1:pos:R:2", "species:S", "species:S:x:pos:R:3",
        "species:S:1:pos:R:3:charge:R:1"))},
    "typo.xyz": xyz([*ATOMS[:3], "H 0 1 zero", *ATOMS[4:]]),
    "short.xyz": xyz([*ATOMS[:3], "H 0 1", *ATOMS[4:]]), "cut.xyz": xyz(ATOMS)[:-90],
    "ends.xyz": xyz(ATOMS)[:len(xyz(ATOMS[:5])) + 1],
    "columns.xyz": xyz(12 * ["0.5"], "Properties=charge:R:2:species:S:1:pos:R:3"),
    "no-comment.xyz": "12\n", "behind.xyz": xyz(ATOMS) + "more\n",
    "few.xyz": xyz(ATOMS[:5]), "count.xyz": "12 atoms" + xyz(ATOMS)[2:],
    "many.xyz": "200000\n\n", "empty.xyz": "", "apart.xyz": xyz([*ATOMS, "He 50 50 50"]),
    "nan.xyz": xyz([*ATOMS[:11], "H nan 0 0"]), "nan.in": with_lines({5: "H nan 0 0"}),
    "n1-2.in": with_lines({15: "2"}), "n1-5.in": with_lines({15: "5"}),
    "outside.in": with_lines({18: "184"}), "item.in": with_lines({18: "9o"}),
    "far.in": pair_of(moved(FORMAMIDE, (1e15, 0.0, 0.0)), OTHER).text(),
}

BAD_PLANS = {
    "key.toml": "r = 6\nrandom = 3\ncolour = 1\n", "syntax.toml": "r = \n",
    "type.toml": "r = true\nrandom = 3\n", "two.toml": "r = 6\nrandom = [3, 4]\n",
    "none.toml": "r = []\nrandom = 3\n", "nested.toml": "r = [[1, 2]]\nrandom = 3\n",
    "table.toml": "r = {start = 1}\nrandom = 3\n", "mark.toml": "\ufeffr = 6\nrandom = 3\n",
    "values.toml": 'zip = "poses.csv"\nr = 5\n', "angle.toml": "r = 6\nrandom = 3\nbeta = 2\n",
    "word.csv": "6,1,2,3,4,5\n6,1,2,3,four,5\n", "wide.csv": "6,1,2,3,4,500\n",
    "three.csv": "6,1,2\n", "cut.csv": "6,1,2,3,4,5\n6,1,2\n", "names.csv": "r,theta,phi\n1,2,3\n",
    "text.csv": "some words\n", "heading.csv": "r,theta,phi,alpha,beta,gamma\n", "empty.csv": "",
}

FILES = GOOD_FILES | BAD_PAIRS | BAD_PLANS

# --- identify and prepare -----------------------------------------------------------------------

ANGLES = "--theta 84 --phi 11 --alpha 214 --beta 152 --gamma 306"

IDENTIFY = [f"dravo identify {name}.xyz{option}" for name in EXAMPLES for option in ("", " --json")]
IDENTIFY += f"""
dravo identify dimer.xyz --split 6
dravo identify dimer.xyz --split auto --json
dravo identify dimer.xyz --split 5
dravo identify mixed.xyz --split auto
dravo identify numbers.xyz --split 6 --json
dravo identify upper.xyz --split 6
dravo identify extended.xyz --split 6
dravo identify frames.xyz --split 6
dravo identify frames.xyz --frame 2 --split auto
dravo identify bohr.xyz --split 6
dravo identify free.xyz
cp formamide-dimer.xyz {INPUT}; qn-dravo; dravo identify input-GEOMETRY.xyz
cp acetamide-acrylonitrile.xyz {INPUT}; qn-dravo; dravo identify input-GEOMETRY.xyz --json
""".strip().splitlines()
IDENTIFY += [f"dravo prepare formamide-dimer.xyz {values}; qn-dravo > screen; "
             f"dravo identify input-GEOMETRY.xyz{option}"
             for values in ("--theta 0", "--theta 180", "--beta 0", "--beta 180", "--r 0",
                            "--alpha 360 --gamma 359.95") for option in ("", " --json")]

PREPARE = f"""
dravo prepare one.xyz two.xyz --r 6.5 {ANGLES}
dravo prepare one.xyz two.xyz --r 4
dravo prepare one.xyz two.xyz --r 4 --theta 180 --beta 180 --alpha 90 --gamma 0.05 && qn-dravo
dravo prepare two.xyz water.xyz --r 4 --theta 90
dravo prepare water.xyz water.xyz --r 0 --beta 0.3 --gamma 20; qn-dravo
dravo prepare dimer.xyz --split 6 --r 6.5 {ANGLES} && qn-dravo
dravo prepare dimer.xyz --split auto --r 1e1 --phi=1.5e2 && qn-dravo
dravo prepare mixed.xyz --split auto --r 6.5
dravo prepare numbers.xyz --split 6 --r 9999.9 --theta 180 --phi 360 --alpha 360
dravo prepare upper.xyz --split 6 --r 5
dravo prepare extended.xyz --split 6 --r 5
dravo prepare frames.xyz --frame 2 --split 6 --r 5
dravo prepare frames.xyz --split 6 --r 5
dravo prepare bohr.xyz --split 6 --unit bohr --r 4 {ANGLES} && qn-dravo
dravo prepare bohr.xyz --split 6 --unit angstrom --r 4
dravo prepare one.xyz two.xyz --unit bohr --r 4 -o pair.in
dravo prepare formamide-dimer.xyz
dravo prepare formamide-dimer.xyz --r 7 --gamma 10 --output other.xyz
dravo prepare adenine-thymine-stack.xyz && qn-dravo
dravo prepare uracil-dimer-stack.xyz
dravo prepare formamide-dimer.xyz && dravo prepare water-dimer.xyz --overwrite
cp dimer.xyz {INPUT}; dravo prepare formamide-dimer.xyz
dravo prepare formamide-dimer.xyz && qn-dravo && dravo prepare input-GEOMETRY.xyz --r 3 --overwrite
""".strip().splitlines()

# --- scans --------------------------------------------------------------------------------------

PLANE = "--phi 0 --alpha 0 --beta 90 --gamma 0"
ONE_POSE = f"--r 6 --theta 84 {PLANE}"
SINGULAR = "--r 0,0.05,2.5,9999.9 --theta 0,0.04,180 --phi 0,360 --alpha 0.05 --beta 0.4,180"
SCAN_DIMER = "dravo scan formamide-dimer.xyz"
SCAN_ONE = f"{SCAN_DIMER} {ONE_POSE}"
SCAN_FILES = f"{SCAN_DIMER} --r 7 --random 3 --files"
SCAN_ALL = [f"dravo scan {name}.xyz --r 'contact + 0,0.5' --random 60 --seed 5 {more}".strip()
            for name in EXAMPLES for more in ("", "--files --output many")]
SCAN_ALL += [f"dravo scan {name}.xyz --r 3:9:1.5 --theta 0:180:45 --phi 0,100.5 --alpha 0,214.25 "
             "--beta 0,90,180 --gamma 306" for name in EXAMPLES]

SCAN = SCAN_ALL + f"""
{SCAN_DIMER} --plan plan.toml --output formamide
{SCAN_DIMER} --plan plan.toml --r 2,3 --contacts only --json
dravo scan dimer.xyz --split auto --plan plan.toml --contacts drop --threads 1
dravo scan mixed.xyz --split auto {ONE_POSE}
dravo scan frames.xyz --frame 2 --split 6 {ONE_POSE}
{SCAN_DIMER} --plan random.toml
{SCAN_DIMER} --plan random.toml --seed 12 --quiet
{SCAN_DIMER} --plan list.toml
{SCAN_DIMER} --plan files.toml
{SCAN_DIMER} --zip poses.csv
{SCAN_DIMER} --zip mixed.csv
{SCAN_DIMER} --zip poses.csv && {SCAN_DIMER} --zip scan.csv -o again
{SCAN_DIMER} {SINGULAR} --gamma 0
{SCAN_DIMER} --r 0:1:0.1 --theta 84 {PLANE} --json
{SCAN_DIMER} --r 'contact + 0:2:0.25' --theta 0:180:30 {PLANE}
{SCAN_DIMER} --r 'contact + 0,9000' --random 30 --contacts drop
{SCAN_DIMER} --r 3.5 --random 500 --contacts only
{SCAN_DIMER} --r 3.5 --random 500 --contacts drop --json
{SCAN_DIMER} --r 3.5 --random 500 --contacts only --files --quiet
{SCAN_DIMER} --r 3,4,5 --random 1000 --seed 4294967296 --threads 3 --quiet
{SCAN_DIMER} --r 3.5 --random 20000 --count
{SCAN_DIMER} --r 3.5 --random 20000 --count --json --threads 1
{SCAN_ONE} --count --shard 1/3
{SCAN_ONE} --shard 1/3 --json
{SCAN_DIMER} --r 3.5 --random 9 --shard 1/1 && dravo merge scan
{SCAN_ONE} && {SCAN_ONE}
{SCAN_ONE} && {SCAN_ONE} --resume
{SCAN_ONE} && {SCAN_ONE} --resume --json
{SCAN_ONE} && {SCAN_DIMER} --r 7 --random 9 --resume
{SCAN_ONE} && {SCAN_DIMER} --r 7 --random 9 --overwrite
{SCAN_DIMER} --r 7 --random 9 --resume
{SCAN_FILES} && {SCAN_FILES}
{SCAN_FILES} && {SCAN_FILES} --resume
{SCAN_FILES} && {SCAN_DIMER} --r 8 --random 2 --files --overwrite
mkdir results; {SCAN_DIMER} --r 7 --random 3 --output results/all
mkdir results; {SCAN_ONE} -o results/all && {SCAN_ONE} -o results/all
""".strip().splitlines()

# The first command is stopped by a limit of file size, sooner or later; only what the second makes
# of it is certain.
SCAN_LONG = f"{SCAN_DIMER} --r 3.5 --random 6000 --contacts only --quiet"
RESUME = [f"(ulimit -f {blocks}; {SCAN_LONG} 2> messages); rm messages; {SCAN_LONG} --resume"
          for blocks in (100, 2000, 5000)]
RESUME += [f"(ulimit -f 2000; {SCAN_LONG} 2> messages); {SCAN_LONG}; rm messages *.part *.progress",
           f"(ulimit -f 2000; {SCAN_LONG} 2> messages); rm messages; {SCAN_LONG} --overwrite"]
RESUME += [f"{SCAN_ONE} --quiet; {change}; {SCAN_ONE} --resume" for change in """
mv scan.xyz scan.xyz.part; mv scan.csv scan.csv.part
mv scan.xyz scan.xyz.part; mv scan.csv scan.csv.part; mv scan.json scan.progress
echo '{}' > scan.progress
echo 'not JSON' > scan.json
rm scan.xyz
echo more >> scan.csv
""".strip().splitlines()]

SCAN_PART = f"{SCAN_DIMER} --r 3.5 --random 300 --contacts only --quiet --output all"
PARTS = f"for part in 1 2 3; do {SCAN_PART} --shard $part/3; done; "
MERGE = [PARTS + end for end in """
dravo merge all
dravo merge all --json
dravo merge all --quiet
dravo merge all && dravo merge all
dravo merge all && dravo merge all --overwrite --json
echo mine > all.csv; dravo merge all
rm all-2-of-3.*; dravo merge all
rm all-3-of-3.json; dravo merge all
echo >> all-1-of-3.xyz; dravo merge all
rm all-1-of-3.csv; dravo merge all
echo '{}' > all-2-of-3.json; dravo merge all
for name in xyz csv json; do cp all-1-of-3.$name all-2-of-3.$name; done; dravo merge all
touch all.progress; dravo merge all
cp all-1-of-3.json all.progress; dravo merge all
""".strip().splitlines()]
MERGE += [
    f"for part in 1 2; do {SCAN_DIMER} --r 6 --random 4 --files --shard $part/2; done; "
    "dravo merge scan",
    PARTS + f"{SCAN_PART} --shard 2/3 --seed 1 --overwrite; dravo merge all",
    PARTS + f"{SCAN_PART} --shard 2/4; dravo merge all",
]

# --- wrong calls and help -----------------------------------------------------------------------

WRONG = f"""
dravo
dravo place
dravo ''
dravo --delta
dravo identify
dravo identify none.xyz
dravo identify dimer.xyz
dravo identify dimer.xyz --split 0
dravo identify dimer.xyz --split 2
dravo identify dimer.xyz --split 12
dravo identify dimer.xyz --split six
dravo identify frames.xyz --frame 3 --split 6
dravo identify frames.xyz --frame 0 --split 6
dravo identify apart.xyz --split auto
dravo identify n1-5.in --split auto
dravo identify formamide-dimer.xyz --split 5
dravo identify formamide-dimer.xyz --frame 2
dravo identify one.xyz --split auto
dravo identify . --split 6
dravo identify formamide-dimer.xyz > /dev/full
dravo prepare
dravo prepare dimer.xyz --split 6
dravo prepare dimer.xyz --r 4
dravo prepare dimer.xyz --split 6 --r
dravo prepare dimer.xyz --split 6 --r 4A
dravo prepare dimer.xyz --split 6 --r -1.5
dravo prepare dimer.xyz --split 6 --r 9999.95
dravo prepare dimer.xyz --split 6 --r nan
dravo prepare dimer.xyz --split 6 --r 4 --r 5
dravo prepare dimer.xyz --split 6 --r 4 --theta 190
dravo prepare dimer.xyz --split 6 --r 4 --theta=-7
dravo prepare dimer.xyz --split 6 --r 4 --phi -0.2
dravo prepare dimer.xyz --split 6 --r 4 --phi 360.5
dravo prepare dimer.xyz --split 6 --r 4 --alpha 400
dravo prepare dimer.xyz --split 6 --r 4 --beta 180.5
dravo prepare dimer.xyz --split 6 --r 4 --gamma -90
dravo prepare dimer.xyz --split 6 --r 4 --unit nm
dravo prepare dimer.xyz --split 6 --r 4 -o none/new.xyz
mkdir taken; dravo prepare dimer.xyz --split 6 --r 4 -o taken --overwrite
dravo prepare outside.in
dravo prepare one.xyz two.xyz --split 6 --r 4
dravo prepare formamide-dimer.xyz two.xyz --r 4
dravo prepare formamide-dimer.xyz --unit bohr
dravo prepare one.xyz two.xyz water.xyz --r 4
dravo scan
dravo scan none.xyz {ONE_POSE}
{SCAN_DIMER}
{SCAN_DIMER} --r 6
{SCAN_DIMER} --zip /dev/null
{SCAN_DIMER} --zip poses.csv --random 3
{SCAN_DIMER} --plan missing.toml
{SCAN_DIMER} --zip missing.csv
{SCAN_DIMER} --zip poses.csv --r 5
{SCAN_ONE} --seed 3
{SCAN_ONE} --random 3
{SCAN_DIMER} --r 3-4 --random 3
{SCAN_DIMER} --r 3:5 --random 3
{SCAN_DIMER} --r 0:9999:1e-12 --random 3
{SCAN_DIMER} --r 'contact 3' --random 3
{SCAN_DIMER} --r 0:9999:0.001 --theta 0:180:0.001 --phi 0:360:0.001 --alpha 0 --beta 0 --gamma 0
{SCAN_DIMER} --r 5:3:0.5 --random 3
{SCAN_DIMER} --r 3:5:0 --random 3
{SCAN_DIMER} --r 3, --random 3
{SCAN_DIMER} --r -1 --random 3
{SCAN_DIMER} --r 10000 --random 3
{SCAN_DIMER} --r 'contact + -1' --random 3
{SCAN_DIMER} --r 'contact + 9999' --random 3
{SCAN_DIMER} --r 6 --random 0
{SCAN_DIMER} --r 6 --random 3 --seed x
{SCAN_DIMER} --r 6 --theta 190 {PLANE}
{SCAN_ONE} --contacts maybe
{SCAN_ONE} --shard 4/3
{SCAN_ONE} --shard 1
{SCAN_ONE} --threads 0
{SCAN_ONE} --resume --overwrite
{SCAN_ONE} --count --overwrite
{SCAN_ONE} --output results/
{SCAN_ONE} --output ''
{SCAN_ONE} --output none/scan
{SCAN_ONE} --output formamide-dimer --overwrite
{SCAN_ONE} --count > /dev/full
mkdir scan; {SCAN_DIMER} --r 6 --random 3 --files
dravo scan nested/dimer.xyz --split 6 --plan files.toml -o nested --overwrite
flock scan.progress {SCAN_ONE}
flock all.progress dravo merge all
dravo merge
dravo merge none
dravo merge none/all
dravo merge all more
""".strip().splitlines()

WRONG += [f"dravo identify {name}" + ("" if name.endswith(".in") else " --split 6")
          for name in BAD_PAIRS]
WRONG += [f"{SCAN_DIMER} {'--zip' if name.endswith('.csv') else '--plan'} {name}"
          for name in BAD_PLANS]

HELP = [f"dravo {command}{option}" for command in ("", "prepare ", "identify ", "scan ", "merge ")
        for option in ("--help", "--version")]

LINES = {"identify": IDENTIFY, "prepare": PREPARE, "scan": SCAN, "resume": RESUME, "merge": MERGE,
         "wrong": WRONG, "help": HELP}

# --- pairs of random atoms ----------------------------------------------------------------------

DRAWN_PAIRS = 40
DRAWN = """
dravo identify pair.xyz
dravo identify pair.xyz --json
dravo prepare pair.xyz --output new.xyz
dravo scan pair.xyz --r 2:6:2 --random 20 --seed 3
dravo scan pair.xyz --r 'contact + 0,1' --random 10
""".strip().splitlines()


def drawn_calls(seed):
    rng = random.Random(seed + 1)
    for number in range(DRAWN_PAIRS):
        pair = drawn_pair(rng)
        for line in DRAWN:
            yield Case(f"drawn {number}/{line}", "drawn", line, {"pair.xyz": pair.text()})


def files_for(line):
    """Those that the line names, and the list that plans name."""
    return {name: text for name, text in FILES.items() if name in line or name == "poses.csv"}


def calls(seed):
    for kind, lines in LINES.items():
        for line in lines:
            yield Case(f"{kind}/{line}", kind, line, files_for(line))
    yield from drawn_calls(seed)
