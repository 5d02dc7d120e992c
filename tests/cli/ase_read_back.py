"""Reads the results of a scan with ASE and with Python's csv, and compares the two; then a placed
pair, and what `dravo convert` makes of the files of qn-dravo.

    ase_read_back.py DRAVO PAIR QN_DRAVO

runs DRAVO on PAIR, and QN_DRAVO, in a temporary folder. Exit status 77 when ASE is not installed.
"""
import csv
import math
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

try:
    import ase.io
    from ase.data import atomic_numbers
except ImportError:
    print("python3-ase is not installed")
    sys.exit(77)

PLANS = {
    "grid": ["--r", "0,2.5,4.5,9999", "--theta", "0:180:60", "--phi", "0,100", "--alpha", "0,214.25",
             "--beta", "0,90", "--gamma", "306"],
    "contact": ["--r", "contact + 0:1:0.5", "--random", "40"],
    "only": ["--r", "2:4:1", "--random", "50", "--contacts", "only"],
}


def frames_of(text):
    """Symbols and coordinates as the lines hold them: columns 1-2, 4-18, 20-34, 36-50;
    the molecule in column 52."""
    lines = text.splitlines()
    at = 0
    while at < len(lines):
        atoms = lines[at + 2:at + 2 + int(lines[at])]
        assert all(len(line) == 52 for line in atoms), atoms
        yield ([line[0:2].strip() for line in atoms],
               [[float(line[3:18]), float(line[19:34]), float(line[35:50])] for line in atoms],
               [int(line[51:]) for line in atoms])
        at += 2 + len(atoms)


def same(value, text):
    number = float(text)
    return value == number or (math.isnan(value) and math.isnan(number))


def check(name, folder):
    with open(folder / f"{name}.csv", newline="") as table:
        rows = list(csv.DictReader(table))
    texts = list(frames_of((folder / f"{name}.xyz").read_text()))
    frames = ase.io.read(folder / f"{name}.xyz", index=":")
    assert len(rows) > 20, f"{name}: only {len(rows)} rows"
    assert len(frames) == len(rows) == len(texts), (name, len(frames), len(rows), len(texts))
    for frame, row, (symbols, positions, molecules) in zip(frames, rows, texts):
        where = f"{name}, pose {row['index']}"
        assert frame.get_chemical_symbols() == symbols, where
        assert frame.get_positions().tolist() == positions, where
        assert frame.arrays["molecule"].tolist() == molecules == [1] * 6 + [2] * 6, where
        assert not frame.pbc.any(), where
        assert list(frame.info) == list(row), f"{where}: {list(frame.info)}"
        for key, text in row.items():
            assert same(frame.info[key], text), f"{where}: {key} {frame.info[key]} {text}"
    return len(frames)


def check_placed(dravo, pair, folder):
    """The pair of `dravo place`, its six parameters and the molecule of each atom."""
    options = ["--r", "4.5", "--theta", "60"]
    subprocess.run([dravo, "place", pair, *options, "-o", "placed.xyz"], cwd=folder, check=True)
    lines = (folder / "placed.xyz").read_text().splitlines()[2:]
    atoms = ase.io.read(folder / "placed.xyz")
    assert len(atoms) == len(lines) == 12
    assert atoms.get_positions().tolist() == [[float(x) for x in line.split()[1:4]]
                                              for line in lines]
    assert atoms.arrays["molecule"].tolist() == [1] * 6 + [2] * 6
    assert list(atoms.info) == ["r", "theta", "phi", "alpha", "beta", "gamma", "placing"]
    assert (atoms.info["r"], atoms.info["theta"]) == (4.5, 60)
    assert atoms.info["placing"] == "exact"


def check_converted(dravo, pair, qn_dravo, folder):
    """Every xyz file of a run; atomic numbers or symbols, as the run wrote them."""
    shutil.copy(pair, folder / "QN-input-GEOMETRY.xyz")
    subprocess.run([qn_dravo], cwd=folder, check=True, stdout=subprocess.DEVNULL)
    written = [*folder.glob("*QN-DRAVO.xyz"), folder / "input-GEOMETRY.xyz"]
    assert len(written) == 2, written
    for file in written:
        subprocess.run([dravo, "convert", file.name, "--split", "6", "-o", "converted.xyz",
                        "--overwrite"], cwd=folder, check=True)
        atoms = ase.io.read(folder / "converted.xyz")
        lines = [line.split() for line in file.read_text().splitlines()[2:14]]
        numbers = [int(line[0]) if line[0].isdigit() else atomic_numbers[line[0]] for line in lines]
        assert atoms.get_atomic_numbers().tolist() == numbers
        assert atoms.get_positions().tolist() == [[float(x) for x in line[1:4]] for line in lines]
        assert atoms.arrays["molecule"].tolist() == [1] * 6 + [2] * 6


def main(dravo, pair, qn_dravo):
    with tempfile.TemporaryDirectory() as name:
        for plan, options in PLANS.items():
            subprocess.run([dravo, "scan", pair, *options, "--quiet", "--output", plan], cwd=name,
                           check=True)
            print(f"{plan}: {check(plan, Path(name))} frames read back")
        check_placed(dravo, pair, Path(name))
    with tempfile.TemporaryDirectory() as name:
        check_converted(dravo, pair, qn_dravo, Path(name))


if __name__ == "__main__":
    main(*(str(Path(word).resolve()) for word in sys.argv[1:]))
