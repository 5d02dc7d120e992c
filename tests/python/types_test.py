"""Mypy holds for the package, sees what users do wrong, and the stub is that of the module."""

from __future__ import annotations

import re
import subprocess
import sys
from pathlib import Path

import dravo

HERE = Path(__file__).resolve().parent
SETTINGS = HERE.parent.parent / "pyproject.toml"
PACKAGE = Path(dravo.__file__).parent


def module(*words: str | Path) -> str:
    """Runs a module of Python in the folder of the test."""
    words = (sys.executable, "-m", *words)
    done = subprocess.run(words, capture_output=True, text=True, check=False)
    assert done.returncode in (0, 1), done.stderr
    assert done.stderr == ""
    return done.stdout


def test_types() -> None:
    wrong = HERE / "wrong_use.py"
    told = module("mypy", "--config-file", SETTINGS, PACKAGE, HERE / "typed_use.py", wrong)
    found: dict[int, list[str]] = {}
    for line in told.splitlines():
        if match := re.fullmatch(r"(.*):(\d+): error: .*\[([a-z-]+)\]", line):
            assert match[1].endswith(wrong.name), line
            found.setdefault(int(match[2]), []).append(match[3])
    expected = {}
    for number, line in enumerate(wrong.read_text().splitlines(), 1):
        if match := re.search(r"# \[(.*)\]$", line):
            expected[number] = match[1].split(", ")
    assert len(expected) > 10
    assert {number: sorted(codes) for number, codes in found.items()} == expected


def test_the_stub_is_that_of_the_module() -> None:
    told = module("mypy.stubtest", "--concise", "--mypy-config-file", SETTINGS, "dravo._core")
    # Classes of pybind11 have a metaclass, which matters to nobody.
    classes = ["EnergyModel", "Molecule", "Pair", "Placer", "Poses", "Scan"]
    allowed = [f"dravo._core.{name} is inconsistent, metaclass differs" for name in classes]
    assert sorted(told.splitlines()) == allowed
