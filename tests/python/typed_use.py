"""How a typed program uses the package. Mypy reads it; nobody runs it."""

from __future__ import annotations

from pathlib import Path
from typing import Iterator

import numpy as np
import numpy.typing as npt

import dravo

pair: dravo.Pair = dravo.read(Path("dimer.xyz"), split=6)
bonded: dravo.Pair = dravo.read("dimer.xyz", split="auto", unit="bohr", frame=2, check=False)
two: dravo.Pair = dravo.Pair(dravo.read_molecule("a.xyz"), dravo.read_molecule("b.xyz"))
listed: dravo.Pair = dravo.Pair(["He", 10], [[0, 0, 0], [0, 0, 3]], split=1)

found: dravo.Identification = pair.identify(frames="strict", like=bonded)
r: float = found.pose.r
matrix: npt.NDArray[np.float64] = found.frames[0].matrix
turns: npt.NDArray[np.float64] = found.rotations[1]
words: str = found.frames[1].axes[0].fixed_by

placer: dravo.Placer = dravo.Placer(pair, placing="automatic", contact_distance="vdw*0.8")
of_two: dravo.Placer = dravo.Placer(two.molecules[0], two.molecules[1])
placed: dravo.Pair = placer.placed_pair(r="here + 0.5", theta=90, keep_frame=True)
contacts: int = placer.survey(dravo.Pose(4.0, theta=90)).contacts

poses: dravo.Poses = dravo.grid(r="3:7:0.1", theta=range(0, 181, 10), phi=[0.5, 1], pair=placer)
pose: dravo.Pose = poses[0]
rows: npt.NDArray[np.float64] = poses[2:4]
xyz: npt.NDArray[np.float64] = placer.positions(poses, threads=2)
some: npt.NDArray[np.float64] = placer.positions([[4, 90, 0, 0, 30, 0]])


def shortest() -> Iterator[float]:
    with dravo.scan(placer, dravo.random(10, r=4, seed=1), contacts="drop", batch=5) as batches:
        for batch in batches:
            yield float(batch.shortest.min())
            count: npt.NDArray[np.int64] = batch.contacts
            atoms: npt.NDArray[np.float64] | None = batch.positions
            print(count, atoms, batch.table()["index"])


method = dravo.Method("command", run="engine {xyz}", read="(.*)", charges=(0, -1))
energies: dravo.Energies = dravo.energies(placer, poses, method, threads=1)
lowest: int = energies.argmin()
named: float = dravo.energies(pair, rows, "gfn2", charges=(0, 1)).energy[0]
one: float = dravo.energy(pair, "gfnff", forces=True).energy
minima: dravo.Docking = dravo.dock(pair, starts=10, keep=3)
energy_of_minimum: float = [minimum.energy for minimum in minima][0]
table: npt.NDArray[np.void] = dravo.identify_many("trajectory.xyz", split=6, unwrap=True)
picture: dravo.Picture = pair.draw("pair.svg", angles=True)
page: dravo.Page = dravo.view(placer, poses, {"e": energies.energy})
printed: str = dravo.run("scan", "dimer.xyz", split=6, output="scan")

try:
    placer.place(theta=200)
except dravo.OutOfRange as fault:
    limit: float = fault.highest
except dravo.InputError as fault:
    place: tuple[str, int, int] = (fault.file, fault.line, fault.column)
except dravo.NoUniqueFrame as refusal:
    molecules: list[int] = refusal.molecules
