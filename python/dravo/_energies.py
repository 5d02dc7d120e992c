"""Interaction energies, and the minima of a pair."""

from __future__ import annotations

from dataclasses import dataclass
from typing import Any, NamedTuple, Sequence

import numpy as np
import numpy.typing as npt

from . import _core
from ._arrays import Floats, Integers, finite, integer, two_integers
from ._errors import InputError
from ._molecules import Molecule, Pair, Pose
from ._placer import Placer, as_placer


@dataclass(frozen=True)
class Method:
    """How energies are computed.

    Parameters
    ----------
    name : ``"gfnff"``, ``"gfn2"`` or ``"gfn1"`` by libxtb, or ``"command"``
    charges : net charges of molecule 1 and molecule 2, e
    unpaired : their unpaired electrons
    run : of a command: its line, where ``{xyz}``, ``{charge}``, ``{unpaired}`` and ``{here}`` are
        replaced
    read : regular expression with one group, the energy in what it prints; the last match counts
    read_unit : ``"hartree"``, ``"ev"``, ``"kcal/mol"`` or ``"kj/mol"``

    >>> Method("gfn2", charges=(0, -1)).charges
    (0, -1)
    """

    name: str
    charges: Sequence[int] = (0, 0)
    unpaired: Sequence[int] = (0, 0)
    run: str = ""
    read: str = ""
    read_unit: str = "hartree"


def as_model(pair: Pair, method: str | Method) -> _core.EnergyModel:
    """Computes the reference energies."""
    wanted = Method(method) if isinstance(method, str) else method
    if not isinstance(wanted, Method):
        raise InputError(f"expected the name of a method or a dravo.Method, found {method!r}")
    return _core.EnergyModel(
        pair._core,
        wanted.name,
        two_integers(wanted.charges, "charges"),
        two_integers(wanted.unpaired, "unpaired"),
        wanted.run,
        wanted.read,
        wanted.read_unit,
    )


class PairEnergy(NamedTuple):
    """The energy of one pair."""

    #: interaction energy, kcal/mol; nan unless the status is ok
    energy: float
    #: "ok", "scf_fail", "nonphysical" or "engine_died"
    status: str
    #: on molecule 1, kcal/mol/Angstrom, when asked for
    force: Floats | None
    #: about the centre of mass of molecule 1, kcal/mol/radian, when asked for
    torque: Floats | None


def energy(
    pair: Pair, method: str | Method = "gfnff", *, forces: bool = False, **options: Any
) -> PairEnergy:
    """The interaction energy of a pair as it stands.

    `method` is a name, with the options of `Method` behind it, or a `Method`. `forces` asks for
    force and torque on molecule 1. Raises `EngineError` and `InputError`.

    >>> found = energy(read("formamide-dimer.xyz", split=6), "gfn2")
    >>> found.status, round(found.energy, 1)
    ('ok', -16.6)
    """
    pair._in_one_space()
    model = as_model(pair, _with(method, options))
    centre = pair.molecules[0].frame().centre_of_mass.tolist() if forces else None
    interaction, status, parts = model.compute(pair.positions, centre)
    force, torque = (None, None) if parts is None else parts
    return PairEnergy(interaction, status, force, torque)


def _with(method: str | Method, options: dict[str, Any]) -> str | Method:
    if not options:
        return method
    if not isinstance(method, str):
        raise InputError(f"{', '.join(options)}: belongs into the Method that is given")
    return Method(method, **options)


@dataclass(frozen=True, eq=False)
class Energies:
    """Interaction energies of many poses, from `energies`. As an array it is `energy`."""

    #: r (the whole distance) to gamma, Angstrom and degrees (n x 6)
    poses: Floats
    #: kcal/mol; nan unless the status is ok (n)
    energy: Floats
    #: "ok", "clash", "scf_fail", "nonphysical", "engine_died" (n)
    status: npt.NDArray[np.str_]

    def __len__(self) -> int:
        return len(self.energy)

    def __array__(self, dtype: Any = None, copy: bool | None = None) -> Any:
        return self.energy if dtype is None else self.energy.astype(dtype)

    def argmin(self) -> int:
        """Place of the lowest energy, from 0. Raises `InputError` where no pose has one."""
        if np.isnan(self.energy).all():
            raise InputError("no pose has an energy")
        return int(np.nanargmin(self.energy))

    @property
    def best(self) -> Pose:
        """The pose with the lowest energy. Raises `InputError` where no pose has one."""
        return Pose(*self.poses[self.argmin()].tolist())

    def __repr__(self) -> str:
        names, counts = np.unique(self.status, return_counts=True)
        told = ", ".join(f"{count} {name}" for name, count in zip(names, counts))
        return f"<dravo.Energies of {len(self)} poses: {told}>"


def energies(
    pair: Placer | Pair,
    poses: Any,
    method: str | Method = "gfnff",
    *,
    threads: int = 0,
    **options: Any,
) -> Energies:
    """The interaction energy in each pose, by one engine for each thread.

    `poses` are n x 6, Angstrom and degrees, or `Poses`; `method` is a name, with the options of
    `Method` behind it, or a `Method`. Poses whose atoms clash are not computed: see `status`.
    Energies are rounded to six decimals. Raises `EngineError`, `OutOfRange` and `InputError`.

    >>> pair = read("formamide-dimer.xyz", split=6)
    >>> energies(pair, grid(r="here + 0:1:0.5", pair=pair), "gfnff")
    <dravo.Energies of 3 poses: 3 ok>
    """
    from ._scan import scan

    found = scan(pair, poses, energy=_with(method, options), threads=threads).rest()
    assert found.energies is not None and found.status is not None
    return Energies(found.poses, found.energies, found.status)


class Minimum(NamedTuple):
    """A minimum of a pair of rigid molecules, from `dock`."""

    #: the parameters, Angstrom and degrees
    pose: Pose
    #: by the method of `score`, kcal/mol; nan where the engine found none
    energy: float
    #: by the method of `search`
    search_energy: float
    #: how many starts led there
    starts: int
    #: minimised with the method of `score`
    refined: bool


@dataclass(frozen=True, eq=False)
class Docking(Sequence[Minimum]):
    """The minima that `dock` found, lowest energy first."""

    #: places the pair in the minima
    placer: Placer
    #: r to gamma (n x 6)
    poses: Floats
    #: by the method of `score`, kcal/mol (n)
    energy: Floats
    #: by the method of `search` (n)
    search_energy: Floats
    #: how many starts led to each (n)
    starts: Integers
    #: minimised with the method of `score` (n)
    refined: npt.NDArray[np.bool_]
    #: how many starts were made
    starts_made: int

    def __len__(self) -> int:
        return len(self.energy)

    def __getitem__(self, k: Any) -> Any:
        if isinstance(k, slice):
            return [self[i] for i in range(*k.indices(len(self)))]
        return Minimum(
            Pose(*self.poses[k].tolist()),
            float(self.energy[k]),
            float(self.search_energy[k]),
            int(self.starts[k]),
            bool(self.refined[k]),
        )

    def __repr__(self) -> str:
        lowest = f", lowest {self.energy[0]:.2f} kcal/mol" if len(self) else ""
        minima = "1 minimum" if len(self) == 1 else f"{len(self)} minima"
        return f"<dravo.Docking, {minima} of {self.starts_made} starts{lowest}>"


def dock(
    pair: Pair | Placer | Molecule,
    molecule2: Molecule | None = None,
    *,
    search: str = "gfnff",
    score: str = "gfn2",
    charges: Sequence[int] = (0, 0),
    unpaired: Sequence[int] = (0, 0),
    starts: int | None = None,
    time: float | None = None,
    seed: int = 0,
    refined: int = 30,
    keep: int | None = None,
    threads: int = 0,
) -> Docking:
    """The minima of a pair of rigid molecules; how they stand to each other does not matter.

    Parameters
    ----------
    pair : a `Pair`, or molecule 1 with molecule 2 behind it
    search, score : the methods that minimise the starts, and that rank the minima
    charges, unpaired : net charges (e) and unpaired electrons of molecule 1 and molecule 2
    starts : so many; without it until 50 find nothing new, after 150 to 500
    time : seconds, after which no start begins
    seed : of the random starts
    refined : minima that are minimised again with `score`
    keep : the best minima that are returned; all without it
    threads : and engines, 0 for as many as the machine has cores

    Poses are exact ones. Raises `EngineError` and `InputError`.

    >>> dock(read("argon.xyz", "hcn.xyz"), search="gfnff", score="gfnff", starts=4)
    <dravo.Docking, 1 minimum of 4 starts, lowest -0.27 kcal/mol>
    """
    if starts is not None and time is not None:
        raise InputError("starts and time exclude each other")
    placer = Placer(pair.pair if isinstance(pair, Placer) else pair, molecule2)
    found = _core.dock(
        placer.pair._core,
        search,
        score,
        two_integers(charges, "charges"),
        two_integers(unpaired, "unpaired"),
        integer(seed, "seed", 0, 2**64 - 1),
        integer(refined, "refined"),
        None if starts is None else integer(starts, "starts", 1, 1_000_000),
        None if time is None else float(finite(time, (), "time")),
        integer(threads, "threads", 0, 1024),
    )
    some = slice(None, None if keep is None else integer(keep, "keep", 1))
    return Docking(
        placer,
        found["poses"][some],
        found["score_energy"][some],
        found["search_energy"][some],
        found["starts"][some],
        found["refined"][some].astype(bool),
        found["starts_made"],
    )
