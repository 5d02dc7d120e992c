"""Every block of code of the pages is held by a test, or stands here as one that is only read."""

import re
from collections.abc import Iterator
from pathlib import Path

SOURCES = Path(__file__).resolve().parents[2]
LIBRARY = "tests/docs/library_pages_test.cpp"
SHOWN = "tests/cli/examples_test.cpp"
SHELL = "tests/cli/tutorial_test.cpp"
PYTHON = "tests/python/docs_page_test.py"
READ = "read"

#: Which pages, which kinds of blocks, and what holds them. The first row that fits counts. Kinds: the name of a fence;
#: `output`, a fence without name below a command; `box`, another one; of lines that are indented `shown`, a command of
#: dravo with output below it, `dravo`, one without, and `shell`, all else.
TABLE = [
    ("docs/tutorial/.*|docs/gallery", "shown|dravo|shell|output", SHELL),
    ("docs/.*|README", "python", PYTHON),
    ("docs/pictures", "dravo", SHOWN),
    ("docs/(commands|contacts|energies|frames|quantum-chemistry|scan|trajectories)|README", "shown|output", SHOWN),
    ("docs/input", "box", "tests/docs/input_page_test.cpp"),
    ("docs/log", "box|hand", "tests/docs/log_numbers_test.cpp"),
    ("docs/library", "cpp|cmake", LIBRARY),
    # The same sources by the same two ways. Its packages are installed by tools/package.
    ("docs/library", "shell|output", READ),
    ("docs/cpp-reference", r"\{eval-rst\}", LIBRARY),
    ("docs/python-reference", r"\{eval-rst\}", "tests/python/reference_page_test.py"),
    # Sphinx stops at a page that is in no list, and at a list with a page that is not there.
    ("docs/index", r"\{toctree\}", "tools/guide"),
    ("docs/scan", "toml", "tests/docs/code_blocks_test.py"),
    # They end well. It says which are left out, and why; the page of energies takes minutes.
    ("docs/(commands|contacts|input|quantum-chemistry|scan|trajectories)|README", "dravo", "tests/docs/commands_run_test.py"),
    ("docs/energies", "dravo", READ),
    # What follows such a command (a job script of the folder, awk), and lines of Slurm, Psi4, gnuplot or the reader's folder.
    ("docs/(commands|contacts)", "shell", READ),
    ("docs/tutorial/.*", "sh", READ),
    # A message about large results, Ctrl-C and an element without radius, each with its test of the command; but also what
    # takes long: energies of Psi4, and the best of 250 starts. Those numbers are only read.
    ("docs/(contacts|energies|quantum-chemistry|scan)", "box", READ),
    # Formulas; what they say is in tests/cli/turned_axes_test.cpp and the Python of the page.
    ("docs/(conventions|theory)", "box", READ),
    # Lines of a file of the reader's own; the columns are held by tests/cli/formats_page_test.cpp.
    ("docs/formats", "box|shell", READ),
    # What is installed, built and measured. CI does the first two, in its own words.
    ("docs/(performance|python|log)|README", "shell", READ),
    # tests/slurm/run runs the script with a folder of its own.
    ("contrib/slurm/README", "shell|dravo", READ),
]
#: They take all pages, and so name none.
WITHOUT_NAMES = {"tools/guide", READ}


def pages() -> Iterator[str]:
    yield from ("README.md", "examples/README.md")
    for folder in ("docs", "contrib"):
        yield from sorted(path.relative_to(SOURCES).as_posix() for path in (SOURCES / folder).rglob("*.md"))


def blocks_of(text: str) -> Iterator[tuple[int, str]]:
    """Line and kind of each fence, and of each line that is indented as code."""
    fence, command, command_line, code_may_begin = False, "", 0, True
    for number, line in enumerate(text.split("\n"), 1):
        if re.match(r"\s*(```|~~~)", line):
            fence = not fence
            if fence:
                name = line.strip()[3:].strip()
                if not line.startswith("```"):
                    name = "fence that the tests do not see"
                elif not name and command:
                    name = "output"
                    if command == "dravo":
                        command = "shown"
                if command:
                    yield command_line, command
                command = ""
                yield number, name or "box"
            code_may_begin = False
        elif not fence and line.strip():
            if command:
                yield command_line, command
            command = ""
            if line.startswith("    ") and code_may_begin:
                command, command_line = ("dravo" if line.startswith("    dravo ") else "shell"), number
            else:
                code_may_begin = False
        elif not fence:
            code_may_begin = True
    if command:
        yield command_line, command


def faults(name: str, text: str, used: set[int]) -> list[str]:
    found = []
    page = name.removesuffix(".md")
    for line, kind in blocks_of(text):
        rows = enumerate(TABLE)
        fit = (k for k, (where, kinds, _) in rows if re.fullmatch(where, page) and re.fullmatch(kinds, kind))
        row = next(fit, None)
        if row is None:
            found.append(f"{name}:{line}: no test holds this block ({kind})")
            continue
        used.add(row)
        holder = TABLE[row][2]
        if holder in WITHOUT_NAMES:
            continue
        if page.removeprefix("docs/") not in (SOURCES / holder).read_text():
            found.append(f"{name}:{line}: {holder} does not name this page")
    return found


EXAMPLE = "Text\n\n    dravo a\n    dravo b\n\n```\nc\n```\n\n    ls\n\n- one\n    more of it\n\n```\nd\n```\n\n```toml\n    e\n```\n"
assert list(blocks_of(EXAMPLE)) == [(3, "dravo"), (4, "shown"), (6, "output"), (10, "shell"), (15, "box"), (19, "toml")]
assert faults("docs/limits.md", "    ls\n", set()) == ["docs/limits.md:1: no test holds this block (shell)"]
assert faults("docs/new.md", "```python\n```\n", set()) == [f"docs/new.md:1: {PYTHON} does not name this page"]

fitting: set[int] = set()
problems = [fault for page in pages() for fault in faults(page, (SOURCES / page).read_text(), fitting)]
problems += [f"no page has this: {row[:2]}" for k, row in enumerate(TABLE) if k not in fitting]
assert not problems, "\n".join(problems)

# The plan without the remark at its head.
plan = re.sub(r"^#.*\n", "", (SOURCES / "examples" / "scan" / "plan.toml").read_text(), flags=re.MULTILINE)
assert re.findall(r"```toml\n(.*?)```", (SOURCES / "docs" / "scan.md").read_text(), re.DOTALL) == [plan]
