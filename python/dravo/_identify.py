"""The six parameters of pairs that exist, and the frames behind them."""

from __future__ import annotations

import math
import os
from dataclasses import dataclass
from typing import Any, Iterable, Sequence

import numpy as np
import numpy.typing as npt

from . import _core
from ._arrays import SHORT_CONTACT, Floats, criterion, finite, integer
from ._errors import InputError
from ._molecules import Pair, Pose, Split, _split, file_name, reference
from ._poses import PARAMETERS


@dataclass(frozen=True, eq=False)
class Axis:
    """A principal axis."""

    #: z, y, x of molecule 1; Y, X, Z of molecule 2
    letter: str
    #: g cm^2
    moment: float
    #: amu Angstrom^2
    moment_amu: float
    #: rotational constant, GHz (CODATA 2018); inf for a moment of zero
    constant: float
    #: unit vector in the coordinates of the molecule as given (3)
    direction: Floats
    #: what gave it its direction, in words
    fixed_by: str


@dataclass(frozen=True, eq=False)
class Frame:
    """The right-handed frame of a molecule's principal axes."""

    #: "strict", "extended" or "carried"
    kind: str
    #: "atom", "linear" or "general"
    shape: str
    #: "asymmetric top", for example
    rotor: str
    #: as given, Angstrom (3)
    centre_of_mass: Floats
    #: I_A, I_B, I_C, ascending
    axes: tuple[Axis, Axis, Axis]
    #: of the molecule onto itself within 0.002 Angstrom, the identity first, as matrices that turn
    #: the coordinates as given about the centre of mass (n x 3 x 3)
    rotations: Floats
    #: the same in words: "C2, exact to 0.0000 Angstrom"
    symmetry: str
    #: what makes the frame uncertain, a sentence each
    warnings: tuple[str, ...]
    #: of a carried frame: by mass, from the reference, Angstrom
    rmsd: float

    @classmethod
    def _of(cls, found: dict[str, Any]) -> Frame:
        one, two, three = (Axis(**axis) for axis in found.pop("axes"))
        warnings = tuple(found.pop("warnings"))
        return cls(**found, axes=(one, two, three), warnings=warnings)

    @property
    def matrix(self) -> Floats:
        """Rows are the axes x, y, z of molecule 1 or X, Y, Z of molecule 2: it turns coordinates as
        given, less the centre of mass, into those of the frame (3 x 3)."""
        ordered = sorted(self.axes, key=lambda axis: axis.letter.lower())
        return np.array([axis.direction for axis in ordered])

    def __repr__(self) -> str:
        return f"{self.rotor}, {self.kind} frame\n" + "\n".join(
            f"  {axis.letter}  {name}  {axis.moment_amu:12.5f} amu Angstrom^2  {axis.fixed_by}"
            for axis, name in zip(self.axes, ("I_A", "I_B", "I_C"))
        )


@dataclass(frozen=True, eq=False)
class Identification:
    """The parameters of a pair as it stands, from `Pair.identify`."""

    #: the preferred parameters: `Placer.place` makes the pair with them, moved as a whole
    pose: Pose
    #: of molecule 1 and molecule 2
    frames: tuple[Frame, Frame]
    #: all parameters that make this pair, `pose` first (n x 6)
    equivalent: Floats
    #: what the parameters do not tell, or tell badly, a sentence each
    remarks: tuple[str, ...]
    #: whether ``qn-dravo`` can build the pair
    for_qn_dravo: bool

    @classmethod
    def _of(cls, found: dict[str, Any]) -> Identification:
        one, two = found["frames"]
        return cls(
            Pose(*found["pose"]),
            (Frame._of(one), Frame._of(two)),
            found["equivalent"],
            tuple(found["remarks"]),
            found["for_qn_dravo"],
        )

    @property
    def rotations(self) -> tuple[Floats, Floats]:
        """Those of molecule 1 and of molecule 2 onto themselves: see `Frame.rotations`."""
        return self.frames[0].rotations, self.frames[1].rotations

    def __repr__(self) -> str:
        p = self.pose
        lines = [
            f"r {p.r:.8f} Angstrom, theta {p.theta:.8f}, phi {p.phi:.8f}, "
            f"alpha {p.alpha:.8f}, beta {p.beta:.8f}, gamma {p.gamma:.8f} degrees"
        ]
        for number, frame in enumerate(self.frames, 1):
            lines.append(f"molecule {number}: {frame!r}")
        if len(self.equivalent) > 1:
            lines.append(f"{len(self.equivalent)} sets of parameters make this pair")
        lines.extend(f"note: {remark}" for remark in self.remarks)
        return "\n".join(lines)


#: of the table of `identify_many`
_TABLE = [("frame", np.int64), *((name, np.float64) for name in PARAMETERS)] + [
    ("shortest", np.float64),
    ("contacts", np.int64),
    ("remark", object),
]


def identify_many(
    frames: Any,
    *,
    symbols: Sequence[str | int] | None = None,
    split: Split = None,
    frame: str = "all",
    unit: str = "angstrom",
    check: bool = True,
    rule: str = "extended",
    like: Pair | None = None,
    contact_distance: float | str = SHORT_CONTACT,
    unwrap: bool = False,
    skip_bad: bool = False,
    threads: int = 0,
) -> npt.NDArray[np.void]:
    """The parameters of the pair in each frame of a trajectory, as a structured array.

    Parameters
    ----------
    frames : the name of an xyz file; positions, n x atoms x 3, with `symbols`; or an iterable of
        ``ase.Atoms`` or `Pair` of the same atoms
    split : atoms of molecule 1, or ``"auto"``; not needed where the frames tell it
    frame, unit, check : of a file: which frames (``"1:100:2"``, from 1), in which unit
    rule, like : as `frames` and `like` of `Pair.identify`
    contact_distance : what a short contact is, Angstrom, or ``"vdw*0.8"``
    unwrap : phi, alpha and gamma pass 360 and 0 from frame to frame
    skip_bad : leave frames out that cannot be read or identified
    threads : 0 for as many as the machine has cores

    The columns are those of ``dravo identify --frame all``: frame (from 1), r to gamma (Angstrom
    and degrees), shortest (Angstrom), contacts, remark. Raises `InputError`, `NoUniqueFrame` by the
    strict rule, and `FileError`.

    >>> table = identify_many("trajectory.xyz", split=6)
    >>> table["frame"].tolist()
    [1, 2, 3]
    >>> table["r"].round(1).tolist()
    [3.0, 3.5, 4.0]
    """
    told = criterion(contact_distance)
    many = integer(threads, "threads", 0, 1024)
    carried = reference(like)
    if isinstance(frames, (str, os.PathLike)):
        columns = _core.identify_file(
            file_name(frames), _split(split), unit, bool(check), frame, rule, carried, told, many,
            bool(skip_bad),
        )  # fmt: skip
    else:
        pair, positions = _trajectory(frames, symbols, split)
        columns = _core.identify_arrays(
            pair._core, positions, rule, carried, told, many, bool(skip_bad)
        )
    table = np.empty(len(columns["frame"]), _TABLE)
    for name in ("frame", "shortest", "contacts", "remark"):
        table[name] = columns[name]
    for name, column in zip(PARAMETERS, columns["poses"].T):
        turns = unwrap and name in ("phi", "alpha", "gamma")
        table[name] = _unwrapped(column.tolist()) if turns else column
    return table


def _unwrapped(degrees: list[float]) -> list[float]:
    """Each angle within half a turn of the one before, as the command tells them."""
    before = None
    for k, angle in enumerate(degrees):
        if angle >= 360 - 0.5e-6:  # which six decimals would make 360
            angle = 0.0
        if before is not None:
            turns = (before - angle) / 360
            angle += 360 * math.copysign(math.floor(abs(turns) + 0.5), turns)
        before = degrees[k] = angle
    return degrees


def _trajectory(
    frames: Any, symbols: Sequence[str | int] | None, split: Split
) -> tuple[Pair, Floats]:
    """A pair of the atoms, and n x atoms x 3."""
    if isinstance(frames, np.ndarray) and frames.dtype != object:
        if symbols is None or split is None:
            raise InputError("identify_many: positions need symbols and split")
        positions = finite(frames, (None, len(symbols), 3), "positions")
        if split == "auto":
            raise InputError("split: of positions in an array it is a number of atoms")
        # Where the atoms stand does not matter here.
        places = positions[0] if len(positions) else np.zeros((len(symbols), 3))
        return Pair(symbols, places, split, check=False), positions
    if symbols is not None:
        raise InputError("identify_many: symbols go with positions in an array")
    return _stacked(frames, split)


def _stacked(frames: Iterable[Any], split: Split) -> tuple[Pair, Floats]:
    """Of a sequence of pairs or of ase.Atoms, which have the same atoms."""
    some = list(frames)
    if not some:
        raise InputError("identify_many: there is no frame")
    first = some[0] if isinstance(some[0], Pair) else Pair.from_ase(some[0], split, check=False)
    # Atoms that are divided by bonds may come in another order.
    whole = isinstance(some[0], Pair) or split != "auto"
    pairs = some if whole else [Pair.from_ase(atoms, split, check=False) for atoms in some]
    wanted = first.symbols
    for number, atoms in enumerate(pairs, 1):
        found = atoms.symbols if isinstance(atoms, Pair) else atoms.get_chemical_symbols()
        if list(found) != wanted or (isinstance(atoms, Pair) and atoms.n1 != first.n1):
            raise InputError(f"frame {number}: its atoms are not those of frame 1")
    positions = np.array([np.asarray(atoms.positions, dtype=np.float64) for atoms in pairs])
    return first, finite(positions, (None, len(wanted), 3), "positions")
