"""What the package computes. Arrays are in C order; n poses, N atoms, n1 of molecule 1."""

from typing import Any, Sequence

import numpy as np
import numpy.typing as npt

_Floats = npt.NDArray[np.float64]
_Split = int | str | None
_Six = Sequence[float]

__version__: str
#: by the numbers that columns of scans have
energy_statuses: tuple[str, ...]

class Molecule:
    def __init__(self, symbols: list[str], positions: _Floats) -> None:
        """positions: N x 3, Angstrom."""
    def __len__(self) -> int: ...
    @property
    def symbols(self) -> list[str]: ...
    @property
    def positions(self) -> _Floats:
        """N x 3, Angstrom."""
    @property
    def formula(self) -> str: ...

class Pair:
    def __init__(self, molecule1: Molecule, molecule2: Molecule) -> None: ...
    def __len__(self) -> int: ...
    @property
    def n1(self) -> int: ...
    @property
    def symbols(self) -> list[str]: ...
    @property
    def positions(self) -> _Floats:
        """N x 3, Angstrom."""
    def contacts(self, criterion: str) -> list[tuple[int, int, float]]: ...
    def closest(self, count: int) -> list[tuple[int, int, float, float]]: ...
    def hydrogen_bonds(self) -> list[tuple[int, int, int, float, float]]: ...
    def survey(self, criterion: str) -> tuple[float, int, float, int, int]: ...

def read_pair(
    file: str, second_file: str, split: _Split, frame: int, unit: str, check: bool
) -> tuple[Pair, list[float] | None, list[str]]: ...
def divided(
    atoms: Molecule, split: _Split, check: bool
) -> tuple[Pair, list[float] | None, list[str]]: ...
def read_molecule(file: str, frame: int, unit: str) -> Molecule: ...

class Placer:
    def __init__(self, pair: Pair, placing: str, like: Pair | None, criterion: str) -> None: ...
    def __len__(self) -> int: ...
    @property
    def n1(self) -> int: ...
    @property
    def exact(self) -> bool: ...
    @property
    def missed(self) -> float: ...
    @property
    def frames(self) -> list[dict[str, Any]]: ...
    @property
    def remarks(self) -> list[str]: ...
    @property
    def idle(self) -> list[str]: ...
    def place(self, pose: _Six) -> tuple[_Floats, list[float], float, int, float, int, int]:
        """Positions (N x 3), parameters applied, and the survey."""
    def in_kept_frame(self, pair: Pair, pose: _Six) -> _Floats:
        """N x 3, Angstrom."""
    def positions(self, poses: _Floats, threads: int) -> _Floats:
        """n x 6 to n x N x 3, Angstrom."""
    def touching_distance(self, pose: _Six) -> float: ...

class Poses:
    def __init__(self, rows: _Floats) -> None:
        """n x 6."""
    @staticmethod
    def planned(
        words: dict[str, list[str]], stated: Sequence[float | None] | None, here: _Six | None
    ) -> Poses: ...
    def __len__(self) -> int: ...
    @property
    def above_contact(self) -> bool: ...
    def rows(self, first: int, count: int) -> _Floats:
        """count x 6."""

def require_usable_pose(pose: _Six) -> None: ...
def number_of(name: str, text: str) -> tuple[float, bool]: ...

class EnergyModel:
    def __init__(
        self,
        pair: Pair,
        method: str,
        charges: tuple[int, int],
        unpaired: tuple[int, int],
        run: str,
        read: str,
        read_unit: str,
    ) -> None: ...
    @property
    def engine(self) -> str: ...
    @property
    def references(self) -> list[float]:
        """Hartree."""
    def compute(
        self, positions: _Floats, centre: Sequence[float] | None
    ) -> tuple[float, str, tuple[_Floats, _Floats] | None]:
        """kcal/mol, status, and force (3) and torque (3) about the centre."""

class Scan:
    def __init__(self, *args: Any, **kwargs: Any) -> None: ...
    def next(self) -> dict[str, Any] | None: ...
    def close(self) -> None: ...

def scan(
    placer: Placer,
    poses: Poses,
    contacts: str,
    positions: bool,
    clearance: bool,
    unique: bool,
    model: EnergyModel | None,
    keep_below: float | None,
    threads: int,
    batch: int,
) -> Scan: ...
def identify(pair: Pair, frames: str, like: Pair | None) -> dict[str, Any]: ...
def frame(molecule: Molecule, role: int, frames: str) -> dict[str, Any]: ...
def identify_arrays(
    atoms: Pair,
    positions: _Floats,
    frames: str,
    like: Pair | None,
    criterion: str,
    threads: int,
    skip_bad: bool,
) -> dict[str, Any]:
    """positions: n x N x 3."""

def identify_file(
    file: str,
    split: _Split,
    unit: str,
    check: bool,
    selection: str,
    frames: str,
    like: Pair | None,
    criterion: str,
    threads: int,
    skip_bad: bool,
) -> dict[str, Any]: ...
def dock(
    pair: Pair,
    search: str,
    score: str,
    charges: tuple[int, int],
    unpaired: tuple[int, int],
    seed: int,
    refined: int,
    starts: int | None,
    seconds: float | None,
    threads: int,
) -> dict[str, Any]: ...
def draw_pair(placer: Placer, pose: _Six, format: str, options: dict[str, Any]) -> bytes: ...
def draw_molecule(molecule: Molecule, format: str, options: dict[str, Any]) -> bytes: ...
def description(pair: Pair, pose: _Six) -> str: ...
def view_pair(placer: Placer, pose: _Six, options: dict[str, Any]) -> str: ...
def view_poses(
    placer: Placer, columns: list[tuple[str, list[float]]], colour: str, options: dict[str, Any]
) -> str: ...
def view_results(name: str, options: dict[str, Any]) -> str: ...
