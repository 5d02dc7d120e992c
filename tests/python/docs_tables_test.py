"""docs/python.md: what its tables of code show can be run."""

import os
import re
import shutil
from pathlib import Path
from typing import Any, Iterator

import dravo
import pytest

PAGE = Path(__file__).resolve().parents[2] / "docs/python.md"
FORMAMIDES = Path(os.environ["DRAVO_EXAMPLES"]) / "formamide-dimer"
BUILD = Path(os.environ["DRAVO_PROGRAM"]).parent
#: that compute energies
BY_ENGINE = re.compile(r"\.energy\(|energies\(|dock\(|energy=|\"energy\"")
#: to which calls keyword arguments belong that stand alone
CALLS = {
    ("contacts", "unique", "positions", "energy"): "dravo.scan(placer, poses, {}).rest()",
    ("keep_below",): 'dravo.scan(placer, poses, energy="gfnff", {}).rest()',
    ("charges", "unpaired"): 'dravo.Method("gfn2", {})',
    ("forces",): 'pair.energy("gfnff", {})',
    ("split",): 'dravo.read("dimer.xyz", {})',
}


def cells(column: int) -> Iterator[str]:
    """Code in a column of any table of the page."""
    for line in PAGE.read_text().splitlines():
        if line.startswith("| "):
            parts = [part.strip() for part in line.strip("| ").split(" | ")]
            if column < len(parts):
                yield from re.findall("`([^`]+)`", parts[column])


def snippets() -> list[str]:
    """Calls and keyword arguments, as they stand in the first column, or in the second behind a
    command."""
    found = [code for code in cells(0) if "(" in code and not code.startswith("dravo ")]
    found += [code for code in cells(1) if re.match(r"(dravo|pair|batch)\.|\w+=[-\w(\"]", code)]
    # What has dots for something else is no code, and a placer with placing=... is a heading.
    return sorted({called(code) for code in found if "..." not in code})


def called(code: str) -> str:
    """Keyword arguments in their call; other code as it is."""
    name = re.match(r"(\w+)=", code)
    if name is None:
        return code
    return next(call for names, call in CALLS.items() if name[1] in names).format(code)


@pytest.fixture(scope="module")
def names(tmp_path_factory: pytest.TempPathFactory) -> dict[str, Any]:
    """What the tables take for granted, in a folder with their files."""
    folder = tmp_path_factory.mktemp("tables")
    for name in ("dimer.xyz", "traj.xyz", "ref.xyz"):
        shutil.copy(FORMAMIDES / "formamide-dimer.xyz", folder / name)
    for name in ("a.xyz", "b.xyz"):
        shutil.copy(FORMAMIDES / "formamide.xyz", folder / name)
    (folder / "poses.csv").write_text("r,theta,phi,alpha,beta,gamma\n4,90,0,0,30,0\n")
    pair = dravo.read(folder / "dimer.xyz", split=6)
    placer = dravo.Placer(pair)
    poses = dravo.grid(r="3.2,4", pair=pair)
    one, two = pair.molecules
    return {
        "folder": folder,
        "dravo": dravo,
        "pair": pair,
        "placer": placer,
        "pose": placer.pose(),
        "poses": poses,
        "rows": poses.rows(),
        "batch": dravo.scan(placer, poses).rest(),
        "found": pair.identify(),
        "energies": [-1.0, -2.0],
        "atoms": pair.to_ase(),
        "symbols": pair.symbols,
        "positions": pair.positions,
        "one": one,
        "two": two,
    }


def test_there_are_many() -> None:
    assert len(snippets()) > 40


@pytest.mark.parametrize("code", snippets())
def test_can_be_run(code: str, names: dict[str, Any], monkeypatch: pytest.MonkeyPatch) -> None:
    if BY_ENGINE.search(code) and not (BUILD / "dravo-xtb-worker").exists():
        pytest.skip("a build without libxtb")
    monkeypatch.chdir(names["folder"])
    monkeypatch.setenv("PATH", str(BUILD), prepend=":")
    if '"big"' in code and not Path("big.csv").exists():
        dravo.run("scan", "dimer.xyz", split=6, r="3.2,4", table=True, output="big", quiet=True)
    for written in ("pair.svg", "pair.html", "pair.xyz", "new.xyz"):
        Path(written).unlink(missing_ok=True)
    eval(code, {**names})
