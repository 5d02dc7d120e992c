"""The molecules of docs/gallery.md are the published ones."""

from __future__ import annotations

from collections import Counter
from pathlib import Path

import numpy as np
import pytest

import dravo

SOURCES = Path(__file__).resolve().parents[2]
GALLERY = SOURCES / "examples/gallery"
G2 = (SOURCES / "tests/data/g2.xyz").read_text().split("\n")


@pytest.mark.parametrize(
    "file, name", [("ammonia", "NH3"), ("carbon-dioxide", "CO2"), ("methane", "CH4")]
)
def test_of_g2_has_the_published_atoms(file: str, name: str) -> None:
    lines = (GALLERY / f"{file}.xyz").read_text().splitlines()
    [start] = [k for k, line in enumerate(G2) if line.split() == [f"name={name}"]]
    assert lines[0] == G2[start - 1]
    assert lines[2:] == G2[start + 1 : start + 1 + int(lines[0])]


def test_uracil_is_that_of_the_stack() -> None:
    lines = (GALLERY / "uracil.xyz").read_text().splitlines()
    stack = (SOURCES / "examples/uracil-dimer-stack/QN-input-GEOMETRY.xyz").read_text()
    assert lines[2:] == stack.splitlines()[1:13]


def test_c60_has_its_two_bonds() -> None:
    """Each carbon has two neighbours in its pentagon and one across the bond of two hexagons."""
    atoms = dravo.read_molecule(GALLERY / "fullerene.xyz")
    apart = np.linalg.norm(atoms.positions[:, None] - atoms.positions[None], axis=2)
    assert atoms.formula == "C60"
    bonds = [Counter(row[(row > 0.1) & (row < 2.0)].round(5)) for row in apart]
    assert bonds == [Counter({1.458: 2, 1.401: 1})] * 60
    assert np.allclose(apart.max(axis=1), 2 * np.linalg.norm(atoms.positions, axis=1), atol=1e-5)
