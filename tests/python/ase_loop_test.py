"""A loop with ASE, which benchmarks/measure_python times, places a pair as the package does."""

import os
import sys
from pathlib import Path

import dravo
import numpy as np
import pytest

EXAMPLES = Path(os.environ["DRAVO_EXAMPLES"])
sys.path.append(str(EXAMPLES.parent / "benchmarks"))
import ase_loop  # type: ignore[import]  # noqa: E402

#: random ones, and singular ones
POSES = np.concatenate(
    [
        dravo.random(200, r=4.0, seed=3).rows(),
        [[0, 0, 0, 0, 0, 0], [4, 0, 30, 20, 0, 50]],
        [[5, 180, 0, 350, 180, 10], [3, 90, 90, 90, 90, 90]],
    ]
)


@pytest.mark.parametrize(
    "files, split",
    [
        (["formamide-dimer/formamide-dimer.xyz"], 6),
        (["watson-crick-pair/watson-crick-pair.xyz"], 15),
        (["water-dimer/water.xyz", "formamide-dimer/formamide.xyz"], None),
    ],
)
def test_same_positions(files: list[str], split: int | None) -> None:
    placer = dravo.Placer(dravo.read(*(EXAMPLES / file for file in files), split=split))
    made = ase_loop.positions(*ase_loop.both(placer), POSES)
    np.testing.assert_allclose(placer.positions(POSES), made, rtol=0, atol=1e-6)
