"""Pairs read, identified, placed, converted and drawn, as the commands do it, to the digit."""

from __future__ import annotations

import json
import re
from pathlib import Path
from typing import Any

import numpy as np
import pytest
from commands import (
    ARGON_HCN, FORMAMIDES, PAIRS, STANDING, Example, atom_rows, command, fixed, frames_of, options,
    rows_of,
)  # fmt: skip

import dravo

every_pair = pytest.mark.parametrize("example", PAIRS, ids=str)
every_standing_pair = pytest.mark.parametrize("example", STANDING, ids=str)


def printed_pose(text: str) -> list[str]:
    """Of dravo identify: the six lines that end an input file of qn-dravo."""
    lines = text.splitlines()
    assert (lines[0], lines[4], lines[8]) == ("position", "rotation", "end")
    return [lines[k].split()[0] for k in (1, 2, 3, 5, 6, 7)]


@every_standing_pair
def test_identifies_as_the_command(example: Example) -> None:
    found = example.read().identify()
    text = command("identify", *example.words())
    assert [fixed(value, 8) for value in found.pose] == printed_pose(text)
    for remark in found.remarks:
        assert f"note: {remark}\n" in text
    for frame in found.frames:
        assert f"{frame.rotor}, {frame.kind} frame" in text
        for axis in frame.axes:
            assert f"{axis.moment_amu:.5f}  " in text
            if np.isfinite(axis.constant):
                assert f"{axis.constant:.5f} " in text


@every_standing_pair
def test_identification_has_all_digits_of_the_json(example: Example) -> None:
    found = example.read().identify()
    told = json.loads(command("identify", *example.words(), "--json"))
    assert list(found.pose) == [told["parameters"][name] for name in dravo.Pose._fields]
    assert found.for_qn_dravo == example.strict


@every_standing_pair
def test_lists_the_equivalent_parameters(example: Example) -> None:
    text = command("identify", *example.words(), "--equivalent")
    listed = [
        words for line in text.splitlines()
        if len(words := line.split()) == 6 and all(re.fullmatch(r"-?\d+\.\d{8}", w) for w in words)
    ]  # fmt: skip
    found = [[fixed(value, 8) for value in row] for row in example.read().identify().equivalent]
    assert listed == found


@every_standing_pair
def test_measures_closeness_as_the_command(example: Example) -> None:
    pair = example.read()
    text = command("identify", *example.words())
    survey = pair.survey()
    assert re.search(rf"contacts +{survey.contacts}, up to 1.9 Angstrom", text)
    assert f"clearance       {survey.clearance:.4f} of the van der Waals radii" in text
    symbols = [f"{symbol}{k}" for k, symbol in enumerate(pair.symbols, 1)]
    for atom1, atom2, distance, ratio in pair.closest():
        line = rf"{symbols[atom1]} +{symbols[atom2]} +{distance:.4f} +{ratio:.4f}"
        assert re.search(line, text), line
    bonds = pair.hydrogen_bonds()
    assert len(re.findall(r"-H\d+\.\.\.", text)) == len(bonds)
    for donor, hydrogen, acceptor, distance, angle in bonds:
        name = f"{symbols[donor]}-{symbols[hydrogen]}...{symbols[acceptor]}"
        assert re.search(rf"{re.escape(name)} +{distance:.4f} Angstrom, {angle:.1f} degrees", text)


def assert_placed_as_the_command(
    example: Example, placing: str = "exact", like: Example | None = None, **given: Any
) -> None:
    keep_frame = given.pop("keep_frame", False)
    placer = dravo.Placer(
        example.read(), placing=placing, like=None if like is None else like.read()
    )
    pose = placer.pose(**given)
    placed = placer.placed_pair(pose, keep_frame=keep_frame)
    words = options(given)
    words += ["--keep-frame"] if keep_frame else []
    words += ["--as-qn-dravo"] if placing == "as_qn_dravo" else []
    words += [] if like is None else ["--like", like.words()[0]]
    ((comment, symbols, atoms),) = frames_of(command("place", *example.words(), *words))
    assert placed.symbols == symbols
    assert atom_rows(placed.positions, placer.exact) == atoms
    told = dict(re.findall(r"(\w+)=(\S+)", comment))
    assert list(pose) == [float(told[name]) for name in dravo.Pose._fields]
    assert told["placing"] == placing
    if not keep_frame:
        assert np.array_equal(placer.positions([pose])[0], placed.positions)


ANGLES = {"theta": 77.5, "phi": -30, "alpha": 400.25, "beta": 12.125, "gamma": 210}


@every_pair
@pytest.mark.parametrize("given", [{}, {"r": 5.25}, {"r": 4, **ANGLES}], ids=["own", "r", "all"])
def test_places_as_the_command(example: Example, given: dict[str, float]) -> None:
    assert_placed_as_the_command(example, **{**example.distance, **given})


@every_standing_pair
@pytest.mark.parametrize("keep_frame", [False, True], ids=["", "kept"])
def test_places_from_here_as_the_command(example: Example, keep_frame: bool) -> None:
    assert_placed_as_the_command(example, r="here+0.5", gamma="here-10", keep_frame=keep_frame)


@every_pair
def test_places_as_qn_dravo_as_the_command(example: Example) -> None:
    given = {"r": 4.75, "theta": 0, **{k: ANGLES[k] for k in ("phi", "alpha", "beta")}}
    if example.strict:
        assert_placed_as_the_command(example, "as_qn_dravo", **given)
        return
    with pytest.raises(dravo.NoUniqueFrame):
        dravo.Placer(example.read(), placing="as_qn_dravo")


@pytest.mark.parametrize("example", [e for e in STANDING if e.split], ids=str)
def test_places_with_the_axes_of_a_reference(example: Example) -> None:
    assert_placed_as_the_command(example, like=example, r="here+0.25")


def trajectory(example: Example, file: str) -> None:
    """The pair pulled apart and turned until angles pass 360."""
    pair = example.read()
    placer = dravo.Placer(pair)
    here = placer.pose(**example.distance)
    with open(file, "w") as stream:
        for k in range(8):
            pose = here._replace(r=here.r + 0.1 * k, phi=here.phi + 47 * k, gamma=300 + 11 * k)
            atoms = atom_rows(placer.positions([pose])[0])
            lines = [f"{s} {' '.join(xyz)}" for s, xyz in zip(pair.symbols, atoms)]
            stream.write("\n".join([str(len(pair)), "", *lines, ""]))


@every_pair
@pytest.mark.parametrize("unwrap", [False, True], ids=["", "unwrapped"])
def test_identifies_trajectories_as_the_command(example: Example, unwrap: bool) -> None:
    trajectory(example, "frames.xyz")
    n1 = example.read().n1
    words = ["--split", n1, "--frame", "all", "--no-check", *(["--unwrap"] if unwrap else [])]
    command("identify", "frames.xyz", *words, "-o", "frames.csv")
    table = dravo.identify_many("frames.xyz", split=n1, check=False, unwrap=unwrap)
    assert_same_frames(table, "frames.csv")
    pairs = [dravo.read("frames.xyz", split=n1, frame=k, check=False) for k in range(1, 9)]
    assert_same_frames(dravo.identify_many(pairs, unwrap=unwrap), "frames.csv")
    positions = np.array([pair.positions for pair in pairs])
    again = dravo.identify_many(positions, symbols=pairs[0].symbols, split=n1, unwrap=unwrap)
    assert_same_frames(again, "frames.csv")


def assert_same_frames(table: np.ndarray[Any, Any], file: str | Path) -> None:
    rows = rows_of(file)
    assert len(rows) == len(table) and list(table.dtype.names or ()) == list(rows[0])
    for found, row in zip(table, rows):
        shown = {name: str(found[name]) for name in ("frame", "contacts", "remark")}
        shown |= {name: fixed(found[name], 8) for name in ("r", "shortest")}
        shown |= {name: fixed(found[name], 6) for name in dravo.Pose._fields[1:]}
        for name, text in shown.items():
            shown[name] = {"360.000000": "0.000000", "-0.000000": "0.000000"}.get(text, text)
        assert shown == row


def test_unwraps_half_turns_as_the_command() -> None:
    placer = dravo.Placer(ARGON_HCN.read())
    argon = [
        [r, 90, phi, 0, 0, 0] for r, phi in zip([4.0] * 7, [0, 180, 0, 180, 359.9999999, 180, 0])
    ]
    positions = placer.positions(argon)
    table = dravo.identify_many(positions, symbols=placer.symbols, split=1, unwrap=True)
    with open("frames.xyz", "w") as stream:
        for atoms in positions:
            rows = (" ".join(map(repr, p)) for p in atoms.tolist())
            lines = [f"{symbol} {row}" for symbol, row in zip(placer.symbols, rows)]
            stream.write("\n".join([str(len(placer)), "", *lines, ""]))
    command("identify", "frames.xyz", "--split=1", "--frame=all", "--unwrap", "-o", "frames.csv")
    assert_same_frames(table, "frames.csv")


@every_standing_pair
def test_writes_as_convert(example: Example) -> None:
    example.read().write("pair.xyz")
    assert Path("pair.xyz").read_text() == command("convert", *example.words())


@every_pair
@pytest.mark.parametrize(
    "look",
    [{}, {"angles": True, "labels": True, "view": "x", "theme": "dark", "size": (300, 200)}],
    ids=["plain", "rich"],
)
def test_draws_as_the_command(example: Example, look: dict[str, Any]) -> None:
    given = {**example.distance, "theta": 60}
    pair = example.read()
    picture = pair.draw(pose=dravo.Placer(pair).pose(**given), **look)
    size = {"size": "{}x{}".format(*look["size"])} if "size" in look else {}
    words = options({**given, **look, **size})
    assert bytes(picture).decode() == command("draw", *example.words(), *words)


def test_draws_molecules_and_other_formats_as_the_command() -> None:
    files = sorted({word for pair in PAIRS if pair.apart for word in pair.words()})
    for file in files:
        drawn = command("draw", file)
        words = re.search("<desc[^>]*>([^<]*)</desc>", drawn)
        assert words
        molecule = dravo.read_molecule(file)
        title = Path(file).name
        assert molecule.draw(title=title, description=words[1]).decode() == drawn
    pair = FORMAMIDES.read()
    for ending in ("bild", "png"):
        pair.draw(f"here.{ending}")
        command("draw", *FORMAMIDES.words(), "-o", f"command.{ending}")
        assert Path(f"here.{ending}").read_bytes() == Path(f"command.{ending}").read_bytes()


@every_pair
def test_views_as_the_command(example: Example) -> None:
    given = {**example.distance, "beta": 45}
    pair = example.read()
    page = dravo.view(pair, pose=dravo.Placer(pair).pose(**given)).html
    command("view", *example.words(), *options(given), "--no-open", "-o", "page.html")
    told = r'"command":"[^"]*"'
    assert len(re.findall(told, page)) == 1
    # The command that places the pair names its files, which a pair of Python does not have.
    assert re.sub(told, "", page) == re.sub(told, "", Path("page.html").read_text())
