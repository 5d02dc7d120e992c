"""Molecule 1 of a placed pair is turned as docs/conventions.md says, and as SciPy turns it."""

from __future__ import annotations

import re
from itertools import product
from pathlib import Path
from typing import Any

import numpy as np
import pytest
from commands import command
from scipy.spatial.transform import Rotation

SOURCES = Path(__file__).resolve().parents[2]
FORMAMIDE = SOURCES / "examples/formamide-dimer/formamide.xyz"
MASSES = {"H": 1.008, "C": 12.011, "N": 14.007, "O": 15.999}
#: General, singular, next to singular, and with full turns.
ANGLES = list(product((0, 37.5, 180, 301, -30), (0, 1e-3, 60, 90, 179.999, 180), (0, 112, 270, 400)))


def placed(r: float, theta: float, phi: float, alpha: float, beta: float, gamma: float) -> Any:
    """Of molecule 1, by dravo place."""
    given = {"r": r, "theta": theta, "phi": phi, "alpha": alpha, "beta": beta, "gamma": gamma}
    options = [f"--{name}={value:.6f}" for name, value in given.items()]
    lines = command("place", FORMAMIDE, FORMAMIDE, *options).splitlines()
    return np.array([[float(word) for word in line.split()[1:4]] for line in lines[2:8]])


@pytest.fixture(scope="module")
def not_turned() -> Any:
    """Molecule 1 in the frame of molecule 2, its centre of mass at the origin."""
    return placed(0, 0, 0, 0, 0, 0)


def test_without_a_turn_the_axes_are_those_of_molecule_2(not_turned: Any) -> None:
    symbols = [line.split()[0] for line in FORMAMIDE.read_text().splitlines()[2:8]]
    mass = np.array([MASSES[symbol] for symbol in symbols])
    assert np.allclose(mass @ not_turned / mass.sum(), 0, atol=1e-4)
    second = (not_turned * mass[:, None]).T @ not_turned
    inertia = np.trace(second) * np.eye(3) - second
    assert np.allclose(inertia - np.diag(np.diag(inertia)), 0, atol=5e-3)
    assert inertia[2, 2] < inertia[1, 1] < inertia[0, 0]


@pytest.mark.parametrize("alpha, beta, gamma", ANGLES)
def test_molecule_1_is_turned_as_scipy_turns_it(
    not_turned: Any, alpha: float, beta: float, gamma: float
) -> None:
    turn = Rotation.from_euler("ZYZ", [alpha, beta, gamma], degrees=True).inv()
    found = placed(0, 0, 0, alpha, beta, gamma)
    assert np.abs(found - turn.apply(not_turned)).max() < 3e-8


@pytest.mark.parametrize("theta, phi", product((0, 40, 90, 180), (0, 75, 260, -30)))
def test_its_centre_is_where_the_page_says(not_turned: Any, theta: float, phi: float) -> None:
    t, p = np.radians([theta, phi])
    centre = 5 * np.array([np.sin(t) * np.cos(p), np.sin(t) * np.sin(p), np.cos(t)])
    turn = Rotation.from_euler("ZYZ", [20, 70, 130], degrees=True).inv()
    found = placed(5, theta, phi, 20, 70, 130)
    assert np.abs(found - turn.apply(not_turned) - centre).max() < 3e-8


def matrix_of_the_page(names: dict[str, float]) -> Any:
    """The product that the page writes out, such as `ca cb cg - sa sg`, with numbers."""
    text = (SOURCES / "docs/conventions.md").read_text()
    block = text.split("and their product is\n\n```\n")[1].split("```")[0]
    rows = []
    for line in block.splitlines():
        cells = re.split(r"  +", line.strip(" |"))
        rows.append([eval(re.sub(r"(?<=\w) (?=\w)", "*", cell), {}, names) for cell in cells])
    return np.array(rows)


@pytest.mark.parametrize("alpha, beta, gamma", ANGLES)
def test_the_matrix_of_the_page_is_that_of_scipy(alpha: float, beta: float, gamma: float) -> None:
    names = {}
    for letter, angle in zip("abg", np.radians([alpha, beta, gamma])):
        names |= {"c" + letter: np.cos(angle), "s" + letter: np.sin(angle)}
    turn = Rotation.from_euler("ZYZ", [alpha, beta, gamma], degrees=True).inv()
    assert np.allclose(matrix_of_the_page(names), turn.as_matrix(), atol=1e-14)
