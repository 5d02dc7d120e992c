"""tools/draw_folders: the drawing is that of the sources, and an include against the rule is named."""

import shutil
import subprocess
import sys
from pathlib import Path
from tempfile import TemporaryDirectory

SOURCES = Path(__file__).resolve().parents[2]
DRAWING = SOURCES / "docs" / "pictures" / "folders.svg"

#: a line that is added to a file, and what is said of it
FAULTS = [
    ("src/common/text.cpp", '#include "cli/words.hpp"', "src/common/text.cpp includes a header of cli, which stands above common"),
    ("src/scan/scan.cpp", '#include "results/merge.hpp"', "src/scan/scan.cpp includes a header of results, which stands above scan"),
    ("include/dravo/pose.hpp", "#include <common/turn.hpp>", "include/dravo/pose.hpp includes a header of common, which stands above dravo"),
]


def run(folder: Path, *words: str) -> tuple[int, str]:
    done = subprocess.run([sys.executable, folder / "tools" / "draw_folders", *words], capture_output=True, text=True)
    return done.returncode, done.stdout + done.stderr


with TemporaryDirectory() as name:
    drawn = Path(name) / "drawn.svg"
    status, said = run(SOURCES, "-o", str(drawn))
    assert status == 0, said
    assert drawn.read_text() == DRAWING.read_text(), "docs/pictures/folders.svg is old: run tools/draw_folders"

    copy = Path(name) / "copy"
    for part in ("src", "include", "python/core"):
        shutil.copytree(SOURCES / part, copy / part)
    for file in ("tools/draw_folders", "docs/source.md"):
        (copy / file).parent.mkdir(exist_ok=True)
        shutil.copy(SOURCES / file, copy / file)
    (copy / "docs" / "pictures").mkdir()
    for changed, line, expected in FAULTS:
        before = (copy / changed).read_text()
        (copy / changed).write_text(f"{line}\n{before}")
        assert run(copy) == (1, f"{expected}\n"), run(copy)
        (copy / changed).write_text(before)
    (copy / "src" / "new").mkdir()
    (copy / "src" / "new" / "new.cpp").write_text('#include "common/text.hpp"\n')
    assert run(copy) == (1, "new: not in the table of docs/source.md\n"), run(copy)
