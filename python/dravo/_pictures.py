"""Drawings for papers, and pages for browsers and notebooks."""

from __future__ import annotations

import os
from typing import Any

import numpy as np

from . import _core
from ._arrays import SHORT_CONTACT, criterion, integer
from ._errors import InputError
from ._molecules import FileName, Molecule, Pair, Pose, file_name, write_whole
from ._placer import Placer, as_placer
from ._poses import PARAMETERS, Poses


class Picture(bytes):
    """The bytes of a drawing. A notebook shows SVG and PNG."""

    #: "svg", "png" or "bild"
    format: str

    def _repr_svg_(self) -> str | None:
        return self.decode() if self.format == "svg" else None

    def _repr_png_(self) -> bytes | None:
        return bytes(self) if self.format == "png" else None

    def __repr__(self) -> str:
        return f"<dravo.Picture, {self.format}, {len(self)} bytes>"

    __str__ = __repr__


def _look(
    *,
    view: str = "iso",
    frames: bool = True,
    angles: bool = False,
    contacts: bool = True,
    labels: bool = False,
    size: tuple[int, int] = (800, 600),
    theme: str = "light",
    title: str = "",
    description: str = "",
    contact_distance: float | str = SHORT_CONTACT,
) -> dict[str, Any]:
    try:
        width, height = size
    except (TypeError, ValueError):
        raise InputError(f"size: expected width and height in pixels, found {size!r}") from None
    return {
        "view": view,
        "frames": bool(frames),
        "angles": bool(angles),
        "contacts": bool(contacts),
        "labels": bool(labels),
        "size": (integer(width, "size", 50, 10000), integer(height, "size", 50, 10000)),
        "theme": theme,
        "title": title,
        "description": description,
        "contact_distance": criterion(contact_distance),
    }


def _look_of(placer: Placer, pose: Pose, look: dict[str, Any]) -> dict[str, Any]:
    look.setdefault("title", placer.pair.title or "pair")
    look.setdefault("description", _core.description(placer.pair._core, pose))
    look.setdefault("contact_distance", placer.contact_distance)
    return _look(**look)


def _exact(pair: Pair | Placer) -> Placer:
    placer = as_placer(pair)
    return placer if placer.exact else Placer(placer.pair, contact_distance=placer.contact_distance)


def draw(
    what: Pair | Placer | Molecule,
    file: FileName | None = None,
    *,
    pose: Pose | None = None,
    overwrite: bool = False,
    **look: Any,
) -> Picture:
    """Draws a pair in the frame of molecule 2, or a molecule in its own.

    Parameters
    ----------
    file : where it is written too; ends in ``.svg``, ``.png`` or ``.bild`` (for ChimeraX)
    pose : of the pair; as it stands without
    view : ``"x"``, ``"y"``, ``"z"``, ``"iso"``, or ``"AZ,EL"``, degrees
    frames, angles, contacts, labels : what is drawn (True, False, True, False)
    size : (800, 600), pixels
    theme : ``"light"`` or ``"dark"``
    title, description : for whom the picture is read to
    contact_distance : what a short contact is

    Raises `InputError`, and `FileError` where PNG cannot be made or a file exists.

    >>> draw(read("formamide-dimer.xyz", split=6), angles=True)[:4]
    b'<svg'
    """
    name = "picture.svg" if file is None else os.fspath(file)
    kind = os.path.splitext(name)[1].removeprefix(".")
    if kind not in ("svg", "png", "bild"):
        raise InputError(f"{name}: expected a name that ends in .svg, .png or .bild")
    if isinstance(what, Molecule):
        look.setdefault("description", f"{what.formula}.")
        content = _core.draw_molecule(what._core, kind, _look(**look))
    else:
        placer = _exact(what)
        chosen = placer.pose(pose)
        content = _core.draw_pair(placer._core, chosen, kind, _look_of(placer, chosen, look))
    picture = Picture(content)
    picture.format = kind
    if file is not None:
        write_whole(file, picture, overwrite)
    return picture


class Page:
    """A page that works by itself, in any browser and without a network.

    A notebook shows it. `html` is the whole text.
    """

    __slots__ = ("height", "html")

    def __init__(self, text: str, height: int = 640) -> None:
        self.html = text
        #: pixels in a notebook
        self.height = height

    def save(self, file: FileName, *, overwrite: bool = False) -> None:
        """Writes the page. Raises `FileError` for a file that is there, unless `overwrite`."""
        write_whole(file, self.html, overwrite)

    def open(self) -> None:
        """Shows it in the browser."""
        import tempfile
        import webbrowser

        with tempfile.NamedTemporaryFile("w", suffix=".html", delete=False) as stream:
            stream.write(self.html)
        webbrowser.open("file://" + stream.name)

    def _repr_html_(self) -> str:
        from html import escape

        # A document of its own: neither its style nor its script meets those of the notebook.
        return (
            f'<iframe srcdoc="{escape(self.html)}" width="100%" height="{self.height}" '
            'sandbox="allow-scripts allow-downloads" style="border: 0"></iframe>'
        )

    def __repr__(self) -> str:
        return f"<dravo.Page, {len(self.html)} characters>"


def view(
    what: Pair | Placer | FileName,
    poses: Any = None,
    columns: dict[str, Any] | None = None,
    *,
    pose: Pose | None = None,
    colour: str = "",
    **look: Any,
) -> Page:
    """A page that turns the pair and moves molecule 1; of many poses it has a map of them.

    Parameters
    ----------
    what : a pair or placer, or the name of finished results of ``dravo scan`` or ``dravo dock``
    poses : n x 6, or `Poses`: the map
    columns : numbers for each pose by name, such as ``{"e_int_kcal_mol": energies}``; where there
        are none, the shortest distance and the number of contacts are computed
    pose : that is shown first, of a pair alone; as it stands without
    colour : the column of the map's colours
    look : view, frames, angles (drawn), contacts, labels, title and description as in `draw`

    Raises `InputError`.

    >>> view(read("formamide-dimer.xyz", split=6))  # doctest: +ELLIPSIS
    <dravo.Page, ... characters>
    """
    look.setdefault("angles", True)
    if isinstance(what, (str, os.PathLike)):
        name = file_name(what)
        if name.endswith((".csv", ".json")) and not os.path.exists(f"{name}.json"):
            name = os.path.splitext(name)[0]
        look.setdefault("title", os.path.basename(name))
        return Page(_core.view_results(name, _look(**look)))
    placer = _exact(what)
    if poses is None:
        chosen = placer.pose(pose)
        return Page(_core.view_pair(placer._core, chosen, _look_of(placer, chosen, look)))
    named = _columns(placer, placer.rows(poses), columns)
    if colour and colour not in dict(named):
        raise InputError(f"colour: there is no column {colour!r}")
    first = Pose(*(float(column[0]) for _, column in named[: len(PARAMETERS)]))
    return Page(_core.view_poses(placer._core, named, colour, _look_of(placer, first, look)))


def _columns(
    placer: Placer, rows: Any, columns: dict[str, Any] | None
) -> list[tuple[str, list[float]]]:
    if len(rows) == 0:
        raise InputError("view: there is no pose")
    named: dict[str, Any] = dict(zip(PARAMETERS, Poses(rows).rows().T))
    if columns is None:
        from ._scan import scan

        found = scan(placer, rows, clearance=False).rest()
        columns = {"shortest": found.shortest, "contacts": found.contacts}
    for name, column in columns.items():
        array = np.asarray(column, dtype=np.float64)
        if array.shape != (len(rows),):
            raise InputError(f"{name}: expected {len(rows)} numbers, found {array.shape}")
        named[name] = array
    return [(name, column.tolist()) for name, column in named.items()]
