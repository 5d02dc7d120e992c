"""Pages with blocks of Python: every block is run, and prints what stands below it."""

import doctest
import os
import re
import shutil
from pathlib import Path

import dravo
import pytest

SOURCES = Path(__file__).resolve().parents[2]
PAGE = SOURCES / "docs/python.md"
EXAMPLES = Path(os.environ["DRAVO_EXAMPLES"])
BUILD = Path(os.environ["DRAVO_PROGRAM"]).parent
FILES = [
    "formamide-dimer/formamide-dimer.xyz",
    "formamide-dimer/formamide.xyz",
    "argon-hcn/argon.xyz",
    "argon-hcn/hcn.xyz",
]
#: With how many examples each has at least.
PAGES = [
    ("docs/accuracy.md", 9),
    ("docs/conventions.md", 15),
    ("docs/python.md", 60),
    ("docs/tutorial/python.md", 30),
    ("README.md", 4),
]


def test_no_page_with_python_is_left_out() -> None:
    pages = {path.relative_to(SOURCES).as_posix() for path in SOURCES.glob("docs/**/*.md")}
    with_python = {page for page in pages if "```python\n" in (SOURCES / page).read_text()}
    assert with_python | {"README.md"} == {page for page, _ in PAGES}


def only_python(page: str) -> str:
    """The page with everything blank but its blocks of Python, so that lines keep their numbers."""
    inside = False
    lines = []
    for line in page.splitlines():
        fence = line.startswith("```")
        lines.append(line if inside and not fence else "")
        if fence:
            inside = line == "```python"
    return "\n".join(lines) + "\n"


def test_the_page_has_its_blocks_and_nothing_else() -> None:
    page = "text >>> 1\n```python\n>>> 2\n2\n```\n```\n>>> 3\n```\nmore\n"
    assert only_python(page) == "\n\n>>> 2\n2\n\n\n\n\n\n"


@pytest.mark.skipif(not (BUILD / "dravo-xtb-worker").exists(), reason="a build without libxtb")
@pytest.mark.parametrize("page, fewest", PAGES)
def test_every_block_prints_what_the_page_shows(
    page: str, fewest: int, tmp_path: Path, monkeypatch: pytest.MonkeyPatch
) -> None:
    for name in FILES:
        shutil.copy(EXAMPLES / name, tmp_path)
    (tmp_path / "examples").symlink_to(EXAMPLES)
    monkeypatch.chdir(tmp_path)
    monkeypatch.setenv("PATH", str(BUILD), prepend=":")

    text = only_python((SOURCES / page).read_text())
    examples = doctest.DocTestParser().get_doctest(text, {}, page, page, 0)
    # A line without a prompt in front would be one that nobody runs.
    assert len(re.findall("^>>> ", text, re.MULTILINE)) == len(examples.examples) >= fewest
    report: list[str] = []
    failed, _ = doctest.DocTestRunner(optionflags=doctest.ELLIPSIS).run(examples, out=report.append)
    assert failed == 0, "".join(report)


def test_what_the_page_mentions_exists() -> None:
    """Also between the blocks: dravo.something, placer.something, methods of pairs and batches."""
    pair = dravo.read(EXAMPLES / "formamide-dimer/formamide-dimer.xyz", split=6)
    placer = dravo.Placer(pair)
    objects = {
        "dravo": dravo,
        "pair": pair,
        "placer": placer,
        "batch": dravo.scan(placer, [[4.0, 90, 0, 0, 0, 0]]).rest(),
        "page": pair.view(),
        "molecule": pair.molecules[0],
    }
    name = rf"(?<![\w./\"-])({'|'.join(objects)})\.([a-zA-Z_]\w*)"
    mentioned = re.findall(name, PAGE.read_text())
    names = {(of, name) for of, name in mentioned if name not in ("xyz", "svg", "html")}
    assert len(names) > 40
    assert {(of, name) for of, name in names if not hasattr(objects[of], name)} == set()
