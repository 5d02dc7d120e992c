"""docs/python-reference.md lists everything public, and nothing else."""

import re
from pathlib import Path

import dravo

PAGE = Path(__file__).resolve().parents[2] / "docs/python-reference.md"
DIRECTIVE = re.compile(r"^\.\. (?:auto|py:)\w+:: dravo\.(\w+)$", re.MULTILINE)


def test_lists_every_public_name_once() -> None:
    listed = DIRECTIVE.findall(PAGE.read_text())
    assert sorted(listed) == sorted(dravo.__all__)
