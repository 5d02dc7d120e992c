"""What one writes with ASE alone to place a pair in many poses."""

from math import cos, radians, sin

import numpy as np
from ase import Atoms


def in_its_frame(symbols, positions, frame):
    """A molecule with its centre of mass at the origin and its principal axes along x, y, z."""
    return Atoms(symbols, (positions - frame.centre_of_mass) @ frame.matrix.T)


def both(placer):
    """Molecule 1 and molecule 2 of a placer, each in its own frame."""
    return tuple(
        in_its_frame(molecule.symbols, molecule.positions, frame)
        for molecule, frame in zip(placer.pair.molecules, placer.frames)
    )


def turned_and_moved(molecule1, pose):
    """A copy of molecule 1, which stands in its frame, as a pose has it.

    ASE turns by z-x-z and clockwise, alpha, beta and gamma turn by z-y-z and clockwise too. The axis
    y is x a quarter turn on: the first angle has a quarter more, the last a quarter less.
    """
    r, theta, phi, alpha, beta, gamma = pose
    moved = molecule1.copy()
    moved.euler_rotate(alpha + 90, beta, gamma - 90, center=(0, 0, 0))
    along = sin(radians(theta))
    moved.translate(
        (
            r * along * cos(radians(phi)),
            r * along * sin(radians(phi)),
            r * cos(radians(theta)),
        )
    )
    return moved


def positions(molecule1, molecule2, poses):
    """n x atoms x 3, Angstrom. Molecule 2 stands still and is copied as numbers only."""
    found = np.empty((len(poses), len(molecule1) + len(molecule2), 3))
    found[:, len(molecule1) :] = molecule2.positions
    for place, pose in zip(found, poses):
        place[: len(molecule1)] = turned_and_moved(molecule1, pose).positions
    return found
