"""Calls leave no memory behind."""

from __future__ import annotations

import gc
import os
from pathlib import Path
from typing import Any, Callable

import numpy as np
import pytest
from commands import FORMAMIDES

import dravo

pair = FORMAMIDES.read()
placer = dravo.Placer(pair)
rows = dravo.random(200, r=5.0).rows()
frames = placer.positions(rows[:20])
symbols = pair.symbols


def raising() -> None:
    for wrong in ([[4, 200, 0, 0, 0, 0]], [[np.nan] * 6]):
        try:
            placer.positions(wrong)
        except dravo.Error:
            pass


def abandoned() -> None:
    next(dravo.scan(placer, dravo.random(10**9, r=5), batch=10))


#: with how often they are called
CALLS: dict[str, tuple[Callable[[], Any], int]] = {
    "identify": (pair.identify, 10_000),
    "place": (lambda: placer.placed_pair(r=5.0), 10_000),
    "survey": (lambda: placer.survey(dravo.Pose(4.0)), 10_000),
    "positions": (lambda: placer.positions(rows[:5]), 10_000),
    "scan": (lambda: dravo.scan(placer, rows[:5], positions=True, threads=1).rest(), 10_000),
    "abandoned scan": (abandoned, 100),
    "identify_many": (
        lambda: dravo.identify_many(frames, symbols=symbols, split=6, threads=1), 500,
    ),
    "pairs": (lambda: dravo.Placer(dravo.Pair(symbols, frames[0], 6)), 3_000),
    "grids": (lambda: dravo.grid(r="3:7:0.1", pair=placer)[0], 3_000),
    "errors": (raising, 3_000),
    "pictures": (pair.draw, 200),
    "pages": (lambda: pair.view().html, 60),
}  # fmt: skip


def resident() -> int:
    """Bytes that the process holds in memory; tracemalloc does not see those of C++."""
    pages = int(Path("/proc/self/statm").read_text().split()[1])
    return pages * os.sysconf("SC_PAGE_SIZE")


def growth(call: Callable[[], Any], times: int) -> int:
    """Bytes that calls leave behind."""
    before = resident()
    for _ in range(times):
        call()
    gc.collect()
    return resident() - before


@pytest.mark.parametrize("name", CALLS)
def test_calls_leave_nothing_behind(name: str) -> None:
    call, times = CALLS[name]
    growth(call, times // 5 + 20)  # until the allocators have what they need
    # The smallest that any of these makes, 12 atoms or an exception, has some 300 bytes.
    limit = max(300 * times, 1_500_000) * 0.5
    # Buffers of threads come and go, by a megabyte; what leaks does so every time.
    grown = [growth(call, times)]
    while grown[-1] >= limit and len(grown) < 3:
        grown.append(growth(call, times))
    print(f"{name}: {[size // 1024 for size in grown]} KiB in {times} calls")
    assert grown[-1] < limit


def test_a_leak_would_be_seen() -> None:
    kept = []
    before = resident()
    for _ in range(10_000):
        kept.append(placer.placed_pair(r=5.0))
    assert resident() - before > 300 * 10_000 * 0.5


def test_large_results_are_freed() -> None:
    many = dravo.random(100_000, r=5.0).rows()
    size = placer.positions(many).nbytes
    before = resident()
    for _ in range(8):
        placer.positions(many)
        dravo.scan(placer, many, positions=True).rest()
    assert resident() - before < 5 * size
