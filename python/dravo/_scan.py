"""Many poses of one pair, and what is found in each."""

from __future__ import annotations

from typing import Any, Iterator

import numpy as np
import numpy.typing as npt

from . import _core
from ._arrays import Floats, Integers, integer
from ._energies import Method, as_model
from ._molecules import Pair
from ._placer import Placer, as_placer
from ._poses import PARAMETERS, as_poses

#: poses of a batch, unless their positions take more than so many bytes
_MOST_POSES = 100_000
_MOST_BYTES = 64_000_000
_POSES_WITH_ENERGIES = 100


class ScanBatch:
    """Poses that follow each other, as columns: the wanted ones among those that were looked at.

    Rows are in the order of the poses. `len` is their number.
    """

    __slots__ = (
        "_extras", "above_contact", "applied", "clearance", "clearance_atoms", "contacts",
        "energies", "equivalents", "first_index", "index", "looked_at", "poses", "positions",
        "shortest", "status",
    )  # fmt: skip

    #: index of the first pose that was looked at for the batch, from 1
    first_index: int
    #: how many poses, those that were not wanted among them
    looked_at: int
    #: place among all poses, from 1 (n)
    index: Integers
    #: as asked for, r as the whole distance; Angstrom and degrees (n x 6)
    poses: Floats
    #: as applied (n x 6)
    applied: Floats
    #: the r of the poses, where it counts from the first contact, Angstrom (n); else None
    above_contact: Floats | None
    #: distance of the closest atoms of different molecules, Angstrom (n)
    shortest: Floats
    #: how many pairs of atoms are in short contact (n)
    contacts: Integers
    #: smallest ratio of a distance to the sum of the van der Waals radii; inf unless asked for (n)
    clearance: Floats
    #: the atoms of that, by their places in `Placer.symbols`, from 0; -1 without any (n x 2)
    clearance_atoms: npt.NDArray[np.int32]
    #: how many poses each stands for, with unique (n)
    equivalents: Integers
    #: interaction energy, kcal/mol, rounded to six decimals; nan unless the status is ok (n); None
    #: unless asked for
    energies: Floats | None
    #: "ok", "clash", "scf_fail", "nonphysical", "engine_died" (n); None without energies
    status: npt.NDArray[np.str_] | None
    #: Angstrom (n x atoms x 3); None unless asked for
    positions: Floats | None

    def __init__(self, columns: dict[str, Any], extras: frozenset[str]) -> None:
        self._extras = extras
        columns["energies"] = columns.pop("interaction")
        columns["status"] = _STATUSES[columns["status"]]
        if "above_contact" not in extras:
            columns["above_contact"] = None
        if "energies" not in extras:
            columns["energies"] = columns["status"] = None
        for name, column in columns.items():
            setattr(self, name, column)

    def __len__(self) -> int:
        return len(self.index)

    def table(self) -> npt.NDArray[np.void]:
        """A structured array with the columns that tables of ``dravo scan`` have, atoms of the
        clearance from 1."""
        columns: dict[str, Any] = {"index": self.index}
        if "above_contact" in self._extras:
            columns["above_contact"] = self.above_contact
        columns.update(zip(PARAMETERS, self.poses.T))
        columns.update(zip((f"{name}_applied" for name in PARAMETERS), self.applied.T))
        columns["shortest"] = self.shortest
        columns["contacts"] = self.contacts
        columns["clearance"] = self.clearance
        columns["clearance_atom1"] = self.clearance_atoms[:, 0] + 1
        columns["clearance_atom2"] = self.clearance_atoms[:, 1] + 1
        if "equivalents" in self._extras:
            columns["equivalents"] = self.equivalents
        if "energies" in self._extras:
            columns["e_int_kcal_mol"] = self.energies
            columns["status"] = self.status
        rows = np.empty(len(self), [(name, column.dtype) for name, column in columns.items()])
        for name, column in columns.items():
            rows[name] = column
        return rows

    def __repr__(self) -> str:
        last = self.first_index + self.looked_at - 1
        return f"<dravo.ScanBatch, {len(self)} of the poses {self.first_index} to {last}>"


_STATUSES = np.array([*_core.energy_statuses, ""])


class Scan(Iterator[ScanBatch]):
    """A scan that runs while its batches are taken, from `scan`.

    It ends when the last one is taken, or by `close`, which the end of a ``with`` calls.
    """

    def __init__(self, core: _core.Scan, extras: frozenset[str]) -> None:
        self._core = core
        #: columns that tables of this scan have beside those of all
        self._extras = extras

    def __iter__(self) -> Scan:
        return self

    def __next__(self) -> ScanBatch:
        columns = self._core.next()
        if columns is None:
            raise StopIteration
        return ScanBatch(columns, self._extras)

    def rest(self) -> ScanBatch:
        """What is left, as one batch."""
        batches = list(iter(self._core.next, None))
        if not batches:
            return ScanBatch(_no_columns(), self._extras)
        whole = {"first_index": batches[0].pop("first_index")}
        whole["looked_at"] = sum(batch.pop("looked_at") for batch in batches)
        for name in batches[0]:
            if name != "first_index":
                parts = [batch[name] for batch in batches]
                whole[name] = None if parts[0] is None else np.concatenate(parts)
        return ScanBatch(whole, self._extras)

    def __repr__(self) -> str:
        return "<dravo.Scan; for batch in it, or rest()>"

    def close(self) -> None:
        """Ends it at once."""
        self._core.close()

    def __enter__(self) -> Scan:
        return self

    def __exit__(self, *_: object) -> None:
        self.close()


def _no_columns() -> dict[str, Any]:
    numbers = ("above_contact", "shortest", "clearance", "interaction")
    integers = ("index", "contacts", "equivalents")
    return {
        "first_index": 1,
        "looked_at": 0,
        "positions": None,
        "poses": np.empty((0, 6)),
        "applied": np.empty((0, 6)),
        "clearance_atoms": np.empty((0, 2), np.int32),
        "status": np.empty(0, np.int8),
        **{name: np.empty(0) for name in numbers},
        **{name: np.empty(0, np.int64) for name in integers},
    }


def scan(
    pair: Placer | Pair,
    poses: Any,
    *,
    contacts: str = "keep",
    positions: bool = False,
    clearance: bool = True,
    unique: bool = False,
    energy: str | Method | None = None,
    keep_below: float | None = None,
    threads: int = 0,
    batch: int | None = None,
) -> Scan:
    """Places the pair in every pose; iterates over batches of numbers, in the order of the poses.

    Parameters
    ----------
    pair : a `Placer`, or a `Pair`, which is placed exactly
    poses : `Poses`, or n x 6 numbers: Angstrom and degrees
    contacts : ``"keep"`` all poses, ``"drop"`` those with short contacts, ``"only"`` those
    positions : batches hold the atoms
    clearance : poses have it; without it small pairs take a tenth less time
    unique : equal poses once, those that rotations of the molecules make equal (grids)
    energy : ``"gfnff"``, ``"gfn2"``, ``"gfn1"`` or a `Method`: interaction energies
    keep_below : only poses with a lower energy, kcal/mol
    threads : 0 for as many as the machine has cores
    batch : at least so many poses are looked at for one (100,000; fewer with positions or energies)

    Memory does not grow with the number of poses. Ctrl-C ends it at once. Raises `InputError` and
    `EngineError`.

    >>> placer = Placer(read("formamide-dimer.xyz", split=6))
    >>> for batch in scan(placer, random(10000, r="4,6", seed=1), contacts="drop"):
    ...     print(len(batch), "of", batch.looked_at, round(batch.shortest.min(), 3))
    17127 of 20000 1.9
    """
    placer = as_placer(pair)
    some = as_poses(poses)
    model = None if energy is None else as_model(placer.pair, energy)
    if batch is None:
        bytes_of_pose = 24 * len(placer) if positions else 0
        batch = min(_MOST_POSES, max(_MOST_BYTES // max(bytes_of_pose, 1), 1))
        if model is not None:
            batch = min(batch, _POSES_WITH_ENERGIES)
    extras = {"above_contact": some.above_contact, "equivalents": unique, "energies": model}
    core = _core.scan(
        placer._core, some._core, contacts, bool(positions), bool(clearance), bool(unique), model,
        keep_below, integer(threads, "threads", 0, 1024), integer(batch, "batch", 1),
    )  # fmt: skip
    return Scan(core, frozenset(name for name, there in extras.items() if there))
