"""Molecules, pairs of them, and the files that hold them."""

from __future__ import annotations

import os
from typing import TYPE_CHECKING, Any, NamedTuple, Sequence, Union

import numpy as np

from . import _core
from ._arrays import SHORT_CONTACT, Floats, Integers, Numbers, criterion, finite, integer
from ._errors import FileError, InputError

if TYPE_CHECKING:
    from ._energies import PairEnergy
    from ._identify import Frame, Identification
    from ._pictures import Page, Picture

Split = Union[int, str, None]
FileName = Union[str, "os.PathLike[str]"]


class Pose(NamedTuple):
    """Where molecule 1 stands around molecule 2, and how it is turned.

    Molecule 2's centre of mass is the origin and its principal axes are X, Y, Z. Molecule 1's
    centre of mass stands at (r, theta, phi); alpha, beta and gamma are Euler angles (z-y-z).
    r is in Angstrom (0 to 9999.9), angles are in degrees: theta and beta from 0 to 180, the others
    with or without full turns.

    >>> Pose(r=4.0, theta=90)
    Pose(r=4.0, theta=90, phi=0.0, alpha=0.0, beta=0.0, gamma=0.0)
    """

    r: float  #: distance of the centres of mass, Angstrom
    theta: float = 0.0  #: angle between Z and the line to molecule 1, degrees
    phi: float = 0.0  #: angle from X to the projection of that line on XY
    alpha: float = 0.0  #: first Euler angle
    beta: float = 0.0  #: second Euler angle, between z and Z
    gamma: float = 0.0  #: third Euler angle


class Contact(NamedTuple):
    """Two atoms of different molecules, by their places in `Pair.symbols`, from 0."""

    atom1: int  #: of molecule 1
    atom2: int  #: of molecule 2
    distance: float  #: Angstrom


class ClosePair(NamedTuple):
    """The same, with the ratio of the distance to the sum of the van der Waals radii (nan where a
    radius is not known)."""

    atom1: int  #: of molecule 1
    atom2: int  #: of molecule 2
    distance: float  #: Angstrom
    ratio: float  #: of the distance to the sum of the radii


class HydrogenBond(NamedTuple):
    """D-H...A between the molecules, atoms by their places in `Pair.symbols`, from 0."""

    donor: int  #: D
    hydrogen: int  #: H, of the same molecule
    acceptor: int  #: A, of the other one
    distance: float  #: H...A, Angstrom
    angle: float  #: D-H...A, degrees


class Survey(NamedTuple):
    """How close two molecules come."""

    shortest: float  #: intermolecular distance, Angstrom
    contacts: int  #: pairs of atoms in short contact
    #: smallest ratio of a distance to the sum of the van der Waals radii
    clearance: float
    #: the atoms of that, by their places in `Pair.symbols`, from 0; -1 without any
    clearance_atoms: tuple[int, int]

    @classmethod
    def _of(
        cls, shortest: float, contacts: int, clearance: float, atom1: int, atom2: int
    ) -> Survey:
        return cls(shortest, contacts, clearance, (atom1, atom2))


def _symbols(symbols: Any) -> list[str]:
    if isinstance(symbols, str):
        raise InputError(
            f'symbols: expected one for each atom such as ["O", "H", "H"], found {symbols!r}'
        )
    return [str(symbol) for symbol in symbols]


class Molecule:
    """One or more atoms, each of an element H to U.

    Parameters: `symbols`, one for each atom, in any case, or atomic numbers; `positions`, n x 3,
    Angstrom. Raises `InputError`, which names the atom.

    >>> water = Molecule(["O", "H", "H"], [[0, 0, 0.117], [0, 0.757, -0.469], [0, -0.757, -0.469]])
    >>> water
    <dravo.Molecule H2O, 3 atoms>
    """

    __slots__ = ("_core",)

    def __init__(self, symbols: Sequence[str | int], positions: Numbers) -> None:
        points = finite(positions, (None, 3), "positions")
        self._core = _core.Molecule(_symbols(symbols), points)

    @classmethod
    def _of(cls, core: _core.Molecule) -> Molecule:
        molecule = cls.__new__(cls)
        molecule._core = core
        return molecule

    @classmethod
    def from_ase(cls, atoms: Any) -> Molecule:
        """The atoms of an ``ase.Atoms``."""
        return cls(atoms.get_chemical_symbols(), atoms.get_positions())

    def to_ase(self) -> Any:
        """An ``ase.Atoms`` of the same atoms. Raises ImportError without ASE."""
        from ase import Atoms

        return Atoms(self.symbols, self.positions)

    def __len__(self) -> int:
        return len(self._core)

    @property
    def symbols(self) -> list[str]:
        """The element of each atom."""
        return self._core.symbols

    @property
    def positions(self) -> Floats:
        """n x 3, Angstrom. A copy."""
        return self._core.positions

    @property
    def formula(self) -> str:
        """In Hill's order: ``"CH3NO"``."""
        return self._core.formula

    def frame(self, role: int = 1, frames: str = "extended") -> Frame:
        """The principal axes, moments and rotational constants, and what fixed the directions.

        `role` is the place of the molecule in a pair, 1 or 2: where the heaviest element gives all
        three axes a direction, they may differ. `frames` is ``"extended"`` (any molecule has a
        frame) or ``"strict"`` (that of ``qn-dravo``). Raises `NoUniqueFrame` by the strict rule.
        """
        from ._identify import Frame

        return Frame._of(_core.frame(self._core, integer(role, "role", 1, 2), frames))

    def draw(self, file: FileName | None = None, **look: Any) -> Picture:
        """Draws the molecule with its frame: see `dravo.draw`."""
        from ._pictures import draw

        return draw(self, file, **look)

    def __repr__(self) -> str:
        return f"<dravo.Molecule {self.formula}, {_atoms(len(self))}>"


class Pair:
    """Two molecules as somebody gave them, molecule 1 first.

    ``Pair(molecule1, molecule2)``: they do not stand in one space. ``Pair(symbols, positions,
    split=6)``: `positions` are n x 3, Angstrom; `split` is the number of atoms of molecule 1, or
    ``"auto"``: the molecules are what is bonded. `check` refuses bonds across the split and atoms
    closer than 0.5 Angstrom. Raises `InputError`.

    >>> water = Molecule(["O", "H", "H"], [[0, 0, 0.117], [0, 0.757, -0.469], [0, -0.757, -0.469]])
    >>> Pair(water, water)
    <dravo.Pair H2O (3 atoms) and H2O (3 atoms)>
    """

    __slots__ = ("_apart", "_core", "_here", "_stated", "parameters", "remarks", "title")

    #: what a QN-input-GEOMETRY.xyz states; None for other files
    parameters: Pose | None
    #: what the reading noticed, a sentence each
    remarks: list[str]
    #: the name of the file without its folder, for pictures
    title: str

    def __init__(
        self,
        symbols: Sequence[str | int] | Molecule,
        positions: Numbers | Molecule | None = None,
        split: Split = None,
        *,
        check: bool = True,
    ) -> None:
        if isinstance(symbols, Molecule) and isinstance(positions, Molecule):
            if split is not None:
                raise InputError("split does not go with two molecules")
            self._set(_core.Pair(symbols._core, positions._core), None, [], apart=True)
            return
        if isinstance(symbols, Molecule) or isinstance(positions, Molecule) or positions is None:
            raise InputError("a pair is of two molecules, or of symbols, positions and split")
        atoms = Molecule(symbols, positions)
        self._set(*_core.divided(atoms._core, _split(split), bool(check)), apart=False)

    def _set(
        self,
        core: _core.Pair,
        parameters: Sequence[float] | None,
        remarks: list[str],
        *,
        apart: bool,
        title: str = "",
    ) -> None:
        self._core = core
        self._apart = apart
        self._here: Pose | None = None
        self._stated: list[float | None] | None = None
        self.parameters = None if parameters is None else Pose(*parameters)
        self.remarks = remarks
        self.title = title

    @classmethod
    def _of(cls, *read: Any, apart: bool, title: str = "") -> Pair:
        pair = cls.__new__(cls)
        pair._set(*read, apart=apart, title=title)
        return pair

    @classmethod
    def from_ase(cls, atoms: Any, split: Split = None, *, check: bool = True) -> Pair:
        """The atoms of an ``ase.Atoms``. Without `split` an array ``"molecule"`` of 1 and 2 tells,
        as files of dravo have it."""
        if split is None and "molecule" in atoms.arrays:
            molecule = np.asarray(atoms.arrays["molecule"])
            split = int(np.count_nonzero(molecule == 1))
            if not np.array_equal(molecule, np.repeat([1, 2], [split, len(molecule) - split])):
                raise InputError('the array "molecule" has not 1 for the first atoms and 2 behind')
        return cls(atoms.get_chemical_symbols(), atoms.get_positions(), split, check=check)

    def to_ase(self) -> Any:
        """An ``ase.Atoms``, with the array ``"molecule"`` (1 or 2). Raises ImportError without ASE,
        and `InputError` for two molecules that do not stand in one space."""
        self._in_one_space()
        return self._to_ase()

    def _to_ase(self) -> Any:
        from ase import Atoms

        atoms = Atoms(self.symbols, self.positions)
        atoms.set_array("molecule", self._molecule_of_atoms())
        return atoms

    def _in_one_space(self) -> _core.Pair:
        """For what depends on how the molecules stand to each other."""
        if self._apart:
            raise InputError(
                "two molecules do not say how they stand; place them first: "
                "Placer(pair).placed_pair(r=4.0)"
            )
        return self._core

    def _molecule_of_atoms(self) -> Integers:
        return np.repeat(np.array([1, 2]), [self.n1, len(self) - self.n1])

    def __len__(self) -> int:
        return len(self._core)

    @property
    def n1(self) -> int:
        """Atoms of molecule 1, the first ones."""
        return self._core.n1

    @property
    def symbols(self) -> list[str]:
        """The element of each atom."""
        return self._core.symbols

    @property
    def positions(self) -> Floats:
        """n x 3, Angstrom. A copy."""
        return self._core.positions

    @property
    def molecules(self) -> tuple[Molecule, Molecule]:
        """Molecule 1 and molecule 2."""
        symbols, positions, n1 = self.symbols, self.positions, self.n1
        return Molecule(symbols[:n1], positions[:n1]), Molecule(symbols[n1:], positions[n1:])

    def identify(self, frames: str = "extended", like: Pair | None = None) -> Identification:
        """The six parameters of the pair as it stands, and the frames behind them.

        `frames`: ``"extended"`` or ``"strict"``, which refuses what ``qn-dravo`` refuses. `like`:
        the same pair, whose axes are carried along. Raises `NoUniqueFrame` by the strict rule, and
        `InputError` for a reference of other molecules.
        """
        from ._identify import Identification

        return Identification._of(
            _core.identify(self._in_one_space(), frames, reference(like))
        )

    def contacts(self, contact_distance: float | str = SHORT_CONTACT) -> list[Contact]:
        """Atoms of different molecules up to `contact_distance` apart: Angstrom, ``"vdw*0.8"`` or
        ``"vdw"``, multiples of the sum of the van der Waals radii."""
        found = self._in_one_space().contacts(criterion(contact_distance))
        return [Contact(*contact) for contact in found]

    def closest(self, count: int = 5) -> list[ClosePair]:
        """The closest intermolecular pairs of atoms."""
        found = self._in_one_space().closest(integer(count, "count"))
        return [ClosePair(*pair) for pair in found]

    def hydrogen_bonds(self) -> list[HydrogenBond]:
        """Between the molecules: H...A up to 2.5 Angstrom, D-H...A from 120 degrees on; D and A are
        N, O or F."""
        return [HydrogenBond(*found) for found in self._in_one_space().hydrogen_bonds()]

    def survey(self, contact_distance: float | str = SHORT_CONTACT) -> Survey:
        """Shortest distance, number of short contacts, clearance."""
        return Survey._of(*self._in_one_space().survey(criterion(contact_distance)))

    def energy(self, method: str = "gfnff", **options: Any) -> PairEnergy:
        """The interaction energy of the pair as it stands: see `dravo.energy`."""
        from ._energies import energy

        return energy(self, method, **options)

    def draw(self, file: FileName | None = None, **look: Any) -> Picture:
        """Draws the pair in the frame of molecule 2: see `dravo.draw`."""
        from ._pictures import draw

        return draw(self, file, **look)

    def view(self, **look: Any) -> Page:
        """A page that turns the pair and moves molecule 1, in a notebook or a browser: see
        `dravo.view`."""
        from ._pictures import view

        return view(self, **look)

    def write(self, file: FileName, *, overwrite: bool = False) -> None:
        """Writes extended xyz with a column for the molecule of each atom, as ``dravo convert``.

        Raises `FileError` for a file that is there, unless `overwrite`.
        """
        self._in_one_space()
        lines = [str(len(self)), "Properties=species:S:1:pos:R:3:molecule:I:1"]
        for symbol, p, molecule in zip(self.symbols, self.positions, self._molecule_of_atoms()):
            p = np.where(np.abs(p) < 5e-9, 0.0, p)  # which eight decimals would show as -0.00000000
            lines.append(f"{symbol:<2} {p[0]:15.8f} {p[1]:15.8f} {p[2]:15.8f} {molecule}")
        write_whole(file, "\n".join(lines) + "\n", overwrite)

    def _own_pose(self) -> Pose | None:
        """Of the pair as it stands; None where its molecules do not stand in one space."""
        if self._here is None and not self._apart:
            self._here = self.identify().pose
        return self._here

    def _defaults(self) -> list[float | None] | None:
        """What stands in for parameters that nobody gives, where it is not the pair's own pose."""
        if self._stated is None and self._apart:
            linear = self.molecules[1].frame(role=2).shape == "linear"
            self._stated = [None, 90.0 if linear else 0.0, 0.0, 0.0, 0.0, 0.0]
        elif self._stated is None and self.parameters is not None:
            self._stated = list(self.parameters)
        return self._stated

    def __repr__(self) -> str:
        one, two = (f"{molecule.formula} ({_atoms(len(molecule))})" for molecule in self.molecules)
        return f"<dravo.Pair {one} and {two}>"


def _atoms(count: int) -> str:
    return f"{count} atom" if count == 1 else f"{count} atoms"


def file_name(file: FileName) -> str:
    """As text. Raises `InputError` where it has bytes that are none."""
    name = os.fsdecode(file)
    try:
        name.encode()
    except UnicodeEncodeError:
        raise InputError(f"{name!r}: expected the name of a file in UTF-8") from None
    return name


def reference(like: Any) -> _core.Pair | None:
    """The pair whose axes are carried along. Raises `InputError` for anything else."""
    if like is None:
        return None
    if not isinstance(like, Pair):
        raise InputError(f"like: expected a Pair, found {like!r}")
    return like._in_one_space()


def _split(split: Split) -> int | str | None:
    if split is None or isinstance(split, str):
        return split
    return integer(split, "split", 1)


def read(
    file: FileName,
    second_file: FileName | None = None,
    *,
    split: Split = None,
    frame: int = 1,
    unit: str = "angstrom",
    check: bool = True,
) -> Pair:
    """Reads a pair: xyz, extended xyz, ``QN-input-GEOMETRY.xyz`` or ``input-GEOMETRY.xyz``.

    Parameters
    ----------
    file : both molecules, or molecule 1 where `second_file` holds molecule 2
    split : atoms of molecule 1, or ``"auto"``, by bonds; not needed where the file tells it
    frame : of a file with several, from 1
    unit : ``"angstrom"``, ``"bohr"`` or ``"nm"``
    check : refuse bonds across the split and atoms closer than 0.5 Angstrom

    Raises `InputError` with file, line and column, and `FileError` when the system refuses.

    >>> read("formamide-dimer.xyz", split=6)
    <dravo.Pair CH3NO (6 atoms) and CH3NO (6 atoms)>
    """
    name = file_name(file)
    second = "" if second_file is None else file_name(second_file)
    found = _core.read_pair(
        name, second, _split(split), integer(frame, "frame", 1), unit, bool(check)
    )
    title = " and ".join(os.path.basename(part) for part in (name, second) if part)
    return Pair._of(*found, apart=bool(second), title=title)


def read_molecule(file: FileName, frame: int = 1, unit: str = "angstrom") -> Molecule:
    """Reads one molecule, all atoms of a frame (from 1) of an xyz file.

    Raises `InputError` with file, line and column, and `FileError`.

    >>> read_molecule("formamide.xyz")
    <dravo.Molecule CH3NO, 6 atoms>
    """
    return Molecule._of(
        _core.read_molecule(file_name(file), integer(frame, "frame", 1), unit)
    )


def write_whole(file: FileName, content: str | bytes, overwrite: bool) -> None:
    """The file appears when it is complete. Raises `FileError`."""
    name = file_name(file)
    if os.path.exists(name) and not overwrite:
        raise FileError(f"{name}: the file exists; overwrite=True replaces it")
    unfinished = f"{name}.{os.getpid()}.unfinished"
    data = content.encode() if isinstance(content, str) else content
    try:
        with open(unfinished, "wb") as stream:
            stream.write(data)
        os.replace(unfinished, name)
    except OSError as failure:
        if os.path.exists(unfinished):
            os.unlink(unfinished)
        raise FileError(f"{name}: cannot write: {failure.strerror}") from failure
