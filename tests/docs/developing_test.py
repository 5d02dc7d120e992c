"""docs/developing.md names files and folders that are there."""

import re
from pathlib import Path

SOURCES = Path(__file__).resolve().parents[2]
#: They are made by the scripts that the page names beside them.
MADE = ("build-guide", "build-package")


def files() -> list[str]:
    return [path.relative_to(SOURCES).as_posix() for top in ("src", "tests") for path in (SOURCES / top).rglob("*")]


def missing(text: str) -> list[str]:
    """Words in backticks that are a path or end as a file does; those with NAME are for the reader to fill in."""
    inner = files()
    names = {word.split(" ")[0] for word in re.findall(r"`([^`\n]+)`", text)}
    paths = [name for name in names if re.fullmatch(r"[\w./-]*(/[\w./-]*|\.(cpp|hpp|md|cmake|cff|txt))", name)]
    return sorted(
        name
        for name in paths
        if "NAME" not in name
        and not name.startswith(MADE)
        and not (SOURCES / name).exists()
        and not any(path.endswith(f"/{name}") for path in inner)
    )


page = (SOURCES / "docs" / "developing.md").read_text()
assert not missing(page), missing(page)
assert missing(page + "`src/no.cpp` `no.hpp` `tools/no`") == ["no.hpp", "src/no.cpp", "tools/no"]
