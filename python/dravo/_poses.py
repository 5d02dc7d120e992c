"""Which poses: grids, random series, lists."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, Iterable, Iterator, Union, overload

import numpy as np

from . import _core
from ._arrays import Floats, Numbers, floats, integer
from ._errors import InputError
from ._molecules import FileName, Pair, Pose, file_name

if TYPE_CHECKING:
    from ._placer import Placer

#: A number, ``"3:7:0.1"``, ``"0,45,90"``, ``"here + 0:2:0.5"``, or numbers of any kind.
Values = Union[float, str, Iterable[float]]
PARAMETERS = Pose._fields


class Poses:
    """Poses in an order, numbered from 0. A grid or a random series takes no memory for them.

    ``Poses(rows)`` has these, n x 6: r (Angstrom), theta, phi, alpha, beta, gamma (degrees).
    Raises `OutOfRange` for one that no pose may have.

    >>> poses = Poses([[4.0, 90, 0, 0, 30, 0], [5.0, 90, 0, 0, 30, 0]])
    >>> len(poses), poses[1].r
    (2, 5.0)
    """

    __slots__ = ("_core",)

    def __init__(self, rows: Numbers) -> None:
        self._core = _core.Poses(poses_array(rows))

    @classmethod
    def _of(cls, core: _core.Poses) -> Poses:
        poses = cls.__new__(cls)
        poses._core = core
        return poses

    @property
    def above_contact(self) -> bool:
        """Whether r counts from the first contact of the direction and orientation."""
        return self._core.above_contact

    def __len__(self) -> int:
        return len(self._core)

    @overload
    def __getitem__(self, which: int) -> Pose: ...
    @overload
    def __getitem__(self, which: slice) -> Floats: ...
    def __getitem__(self, which: int | slice) -> Pose | Floats:
        """One pose, or the rows of some as an array. Raises `InputError` where r counts from the
        first contact: `Placer.rows` knows the whole distances."""
        self._require_whole()
        if isinstance(which, slice):
            first, stop, step = which.indices(len(self))
            if step != 1:
                return self.rows()[which]
            return self._core.rows(first, max(stop - first, 0))
        if not -len(self) <= which < len(self):
            raise IndexError(f"there are {len(self)} poses, no number {which}")
        return Pose(*self._core.rows(which % len(self), 1)[0].tolist())

    def _require_whole(self) -> None:
        if self.above_contact:
            raise InputError(
                "r of these poses counts from the first contact of a pair: placer.rows(poses) has "
                "the whole distances"
            )

    def __iter__(self) -> Iterator[Pose]:
        together = 1000
        for first in range(0, len(self), together):
            for row in self[first : first + together].tolist():
                yield Pose(*row)

    def rows(self) -> Floats:
        """All of them, n x 6. Raises as ``poses[0]``."""
        self._require_whole()
        return self._core.rows(0, len(self))

    def __array__(self, dtype: Any = None, copy: bool | None = None) -> Any:
        return self.rows() if dtype is None else self.rows().astype(dtype)

    def __repr__(self) -> str:
        above = ", r above the first contact" if self.above_contact else ""
        return f"<dravo.Poses, {len(self)}{above}>"


def poses_array(poses: Any) -> Floats:
    """n x 6, whatever they come as; whether they are in range is seen by who uses them."""
    if isinstance(poses, Pose):
        poses = [poses]
    return floats(poses, (None, 6), "poses")


def as_poses(poses: Any) -> Poses:
    """As they are, or a list of rows."""
    return poses if isinstance(poses, Poses) else Poses(poses)


def _words(name: str, values: Values) -> list[str]:
    """As a plan has them."""
    if isinstance(values, str):
        return [values]
    listed = list(values) if isinstance(values, Iterable) else values
    array = np.atleast_1d(np.asarray(listed))
    if array.ndim != 1 or array.dtype.kind not in "fiu" or array.size == 0:
        raise InputError(
            f'{name}: expected a number, numbers, or a text such as "0,45,90" or "0:180:10", '
            f"found {values!r}"
        )
    return [repr(value) for value in array.astype(np.float64).tolist()]


def _planned(words: dict[str, Values | None], pair: Pair | Placer | None) -> Poses:
    given = {name: _words(name, values) for name, values in words.items() if values is not None}
    from_here = [name for name, texts in given.items() if texts[0].lstrip().startswith("here")]
    missing = [name for name in PARAMETERS if words.get(name, 0) is None]
    if pair is None:
        _require_told(given, from_here, missing)
        return Poses._of(_core.Poses.planned(given, None, None))
    stated = pair._defaults()
    needed = from_here or (missing and stated is None)
    return Poses._of(_core.Poses.planned(given, stated, pair._own_pose() if needed else None))


def _require_told(
    given: dict[str, list[str]], from_here: list[str], missing: list[str]
) -> None:
    """Without a pair every parameter needs values of its own."""
    for name in from_here:
        raise InputError(f"{name}={given[name][0]!r}: here needs pair=PAIR, whose own value it is")
    if missing:
        raise InputError(
            f"expected values for {', '.join(missing)}; or pair=PAIR, whose own stand in for them"
        )


def grid(
    r: Values | None = None,
    theta: Values | None = None,
    phi: Values | None = None,
    alpha: Values | None = None,
    beta: Values | None = None,
    gamma: Values | None = None,
    *,
    pair: Pair | Placer | None = None,
) -> Poses:
    """Every combination; r varies slowest, gamma fastest.

    Each parameter is a number, a list, range or array of them, or a text as the commands take it:
    ``"3:7:0.1"`` (both ends), ``"0,45,90"``; with `pair` also ``"here"`` and ``"here + 0:2:0.1"``,
    which count from the pair as it stands, and what is not given is as the pair has it. r may be
    ``"contact + 0:2:0.1"``: distances then count from the first contact of each direction.

    Raises `InputError`, and `OutOfRange` for values that no pose may have.

    >>> poses = grid(r="3:7:0.1", theta=range(0, 181, 10), phi=0, alpha=0, beta=90, gamma=0)
    >>> len(poses)
    779
    >>> poses[0]
    Pose(r=3.0, theta=0.0, phi=0.0, alpha=0.0, beta=90.0, gamma=0.0)
    """
    return _planned(dict(zip(PARAMETERS, (r, theta, phi, alpha, beta, gamma))), pair)


def random(
    n: int, *, r: Values | None = None, seed: int = 0, pair: Pair | Placer | None = None
) -> Poses:
    """For each r the same `n` directions, uniform on the sphere, with orientations uniform over all
    rotations. Pose k of them depends on `seed` and k alone.

    r is as in `grid`. Raises `InputError` and `OutOfRange`.

    >>> len(random(1000, r="3,4,5", seed=7))
    3000
    """
    count = str(integer(n, "n", 1, 10**15))
    number = str(integer(seed, "seed", 0, 2**64 - 1))
    return _planned({"r": r, "random": count, "seed": number}, pair)


def zipped(file: FileName) -> Poses:
    """The rows of a CSV file with columns r to gamma, as the option ``--zip``. They stay in the
    file. Raises `InputError` and `FileError`.

    >>> with open("poses.csv", "w") as table:
    ...     print("r,theta,phi,alpha,beta,gamma", "4,90,0,0,30,0", sep="\\n", file=table)
    >>> zipped("poses.csv")[0]
    Pose(r=4.0, theta=90.0, phi=0.0, alpha=0.0, beta=30.0, gamma=0.0)
    """
    return _planned({"zip": file_name(file)}, None)
