"""What the tests of the Python package share."""

from pathlib import Path

import pytest

pytest.register_assert_rewrite("commands")


@pytest.fixture(autouse=True)
def folder(tmp_path: Path, monkeypatch: pytest.MonkeyPatch) -> Path:
    """Every test runs in an empty folder of its own."""
    monkeypatch.chdir(tmp_path)
    return tmp_path
