"""The program dravo, what its tables hold, and the pairs that it is given in the examples."""

from __future__ import annotations

import csv
import os
import subprocess
from dataclasses import dataclass
from pathlib import Path
from typing import Any, Iterable

import numpy as np

import dravo

PROGRAM = os.environ["DRAVO_PROGRAM"]
EXAMPLES = Path(os.environ["DRAVO_EXAMPLES"])


def command(*words: Any) -> str:
    """What a command of dravo prints."""
    done = subprocess.run([PROGRAM, *map(str, words)], capture_output=True, text=True, check=False)
    assert done.returncode == 0, f"dravo {' '.join(map(str, words))}: {done.stderr}"
    return done.stdout


@dataclass(frozen=True)
class Example:
    """A pair in the folder of examples."""

    files: tuple[str, ...]
    split: int | None = None
    #: qn-dravo can place it
    strict: bool = False

    def __str__(self) -> str:
        return "+".join(file.replace("/QN-input-GEOMETRY.xyz", "") for file in self.files)

    @property
    def apart(self) -> bool:
        return len(self.files) == 2

    def read(self) -> dravo.Pair:
        return dravo.read(*(EXAMPLES / file for file in self.files), split=self.split)

    def words(self) -> list[str]:
        """The same for a command."""
        split = [] if self.split is None else ["--split", str(self.split)]
        return [*(str(EXAMPLES / file) for file in self.files), *split]

    #: a distance, where the pair does not have one
    @property
    def distance(self) -> dict[str, float]:
        return {"r": 4.5} if self.apart else {}


def _input(name: str, strict: bool = True) -> Example:
    return Example((f"{name}/QN-input-GEOMETRY.xyz",), None, strict)


PAIRS = [
    _input("acetamide-acrylonitrile"),
    _input("adenine-thymine-stack"),
    _input("dimethyl-sulfoxide-ethanol"),
    _input("formamide-dimer"),
    _input("uracil-dimer-stack", strict=False),
    _input("water-dimer", strict=False),
    Example(("benzene-dimer/benzene-dimer.xyz",), 12),
    Example(("formamide-dimer/formamide-dimer.xyz",), 6, strict=True),
    Example(("water-dimer/water-dimer.xyz",), 3),
    Example(("watson-crick-pair/watson-crick-pair.xyz",), 15, strict=True),
    Example(("argon-hcn/argon.xyz", "argon-hcn/hcn.xyz")),
    Example(("benzene-dimer/benzene.xyz", "benzene-dimer/benzene.xyz")),
    Example(("formamide-dimer/formamide.xyz", "formamide-dimer/formamide.xyz"), strict=True),
    Example(("water-dimer/water.xyz", "water-dimer/water.xyz")),
]
STANDING = [pair for pair in PAIRS if not pair.apart]
FORMAMIDES = next(pair for pair in PAIRS if pair.split == 6)
ARGON_HCN = next(pair for pair in PAIRS if "argon" in str(pair))


def options(parameters: dict[str, Any]) -> list[str]:
    """r=4 as --r=4, keep_frame=True as --keep-frame."""
    words = []
    for name, value in parameters.items():
        option = "--" + name.replace("_", "-")
        words.append(option if value is True else f"{option}={value}")
    return words


def rows_of(file: str | Path) -> list[dict[str, str]]:
    """Of a table."""
    with open(file, newline="") as stream:
        return list(csv.DictReader(stream))


#: of columns that have so many; in others is every digit
DECIMALS = {
    **{f"{angle}_applied": 6 for angle in dravo.Pose._fields[1:]},
    **{"r_applied": 8, "shortest": 8, "clearance": 6, "e_int_kcal_mol": 6},
}


def fixed(value: float, decimals: int) -> str:
    """As tables have it. Python rounds the binary value correctly, as they do."""
    return f"{value:.{decimals}f}"


def cell(value: Any, text: str, decimals: int | None) -> Any:
    """A number as the table has it; where that is the shortest text that reads back, `text` when
    it does."""
    if isinstance(value, (str, np.str_)):
        return str(value)
    if decimals is None:
        return text if text and float(text) == value else repr(value)
    return fixed(float(value), decimals)


def assert_same_table(table: np.ndarray[Any, Any], file: str | Path) -> None:
    """A structured array has every column and every digit of a table, and no other column."""
    rows = rows_of(file)
    assert len(table) == len(rows)
    assert rows, "a table without rows shows nothing"
    assert list(table.dtype.names or ()) == list(rows[0])
    for found, row in zip(table, rows):
        shown = {}
        for name, text in row.items():
            value = found[name]
            nothing = (
                (name.startswith("clearance") and found["clearance_atom1"] == 0)
                or (name == "e_int_kcal_mol" and found["status"] != "ok")
            )  # fmt: skip
            shown[name] = "" if nothing else cell(value, text, DECIMALS.get(name))
        assert shown == row


def atom_rows(positions: Iterable[Iterable[float]], exact: bool = True) -> list[list[str]]:
    """Coordinates as files have them; only qn-dravo writes a zero with a sign."""
    rows = [[fixed(x, 8) for x in p] for p in positions]
    return [[x.replace("-0.00000000", "0.00000000") if exact else x for x in p] for p in rows]


def frames_of(text: str) -> list[tuple[str, list[str], list[list[str]]]]:
    """Of an xyz file: comment, symbols and coordinates of each frame."""
    lines, frames = text.splitlines(), []
    while lines:
        count = int(lines[0])
        atoms = [line.split() for line in lines[2 : 2 + count]]
        frames.append((lines[1], [atom[0] for atom in atoms], [atom[1:4] for atom in atoms]))
        lines = lines[2 + count :]
    return frames
