"""Everything public has a docstring, every function an example, and the examples tell the truth."""

from __future__ import annotations

import doctest
import inspect
import shutil
from pathlib import Path
from typing import Any, Iterator

import pytest
from commands import ARGON_HCN, EXAMPLES, FORMAMIDES, atom_rows

import dravo

NAMES = {name: getattr(dravo, name) for name in dravo.__all__}
FLAGS = doctest.ELLIPSIS | doctest.NORMALIZE_WHITESPACE


def documented() -> Iterator[tuple[str, Any]]:
    """Everything public: functions, classes, and what these have of their own."""
    for name, thing in NAMES.items():
        if not callable(thing):
            continue
        yield name, thing
        if not inspect.isclass(thing) or issubclass(thing, Exception):
            continue
        for member, value in vars(thing).items():
            value = getattr(value, "__func__", value)
            own = inspect.isfunction(value) or isinstance(value, property)
            if own and not member.startswith("_"):
                yield f"{name}.{member}", value


THINGS = dict(documented())
EXAMPLES_OF = {
    name: test
    for name, thing in THINGS.items()
    for test in doctest.DocTestFinder(recurse=False).find(thing, name, globs=dict(NAMES))
    if test.examples
}


@pytest.fixture(autouse=True)
def files(folder: Path) -> None:
    """What the examples read: a dimer, two molecules, an atom, and three frames of the dimer."""
    for source in ("formamide-dimer/formamide-dimer.xyz", "formamide-dimer/formamide.xyz"):
        shutil.copy(EXAMPLES / source, folder)
    for source in ARGON_HCN.files:
        shutil.copy(EXAMPLES / source, folder)
    pair = FORMAMIDES.read()
    placer = dravo.Placer(pair)
    frames = []
    for r in (3.0, 3.5, 4.0):
        atoms = atom_rows(placer.placed_pair(r=r).positions)
        frames += [str(len(pair)), f"r={r}"]
        frames += [f"{symbol} {' '.join(xyz)}" for symbol, xyz in zip(pair.symbols, atoms)]
    Path("trajectory.xyz").write_text("\n".join(frames) + "\n")


@pytest.mark.parametrize("name", THINGS)
def test_has_a_docstring(name: str) -> None:
    words = inspect.getdoc(THINGS[name])
    assert words, f"{name} has no docstring"
    assert not words.startswith((f"{name}(", "Alias for field", "built-in"))


FUNCTIONS = [name for name, thing in NAMES.items() if inspect.isfunction(thing)]


@pytest.mark.parametrize("name", FUNCTIONS)
def test_function_has_an_example(name: str) -> None:
    assert name in EXAMPLES_OF


@pytest.mark.parametrize("name", ["Molecule", "Pair", "Placer", "Pose", "Poses", "Method"])
def test_class_that_people_make_has_an_example(name: str) -> None:
    assert name in EXAMPLES_OF


@pytest.mark.parametrize("name", EXAMPLES_OF)
def test_example_tells_the_truth(name: str) -> None:
    told: list[str] = []
    runner = doctest.DocTestRunner(optionflags=FLAGS)
    failed, tried = runner.run(EXAMPLES_OF[name], out=told.append)
    assert tried and not failed, "".join(told)


def test_the_first_words_of_the_package_name_nothing_that_is_not_there() -> None:
    words = inspect.getdoc(dravo)
    assert words
    code = "\n".join(line for line in words.splitlines() if line.startswith("    "))
    Path("dimer.xyz").write_bytes(Path("formamide-dimer.xyz").read_bytes())
    exec(compile(inspect.cleandoc(code), "help(dravo)", "exec"), {})
