"""What is raised, with its attributes, in the words of Python."""

from __future__ import annotations

from pathlib import Path
from typing import Any, Callable

import numpy as np
import pytest
from commands import ARGON_HCN, EXAMPLES, FORMAMIDES

import dravo

WATER = "3\n\nO 0 0 0.117\nH 0 0.757 -0.469\nH 0 -0.757 -0.469\n"


@pytest.mark.parametrize(
    "error, others",
    [
        (dravo.InputError, [ValueError]),
        (dravo.OutOfRange, [ValueError]),
        (dravo.NoUniqueFrame, []),
        (dravo.NoRotationFound, []),
        (dravo.EngineError, [RuntimeError]),
        (dravo.FileError, [OSError]),
    ],
)
def test_hierarchy(error: type[dravo.Error], others: list[type[Exception]]) -> None:
    assert issubclass(dravo.Error, Exception)
    assert issubclass(error, dravo.Error)
    for builtin in (ValueError, RuntimeError, OSError, ArithmeticError, LookupError):
        assert issubclass(error, builtin) == (builtin in others)


@pytest.mark.parametrize(
    "broken, line, column, words",
    [
        (WATER.replace("0.757", "0.7S7"), 4, 5, "0.7S7"),
        (WATER.replace("-0.469\n", "\n"), 4, 10, ""),
        (WATER.replace("O 0", "Qq 0"), 3, 1, "Qq"),
        (WATER.replace("3\n", "three\n", 1), 1, 1, "three"),
        (WATER.replace("3\n", "4\n", 1), 6, 0, ""),
    ],
)
@pytest.mark.parametrize("name", ["broken.xyz", "ein Wasser \N{GREEK SMALL LETTER ALPHA}.xyz"])
def test_a_broken_file_is_told_with_its_place(
    name: str, broken: str, line: int, column: int, words: str
) -> None:
    Path(name).write_text(broken)
    for call in (lambda: dravo.read_molecule(name), lambda: dravo.read(name, split=1)):
        with pytest.raises(dravo.InputError) as failure:
            call()
        found = failure.value
        assert (found.file, found.line) == (name, line)
        assert column in (0, found.column)
        assert str(found).startswith(f"{name}:{line}") and words in str(found)


def test_input_that_came_from_no_file_has_no_place() -> None:
    with pytest.raises(dravo.InputError) as failure:
        dravo.Molecule(["Qq"], [[0, 0, 0]])
    assert (failure.value.file, failure.value.line, failure.value.column) == ("", 0, 0)


def test_out_of_range() -> None:
    placer = dravo.Placer(FORMAMIDES.read())
    with pytest.raises(dravo.OutOfRange, match="^beta 200: 0 <= beta <= 180; beta 160") as failure:
        placer.place(r=4, beta=200)
    found = failure.value
    assert (found.name, found.value, found.lowest, found.highest) == ("beta", 200, 0, 180)


def test_no_unique_frame() -> None:
    pair = ARGON_HCN.read()
    calls: list[Callable[[], object]] = [
        lambda: dravo.Placer(pair, placing="as_qn_dravo"),
        lambda: pair.molecules[0].frame(frames="strict"),
    ]
    for call in calls:
        with pytest.raises(dravo.NoUniqueFrame) as failure:
            call()
        assert failure.value.molecules and set(failure.value.molecules) <= {1, 2}
        assert len(failure.value.reasons) == len(failure.value.molecules)
        assert all(reason in str(failure.value) for reason in failure.value.reasons)
    water = dravo.read(EXAMPLES / "water-dimer/water-dimer.xyz", split=3)
    with pytest.raises(dravo.NoUniqueFrame):
        water.identify(frames="strict")
    with pytest.raises(dravo.NoUniqueFrame, match="frame 1"):
        dravo.identify_many([water], rule="strict")


def test_files_that_the_system_refuses(folder: Path) -> None:
    pair = FORMAMIDES.read()
    calls: list[Callable[[], object]] = [
        lambda: dravo.read("none.xyz", split=6), lambda: dravo.read_molecule("none.xyz"),
        lambda: dravo.identify_many("none.xyz", split=6), lambda: pair.write("none/pair.xyz"),
        lambda: pair.draw("none/pair.svg"), lambda: pair.view().save("none/pair.html"),
        lambda: dravo.zipped("none.csv"), lambda: dravo.view("none"),
    ]  # fmt: skip
    for number, call in enumerate(calls):
        with pytest.raises(dravo.FileError, match="none"):
            call()
            pytest.fail(f"call {number} raised nothing")
    assert list(folder.iterdir()) == []


def test_files_that_exist_stay() -> None:
    pair = FORMAMIDES.read()
    calls: dict[str, Callable[..., object]] = {
        "pair.xyz": pair.write, "pair.svg": pair.draw, "pair.html": pair.view().save,
    }  # fmt: skip
    for name, call in calls.items():
        Path(name).write_text("mine")
        with pytest.raises(dravo.FileError, match=f"{name}: the file exists; overwrite=True"):
            call(name)
        assert Path(name).read_text() == "mine"
        call(name, overwrite=True)
        assert Path(name).read_text() != "mine"


def test_engines_that_fail() -> None:
    pair = FORMAMIDES.read()
    with pytest.raises(dravo.EngineError):
        dravo.energies(pair, [[4, 90, 0, 0, 30, 0]], "command", run="false {xyz}", read="(.*)")
    with pytest.raises(dravo.InputError, match="gfn3"):
        pair.energy("gfn3")
    with pytest.raises(dravo.InputError):
        pair.energy("gfn2", charges=(0, 0, 0))


formamides = FORMAMIDES.read()
placer = dravo.Placer(formamides)
REFUSED: list[Callable[[], Any]] = [
    lambda: dravo.read(EXAMPLES / "formamide-dimer/formamide-dimer.xyz"),
    lambda: dravo.read(EXAMPLES / "formamide-dimer/formamide-dimer.xyz", split=4),
    lambda: dravo.read(EXAMPLES / "formamide-dimer/formamide-dimer.xyz", split=12),
    lambda: dravo.read(EXAMPLES / "formamide-dimer/formamide-dimer.xyz", split="bonds"),
    lambda: dravo.read(EXAMPLES / "formamide-dimer/formamide-dimer.xyz", split=True),
    lambda: dravo.read(EXAMPLES / "formamide-dimer/formamide-dimer.xyz", split=6, frame=2),
    lambda: dravo.read(EXAMPLES / "formamide-dimer/formamide-dimer.xyz", split=6, frame=0),
    lambda: dravo.read(EXAMPLES / "formamide-dimer/formamide-dimer.xyz", split=6, unit="feet"),
    lambda: dravo.read(EXAMPLES / "formamide-dimer/formamide-dimer.xyz", split=6, unit="bohr"),
    lambda: dravo.read(EXAMPLES / "argon-hcn/hcn.xyz", EXAMPLES / "argon-hcn/hcn.xyz", split=3),
    lambda: dravo.Pair(formamides.symbols, formamides.positions),
    lambda: dravo.Pair(formamides.symbols, formamides.positions, 5),
    lambda: dravo.Pair(formamides.molecules[0]),
    lambda: dravo.Placer(formamides.molecules[0]),
    lambda: dravo.Placer(formamides, formamides.molecules[1]),
    lambda: dravo.Placer(dravo.Pair(*formamides.molecules), formamides.molecules[1]),
    lambda: dravo.Placer(formamides, placing="roughly"),
    lambda: dravo.Placer(formamides, contact_distance="near"),
    lambda: dravo.Placer(formamides, contact_distance=-1),
    lambda: dravo.Placer(formamides, like=ARGON_HCN.read()),
    lambda: dravo.Placer(ARGON_HCN.read()).place(),
    lambda: dravo.Placer(ARGON_HCN.read()).place(r="here+1"),
    lambda: dravo.Placer(FORMAMIDES.read(), placing="as_qn_dravo").place(keep_frame=True),
    lambda: placer.place(r="near"),
    lambda: placer.place(r=[4]),
    lambda: formamides.identify(frames="loose"),
    lambda: formamides.molecules[0].frame(role=3),
    lambda: formamides.contacts("vdw*9"),
    lambda: formamides.closest(-1),
    lambda: dravo.grid(r=4),
    lambda: dravo.grid(r="3:", pair=formamides),
    lambda: dravo.grid(r=[], pair=formamides),
    lambda: dravo.grid(r="contact + here", pair=formamides),
    lambda: dravo.grid(r="here", theta=0, phi=0, alpha=0, beta=0, gamma=0),
    lambda: dravo.random(0, r=4),
    lambda: dravo.random(5),
    lambda: dravo.random(5, r=4, seed=-1),
    lambda: dravo.scan(placer, dravo.random(5, r=4), contacts="none"),
    lambda: dravo.scan(placer, dravo.random(5, r=4), keep_below=1).rest(),
    lambda: dravo.scan(placer, [[4, 0, 0, 0, 0, 0]], unique=True).rest(),
    lambda: dravo.identify_many(np.zeros((2, 12, 3))),
    lambda: dravo.identify_many([]),
    lambda: dravo.identify_many([formamides, ARGON_HCN.read()]),
    lambda: dravo.dock(formamides, starts=3, time=5),
    lambda: dravo.dock(formamides, starts=0),
    lambda: dravo.dock(formamides, search="command"),
    lambda: dravo.energy(formamides, "command"),
    lambda: formamides.draw("pair.gif"),
    lambda: formamides.draw(view="behind"),
    lambda: formamides.draw(size=(1, 1)),
    lambda: formamides.draw(size=5),
    lambda: formamides.draw(theme="pink"),
    lambda: dravo.view(formamides, [[4, 0, 0, 0, 0, 0]], {"e": [1, 2]}),
    lambda: dravo.view(formamides, [[4, 0, 0, 0, 0, 0]], {"e": [1]}, colour="f"),
    lambda: dravo.view(formamides, []),
    lambda: dravo.run("scan", EXAMPLES / "formamide-dimer/formamide-dimer.xyz", threads=-1),
]


@pytest.mark.parametrize("number", range(len(REFUSED)))
def test_what_cannot_be_is_told_in_words_of_python(number: int) -> None:
    with pytest.raises(dravo.InputError) as failure:
        REFUSED[number]()
    message = str(failure.value)
    assert message.strip() and "--" not in message and "Traceback" not in message
    assert message != "Unknown error" and len(message) < 1000


@pytest.mark.parametrize(
    "call",
    [
        lambda: dravo.read(),  # type: ignore[call-arg]
        lambda: formamides.draw(colour="red"),
        lambda: placer.place(radius=4),
        lambda: dravo.energy(formamides, "gfn2", charge=1),
    ],
)
def test_arguments_of_other_names_are_type_errors(call: Callable[[], object]) -> None:
    with pytest.raises(TypeError):
        call()


@pytest.mark.parametrize("text", ["a\0b.xyz", "\udcff.xyz", b"\xff.xyz", "", "x" * 5000])
def test_odd_names_of_files(text: Any) -> None:
    with pytest.raises(dravo.Error):
        dravo.read(text, split=6)


FORMAMIDE_FILE = EXAMPLES / FORMAMIDES.files[0]
FROM_CONTACT = dravo.grid(r="contact + 0:1:0.5", pair=formamides)
ADVICE: list[tuple[Callable[[], Any], str]] = [
    (lambda: dravo.read(FORMAMIDE_FILE), "use split=N1, the number of atoms of molecule 1"),
    (lambda: dravo.read(FORMAMIDE_FILE), 'or split="auto", by bonds'),
    (lambda: dravo.read(FORMAMIDE_FILE, split=4), "check=False accepts the pair as it is"),
    (lambda: dravo.grid(r=4, phi=0), "expected values for theta, alpha, beta, gamma; or pair="),
    (lambda: dravo.random(5, r="here + 1"), "r='here + 1': here needs pair="),
    (lambda: formamides.identify(like=placer), "like: expected a Pair, found <dravo.Placer of"),
    (lambda: placer.place(4), "pose: expected an array of 6 numbers, found a single number"),
    (lambda: FROM_CONTACT[0], "placer.rows(poses) has the whole distances"),
    (lambda: list(FROM_CONTACT), "placer.rows(poses)"),
    (lambda: FROM_CONTACT.rows(), "placer.rows(poses)"),
    (lambda: dravo.run("place", FORMAMIDE_FILE, r=4), "use split=N1"),
]


@pytest.mark.parametrize("call, words", ADVICE)
def test_errors_say_what_to_do(call: Callable[[], object], words: str) -> None:
    with pytest.raises(dravo.InputError) as failure:
        call()
    assert words in str(failure.value)


@pytest.mark.parametrize(
    "use",
    [
        lambda pair: pair.identify(), lambda pair: pair.survey(), lambda pair: pair.contacts(),
        lambda pair: pair.closest(), lambda pair: pair.hydrogen_bonds(),
        lambda pair: pair.energy("gfnff"), lambda pair: pair.to_ase(),
        lambda pair: pair.write("pair.xyz"), lambda pair: formamides.identify(like=pair),
    ],
)  # fmt: skip
def test_molecules_of_two_files_do_not_say_how_they_stand(
    use: Callable[[dravo.Pair], object], folder: Path
) -> None:
    for pair in (ARGON_HCN.read(), dravo.Pair(*formamides.molecules)):
        with pytest.raises(dravo.InputError, match="place them first"):
            use(pair)
    assert list(folder.iterdir()) == []


def test_everything_is_named_as_people_import_it() -> None:
    for name in dravo.__all__:
        if name != "__version__":
            assert getattr(dravo, name).__module__ == "dravo", name
    assert str(pytest.raises(dravo.InputError, dravo.Poses, "x").type) == "<class 'dravo.InputError'>"
