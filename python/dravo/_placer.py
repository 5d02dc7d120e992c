"""A pair that is analysed once and placed as often as one likes."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, Iterator, Union

import numpy as np

from . import _core
from ._arrays import SHORT_CONTACT, Floats, criterion, finite, integer
from ._errors import InputError
from ._molecules import Molecule, Pair, Pose, Survey, reference
from ._poses import PARAMETERS, poses_array

if TYPE_CHECKING:
    from ._identify import Frame

#: A number, or ``"here"`` or ``"here + 0.5"``, which count from the pair as it stands.
Value = Union[float, str]


class Placer:
    """Places molecule 1 of a pair around molecule 2. May be used by several threads.

    Parameters
    ----------
    pair : a `Pair`, or molecule 1 with molecule 2 behind it
    placing : ``"exact"``, by closed form, with the parameters as they are given, as ``dravo
        place``; ``"as_qn_dravo"``, digit for digit as ``qn-dravo``, for pairs that it places; or
        ``"automatic"``, as ``qn-dravo`` where it can, as ``dravo scan``
    like : the same pair, whose axes are carried along
    contact_distance : what a short contact is, Angstrom, or ``"vdw*0.8"``

    Raises `NoUniqueFrame` and `NoRotationFound` for a pair that ``qn-dravo`` cannot place, when it
    is to be placed so, and `InputError`.

    >>> placer = Placer(read("formamide-dimer.xyz", split=6))
    >>> placer.survey(r=3.0, theta=90, phi=0, alpha=0, beta=30, gamma=0).contacts
    1
    """

    __slots__ = ("_core", "_here", "_like", "contact_distance", "pair", "placing")

    #: of the molecules, as they were given
    pair: Pair
    #: "exact", "as_qn_dravo" or "automatic", as it was given
    placing: str
    #: what a short contact is
    contact_distance: float | str

    def __init__(
        self,
        pair: Pair | Molecule,
        molecule2: Molecule | None = None,
        *,
        placing: str = "exact",
        like: Pair | None = None,
        contact_distance: float | str = SHORT_CONTACT,
    ) -> None:
        if isinstance(pair, Molecule) and isinstance(molecule2, Molecule):
            pair, molecule2 = Pair(pair, molecule2), None
        if not isinstance(pair, Pair) or molecule2 is not None:
            raise InputError("a placer is of a Pair, or of two Molecules")
        self.pair = pair
        self.placing = placing
        self.contact_distance = contact_distance
        self._like = like
        self._here: Pose | None = None
        self._core = _core.Placer(
            pair._core, placing, reference(like), criterion(contact_distance)
        )

    def __len__(self) -> int:
        return len(self._core)

    @property
    def n1(self) -> int:
        """Atoms of molecule 1, the first ones."""
        return self._core.n1

    @property
    def symbols(self) -> list[str]:
        """The element of each atom."""
        return self.pair.symbols

    @property
    def exact(self) -> bool:
        """Whether poses are exact, or as those of ``qn-dravo``."""
        return self._core.exact

    @property
    def frames(self) -> tuple[Frame, Frame]:
        """The frames by which poses are placed."""
        from ._identify import Frame

        one, two = self._core.frames
        return Frame._of(one), Frame._of(two)

    @property
    def remarks(self) -> list[str]:
        """What makes the frames uncertain, a sentence each."""
        return self._core.remarks

    @property
    def idle(self) -> list[str]:
        """Parameters that change nothing in any pose."""
        return self._core.idle

    def pose(
        self,
        pose: Pose | None = None,
        *,
        r: Value | None = None,
        theta: Value | None = None,
        phi: Value | None = None,
        alpha: Value | None = None,
        beta: Value | None = None,
        gamma: Value | None = None,
    ) -> Pose:
        """The pose that these parameters make: `pose`, where some may be replaced.

        Without `pose`, what is not given is as the file states it when it was a
        ``QN-input-GEOMETRY.xyz``, else as the pair stands; of two molecules it is 0 (theta beside a
        linear molecule 2: 90), and r must be given.

        >>> placer = Placer(read("formamide-dimer.xyz", split=6))
        >>> placer.pose(Pose(4.0, theta=90), beta=30)
        Pose(r=4.0, theta=90.0, phi=0.0, alpha=0.0, beta=30.0, gamma=0.0)
        """
        values = [r, theta, phi, alpha, beta, gamma]
        if pose is not None:
            pose = Pose(*finite(pose, (6,), "pose").tolist())
        chosen = Pose(*(self._value(k, value, pose) for k, value in enumerate(values)))
        _core.require_usable_pose(chosen)
        return chosen

    def _value(self, k: int, value: Value | None, pose: Pose | None) -> float:
        """Parameter k as it was given, or what stands in for it."""
        if value is None:
            if pose is not None:
                return pose[k]
            stated = self._defaults()
            default = None if stated is None else stated[k]
            return self._own_value(k, "") if default is None else default
        if isinstance(value, str):
            number, from_here = _core.number_of(PARAMETERS[k], value)
            return self._own_value(k, value) + number if from_here else number
        try:
            return float(value)
        except (TypeError, ValueError):
            raise InputError(f"{PARAMETERS[k]}: expected a number, found {value!r}") from None

    def _own_value(self, k: int, value: str) -> float:
        """Of the pair as it stands; `value` is the text that asks for it."""
        here = self._own_pose()
        if here is not None:
            return here[k]
        name = PARAMETERS[k]
        if not value:
            raise InputError(f"{name} is missing: two molecules do not give it")
        raise InputError(
            f"{name}={value!r}: here needs a pair as it stands; two molecules do not say how they "
            "stand"
        )

    def _defaults(self) -> list[float | None] | None:
        return self.pair._defaults()

    def _own_pose(self) -> Pose | None:
        if self._like is None or self.pair._apart:
            return self.pair._own_pose()
        if self._here is None:
            self._here = self.pair.identify(like=self._like).pose
        return self._here

    def place(
        self, pose: Pose | None = None, *, keep_frame: bool = False, **parameters: Value
    ) -> Any:
        """The pair placed once, an ``ase.Atoms`` where ASE is installed, else a `Pair`.

        Parameters are as in `pose`. `keep_frame` leaves molecule 2 where the pair has it. Of the
        Atoms ``info`` has the six parameters, and the array ``"molecule"`` tells 1 from 2. Raises
        `OutOfRange`.
        """
        chosen = self.pose(pose, **parameters)
        placed = self._placed(chosen, keep_frame)
        try:
            atoms = placed.to_ase()
        except ImportError:
            return placed
        atoms.info.update(self._info(chosen))
        return atoms

    def _info(self, pose: Pose) -> dict[str, Any]:
        return {**pose._asdict(), "placing": "exact" if self.exact else "as_qn_dravo"}

    def placed_pair(
        self, pose: Pose | None = None, *, keep_frame: bool = False, **parameters: Value
    ) -> Pair:
        """The same as a `Pair`."""
        return self._placed(self.pose(pose, **parameters), keep_frame)

    def _placed(self, pose: Pose, keep_frame: bool) -> Pair:
        if keep_frame and not self.exact:
            raise InputError("keep_frame does not go with placing as qn-dravo")
        if keep_frame:
            positions = self._core.in_kept_frame(self.pair._core, pose)
        else:
            positions = self._core.place(pose)[0]
        return Pair(self.symbols, positions, self.n1, check=False)

    def survey(self, pose: Pose | None = None, **parameters: Value) -> Survey:
        """How close the molecules come in a pose. Raises `OutOfRange`."""
        return Survey._of(*self._core.place(self.pose(pose, **parameters))[2:])

    def applied(self, pose: Pose | None = None, **parameters: Value) -> Pose:
        """The parameters as they are applied: phi, alpha and gamma from 0 to 360; as ``qn-dravo``,
        as measured after the placement, and singular values have been moved off."""
        return Pose(*self._core.place(self.pose(pose, **parameters))[1])

    def touching_distance(self, pose: Pose | None = None, **parameters: Value) -> float:
        """The r, Angstrom, at which the pair, in this direction and orientation, first has a short
        contact on its way from afar; 0 when it has none. The r of the pose is not looked at."""
        if pose is None and "r" not in parameters:
            parameters["r"] = 0.0
        return self._core.touching_distance(self.pose(pose, **parameters))

    def positions(self, poses: Any, threads: int = 0) -> Floats:
        """The atoms in many poses: n x atoms x 3, Angstrom, molecule 1 first.

        `poses` are n x 6 (or `Poses`); float64 rows in C order are not copied. `threads`: 0 for as
        many as the machine has cores. The lock of the interpreter is released. Raises `OutOfRange`,
        which names the pose from 1, and `InputError`.

        >>> placer = Placer(read("formamide-dimer.xyz", split=6))
        >>> placer.positions(random(1000, r=5.0)).shape
        (1000, 12, 3)
        """
        return self._core.positions(self.rows(poses), integer(threads, "threads", 0, 1024))

    def rows(self, poses: Any) -> Floats:
        """Poses as n x 6 numbers, Angstrom and degrees; r is the whole distance, also where it counts
        from the first contact.

        >>> pair = read("formamide-dimer.xyz", split=6)
        >>> Placer(pair).rows(grid(r="contact + 0:1:0.5", pair=pair)).shape
        (3, 6)
        """
        if not getattr(poses, "above_contact", False):
            return poses_array(poses)
        from ._scan import scan

        batches = scan(self, poses, clearance=False)
        return np.concatenate([np.empty((0, 6)), *(batch.poses for batch in batches)])

    def atoms(self, poses: Any, batch: int = 1000) -> Iterator[Any]:
        """An ``ase.Atoms`` for each pose, for any calculator of ASE. Raises as `positions`, and
        ImportError without ASE.

        >>> from ase.calculators.lj import LennardJones
        >>> placer = Placer(read("argon.xyz", "hcn.xyz"))
        >>> for atoms in placer.atoms(grid(r="3.5,4", pair=placer)):
        ...     atoms.calc = LennardJones(sigma=3.4, epsilon=0.01)
        ...     print(len(atoms), atoms.info["r"])
        4 3.5
        4 4.0
        """
        template = self.pair._to_ase()
        rows = self.rows(poses)
        for first in range(0, len(rows), batch):
            some = rows[first : first + batch]
            for pose, positions in zip(some.tolist(), self.positions(some)):
                atoms = template.copy()
                atoms.positions = positions
                atoms.info.update(self._info(Pose(*pose)))
                yield atoms

    def __repr__(self) -> str:
        how = "exactly" if self.exact else "as qn-dravo"
        return f"<dravo.Placer of {repr(self.pair)[len('<dravo.Pair '):-1]}, {how}>"


def as_placer(pair: Pair | Placer) -> Placer:
    """A placer, where it is not one already."""
    return pair if isinstance(pair, Placer) else Placer(pair)


