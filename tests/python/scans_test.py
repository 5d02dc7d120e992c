"""Scans, energies and dockings: every number is that of the tables of the commands."""

from __future__ import annotations

from pathlib import Path
from typing import Any

import numpy as np
import pytest
from commands import (
    ARGON_HCN, FORMAMIDES, PAIRS, Example, assert_same_table, atom_rows, command, frames_of,
    options, rows_of,
)  # fmt: skip

import dravo

every_pair = pytest.mark.parametrize("example", PAIRS, ids=str)


def assert_scanned_as_the_command(
    example: Example,
    plan: dict[str, Any],
    *,
    exact: bool = False,
    contact_distance: str = "",
    **wanted: Any,
) -> None:
    near = {"contact_distance": contact_distance} if contact_distance else {}
    placer = dravo.Placer(example.read(), placing="exact" if exact else "automatic", **near)
    made = dict(plan)
    if "random" in made:
        poses = dravo.random(made.pop("random"), pair=placer, **made)
    else:
        poses = dravo.grid(pair=placer, **made)
    found = dravo.scan(placer, poses, positions=True, **wanted).rest()
    assert len(poses) == found.looked_at
    words = options({**plan, **wanted, **near, **({"exact": True} if exact else {})})
    command("scan", *example.words(), *words, "--quiet", "--overwrite", "--output", "made")
    assert_same_table(found.table(), "made.csv")
    frames = frames_of(Path("made.xyz").read_text())
    assert found.positions is not None
    assert [atom_rows(atoms, placer.exact) for atoms in found.positions] == [f[2] for f in frames]
    assert all(symbols == placer.symbols for _, symbols, _ in frames)


GRID = {"r": "2.5:5.5:1", "theta": "0,33.5,180", "phi": "-30,200", "beta": "0:180:90"}


@every_pair
@pytest.mark.parametrize("exact", [False, True], ids=["automatic", "exact"])
def test_grids(example: Example, exact: bool) -> None:
    assert_scanned_as_the_command(example, GRID, exact=exact)


@every_pair
def test_distances_above_the_first_contact(example: Example) -> None:
    plan = {"r": "contact + 0:1:0.5", "theta": "10:170:40", "phi": 15}
    assert_scanned_as_the_command(example, plan)


@every_pair
@pytest.mark.parametrize("contacts", ["drop", "only"])
def test_random_poses_with_and_without_contacts(example: Example, contacts: str) -> None:
    close = {"r": "1.5,4", "random": 60, "seed": 20240229}
    assert_scanned_as_the_command(example, close, contacts=contacts)


@every_pair
def test_contacts_by_radii(example: Example) -> None:
    plan = {"r": "2:5:1.5", "theta": 50, "gamma": "0,90"}
    assert_scanned_as_the_command(example, plan, contact_distance="vdw*0.9")


@every_pair
def test_equal_poses_once(example: Example) -> None:
    plan = {"r": 4, "theta": "0,90", "phi": "0:270:90", "alpha": 0, "beta": 90, "gamma": "0:330:30"}
    assert_scanned_as_the_command(example, plan, exact=True, unique=True)


def test_what_is_not_given_is_as_the_command_has_it() -> None:
    for example in PAIRS:
        assert_scanned_as_the_command(example, {"r": "4,5"})
        if not example.apart:
            assert_scanned_as_the_command(example, {"r": "here + 0:0.4:0.2", "phi": "here - 10"})


def test_zipped_lists() -> None:
    pair = FORMAMIDES.read()
    lines = ["3.3,90,358,0,90,270", "4.125,10,-20,30,40,750", "1,0,0,0,0,0"]
    Path("poses.csv").write_text("\n".join([",".join(dravo.Pose._fields), *lines, ""]))
    command("scan", *FORMAMIDES.words(), "--zip=poses.csv", "--exact", "--quiet", "--output=made")
    assert_same_table(dravo.scan(pair, dravo.zipped("poses.csv")).rest().table(), "made.csv")
    rows = [[float(number) for number in line.split(",")] for line in lines]
    assert_same_table(dravo.scan(pair, rows).rest().table(), "made.csv")
    assert np.array_equal(dravo.zipped("poses.csv"), rows)


def test_batches_of_any_size_in_any_number_of_threads_hold_the_same() -> None:
    placer = dravo.Placer(FORMAMIDES.read())
    poses = dravo.random(700, r="3,4,5", seed=3)
    whole = dravo.scan(placer, poses, contacts="drop", positions=True).rest()
    for threads, batch in [(1, 1), (0, 64), (3, 700), (5, 10_000)]:
        batches = list(
            dravo.scan(
                placer, poses, contacts="drop", positions=True, threads=threads, batch=batch
            )
        )
        assert sum(part.looked_at for part in batches) == len(poses)
        firsts = [1, *np.cumsum([part.looked_at for part in batches])[:-1] + 1]
        assert [part.first_index for part in batches] == firsts
        for name in ("index", "poses", "applied", "shortest", "clearance", "positions"):
            parts = np.concatenate([getattr(part, name) for part in batches])
            assert np.array_equal(parts, getattr(whole, name)), name
    assert np.array_equal(whole.positions, placer.positions(whole.poses))
    assert np.array_equal(whole.poses, poses.rows()[whole.index - 1])


@pytest.mark.parametrize("example", [FORMAMIDES, ARGON_HCN], ids=str)
def test_energies(example: Example) -> None:
    plan = {"r": "0.6:5.6:1", "theta": 90, "beta": "0,90"}
    pair = example.read()
    placer = dravo.Placer(pair)  # poses with energies are exact ones
    poses = dravo.grid(pair=placer, **plan)
    words = ["--energy=gfnff", "--table", "--quiet", "--output=made"]
    command("scan", *example.words(), *options(plan), *words)
    assert_same_table(dravo.scan(placer, poses, energy="gfnff").rest().table(), "made.csv")
    rows = rows_of("made.csv")
    assert {row["status"] for row in rows} >= {"ok", "clash"}
    found = dravo.energies(placer, poses, "gfnff", threads=1)
    assert found.status.tolist() == [row["status"] for row in rows]
    assert [f"{e:.6f}" for e in found.energy] == [row["e_int_kcal_mol"] or "nan" for row in rows]
    lowest = [float(row["e_int_kcal_mol"] or "inf") for row in rows]
    assert found.argmin() == int(np.argmin(lowest))
    assert found.best == poses[found.argmin()] and np.array_equal(found.poses, poses.rows())

    command("scan", *example.words(), *options(plan), *words, "--keep-below=0", "--overwrite")
    kept = dravo.scan(placer, poses, energy="gfnff", keep_below=0).rest()
    assert 0 < len(kept) < len(poses)
    assert_same_table(kept.table(), "made.csv")


def test_energies_by_a_command() -> None:
    # The x of the first atom, and of the seventh with the other sign.
    line = "awk 'NR == 3 {x = $2} NR == 9 {x -= $2} END {print \"energy\", x / 1000}' {xyz}"
    method = dravo.Method("command", run=line, read="energy (.*)", read_unit="kcal/mol")
    pair = FORMAMIDES.read()
    poses = dravo.grid(r="4:6:1", theta=90, phi=0, alpha=0, beta=90, gamma=0)
    found = dravo.energies(pair, poses, method)
    words = ["--exact", "--energy=command", f"--run={line}", "--read=energy (.*)"]
    words += ["--read-unit=kcal/mol", "--table", "--quiet", "--output=made"]
    plan = {"r": "4:6:1", "theta": 90, "phi": 0, "alpha": 0, "beta": 90, "gamma": 0}
    command("scan", *FORMAMIDES.words(), *options(plan), *words)
    assert [f"{e:.6f}" for e in found.energy] == [
        row["e_int_kcal_mol"] for row in rows_of("made.csv")
    ]
    # The molecules alone have always the same energies.
    x = dravo.Placer(pair).positions(poses)[:, :, 0]
    assert np.allclose(np.diff(found.energy), np.diff(x[:, 0] - x[:, 6]) / 1000, atol=2e-6)


def test_energy_of_the_pair_as_it_stands() -> None:
    found = FORMAMIDES.read().energy("gfnff", forces=True)
    assert found.status == "ok"
    told = command("energy", *FORMAMIDES.words(), "--energy=gfnff").splitlines()[0]
    assert told == f"interaction energy  {found.energy:.6f} kcal/mol"
    # The force is the slope of the energy along the coordinates.
    pair, step = FORMAMIDES.read(), 1e-3
    energies = []
    for shift in (-step, step):
        moved = pair.positions
        moved[: pair.n1, 1] += shift
        energies.append(dravo.Pair(pair.symbols, moved, pair.n1).energy("gfnff").energy)
    assert found.force is not None
    assert found.force[1] == pytest.approx(-(energies[1] - energies[0]) / (2 * step), abs=0.02)


def test_docks_as_the_command() -> None:
    given = {"search": "gfnff", "score": "gfnff", "starts": 12, "seed": 7}
    pair = FORMAMIDES.read()
    found = dravo.dock(pair, **given)
    command("dock", *FORMAMIDES.words(), *options(given), "--quiet", "--output=docked")
    rows = rows_of("docked.csv")
    assert len(found) == len(rows) > 0 and found.starts_made == 12
    for rank, (minimum, row) in enumerate(zip(found, rows), 1):
        placed = found.placer.placed_pair(minimum.pose)
        survey = placed.survey("vdw*0.8")  # a docking counts contacts by radii
        assert {
            "rank": str(rank),
            "e_int_gfnff_kcal_mol": f"{minimum.energy:.6f}",
            "starts": str(minimum.starts),
            "refined": "yes" if minimum.refined else "no",
            "shortest": f"{survey.shortest:.8f}",
            "contacts": str(survey.contacts),
            "hydrogen_bonds": str(len(placed.hydrogen_bonds())),
        } == {name: row[name] for name in row if name not in dravo.Pose._fields}
        assert list(minimum.pose) == [float(row[name]) for name in dravo.Pose._fields]
    assert np.array_equal(found.poses[0], found[0].pose)
    assert [m.energy for m in dravo.dock(pair, **given, keep=1)] == [found[0].energy]
    assert list(dravo.dock(*pair.molecules, **given)) == list(found)


def test_a_docking_that_has_time() -> None:
    pair = ARGON_HCN.read()
    found = dravo.dock(pair, search="gfnff", score="gfnff", time=0.05)
    assert found.starts_made >= 1 and len(found) >= 1
    with pytest.raises(dravo.InputError, match="^time: expected"):
        dravo.dock(pair, time="soon")  # type: ignore[arg-type]


def test_pages_of_results_are_those_of_the_command() -> None:
    words = ["--r=3:5:0.5", "--theta=0:180:30", "--phi=0", "--alpha=0", "--beta=90", "--gamma=0"]
    command("scan", *FORMAMIDES.words(), *words, "--exact", "--table", "--quiet", "--output=map")
    command("dock", *ARGON_HCN.words(), "--starts=3", "--score=gfnff", "--quiet", "--output=docked")
    for name in ("map", "docked", "map.csv"):
        command("view", name, "--no-open", "-o", f"{name}.html")
        assert dravo.view(name).html == Path(f"{name}.html").read_text()
    placer = dravo.Placer(FORMAMIDES.read())
    poses = dravo.grid(r="3:5:0.5", theta="0:180:30", phi=0, alpha=0, beta=90, gamma=0)
    page = dravo.view(placer, poses, colour="shortest").html
    assert '"name":"shortest"' in page and '"shown":35,"of":35' in page
