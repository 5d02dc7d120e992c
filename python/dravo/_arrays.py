"""Arguments as arrays, or one clear error."""

from __future__ import annotations

from typing import Any, Sequence, Union

import numpy as np
import numpy.typing as npt

from ._errors import InputError

Floats = npt.NDArray[np.float64]
Integers = npt.NDArray[np.int64]
Numbers = npt.ArrayLike

#: Angstrom: 1.9 in single precision, as qn-dravo has it
SHORT_CONTACT = float(np.float32(1.9))


def floats(values: Any, shape: tuple[int | None, ...], what: str) -> Floats:
    """The values as float64 in the order of C, copied only where they are not so already.

    `shape` has None for any length.
    """
    try:
        array = np.asarray(values)
        if array.dtype.kind not in "fiu" and array.size:
            raise TypeError(f"numbers, found {array.dtype}")
        array = np.require(array, np.float64, ["C_CONTIGUOUS", "ALIGNED"])
    except (TypeError, ValueError) as fault:
        raise InputError(f"{what}: expected an array of numbers, found {_shown(values)}") from fault
    fits = array.ndim == len(shape) and all(
        wanted is None or wanted == found for wanted, found in zip(shape, array.shape)
    )
    if array.size == 0 and not fits and None in shape and array.ndim == 1:
        return np.empty([0 if wanted is None else wanted for wanted in shape])
    if not fits:
        expected = " x ".join("n" if wanted is None else str(wanted) for wanted in shape)
        found = " x ".join(map(str, array.shape)) or "a single number"
        raise InputError(f"{what}: expected an array of {expected} numbers, found {found}")
    return array


def finite(values: Any, shape: tuple[int | None, ...], what: str) -> Floats:
    """The same, all of them finite."""
    array = floats(values, shape, what)
    if not np.isfinite(array).all():
        place = tuple(int(k) for k in np.argwhere(~np.isfinite(array))[0])
        raise InputError(f"{what}: expected finite numbers, found {array[place]} at {list(place)}")
    return array


def integer(value: Any, what: str, lowest: int = 0, highest: int = 2**31 - 1) -> int:
    """A whole number in a range."""
    if not isinstance(value, (int, np.integer)) or isinstance(value, bool):
        raise InputError(f"{what}: expected a whole number, found {_shown(value)}")
    if not lowest <= value <= highest:
        raise InputError(f"{what}: expected {lowest} to {highest}, found {value}")
    return int(value)


def two_integers(values: Sequence[int], what: str) -> tuple[int, int]:
    """Of molecule 1 and molecule 2."""
    try:
        one, two = values
    except (TypeError, ValueError):
        raise InputError(
            f"{what}: expected two numbers, of molecule 1 and molecule 2, found {_shown(values)}"
        ) from None
    lowest = -(2**31)
    return integer(one, what, lowest), integer(two, what, lowest)


def criterion(contact_distance: Union[float, str]) -> str:
    """As the option of the commands has it: 1.9 Angstrom, "vdw*0.8", "vdw"."""
    if isinstance(contact_distance, str):
        return contact_distance
    try:
        return repr(float(contact_distance))
    except (TypeError, ValueError):
        raise InputError(
            'contact_distance: expected Angstrom, "vdw" or "vdw*F", '
            f"found {_shown(contact_distance)}"
        ) from None


def _shown(value: Any) -> str:
    text = repr(value)
    return text if len(text) <= 60 else text[:57] + "..."
