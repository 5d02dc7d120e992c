"""Ctrl-C ends every long call at once, and leaves nothing behind."""

from __future__ import annotations

import os
import signal
import subprocess
import sys
import time
from pathlib import Path

import pytest
from commands import EXAMPLES

#: seconds; a call is to end within 0.2, and this machine may be busy with other tests
LONGEST = 0.5
WORKING = 0.4

BEFORE = """
import sys, time
import numpy as np
import dravo

pair = dravo.read({file!r}, split=6)
placer = dravo.Placer(pair)
sleeping = dravo.Method("command", run="sleep 5; echo {{xyz}}", read="(.*)")
frames = np.tile(pair.positions, (800_000, 1, 1)) if {many} else None
print("begins", flush=True)
try:
    {call}
except KeyboardInterrupt:
    told = time.monotonic()
else:
    told = -1.0
# Everything works as before.
assert placer.positions([[4, 90, 0, 0, 30, 0]]).shape == (1, 12, 3)
assert len(dravo.scan(placer, [[4, 90, 0, 0, 30, 0]]).rest()) == 1
print("ends", told, flush=True)
sys.exit(7)
"""

CALLS = {
    "positions": "placer.positions(np.zeros((20_000_000, 6)))",
    "scan": "dravo.scan(placer, dravo.random(10**12, r=5), batch=10**9).rest()",
    "scan that drops all": (
        'next(dravo.scan(placer, dravo.random(10**12, r=0), contacts="drop", batch=10**9))'
    ),
    "poses above contact": "dravo.scan(placer, dravo.random(10**9, r='contact+0')).rest()",
    "loop": "for batch in dravo.scan(placer, dravo.random(10**12, r=5), batch=100): pass",
    "identify_many": "dravo.identify_many(frames, symbols=pair.symbols, split=6)",
    "energies": 'dravo.energies(placer, dravo.random(5000, r=5), "gfn2")',
    "energies by a command": "dravo.energies(placer, dravo.random(10, r=5), sleeping)",
    "energy by a command": "pair.energy(sleeping)",
    "dock": 'dravo.dock(pair, search="gfn2")',
    "list of poses": "for _ in range(100): dravo.Poses(np.zeros((5_000_000, 6)))",
    "rows of poses": "dravo.random(50_000_000, r=5).rows()",
    "poses in a loop": "for pose in dravo.random(10**12, r=5): pass",
    "command": 'dravo.run("scan", {file!r}, split=6, r=5, random=10**9, count=True, quiet=True)',
}


def processes_of(session: int) -> list[str]:
    """The names of those that run in a session."""
    names = []
    for status in Path("/proc").glob("[0-9]*/stat"):
        try:
            name, rest = status.read_text().rsplit(")", 1)
        except OSError:
            continue
        fields = rest.split()
        if int(fields[3]) == session and fields[0] != "Z":
            names.append(name)
    return names


@pytest.mark.parametrize("name", CALLS)
def test_control_c_ends(name: str) -> None:
    file = str(EXAMPLES / "formamide-dimer" / "formamide-dimer.xyz")
    call = CALLS[name].format(file=file)
    script = BEFORE.format(file=file, call=call, many="frames" in call)
    child = subprocess.Popen(
        [sys.executable, "-c", script],
        stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, start_new_session=True,
    )  # fmt: skip
    try:
        assert child.stdout
        assert child.stdout.readline() == "begins\n"
        time.sleep(WORKING)
        assert child.poll() is None
        sent = time.monotonic()
        os.kill(child.pid, signal.SIGINT)
        out, err = child.communicate(timeout=20)
    finally:
        child.kill()
        child.wait()
    assert err == "" and child.returncode == 7
    word, told = out.split()
    assert word == "ends"
    print(f"{name}: {float(told) - sent:.3f} s")
    assert 0 <= float(told) - sent < LONGEST
    end = time.monotonic() + 2
    while processes_of(child.pid) and time.monotonic() < end:
        time.sleep(0.05)
    assert processes_of(child.pid) == []
