"""Where what is installed with the package stands."""

from __future__ import annotations

import os
import shutil
from pathlib import Path


def program() -> str | None:
    """The path of the program ``dravo``: below the prefix of this package, or on the PATH."""
    folder = Path(__file__).resolve().parent
    for above in list(folder.parents)[:4]:
        path = above / "bin" / "dravo"
        if os.access(path, os.X_OK) and path.is_file():
            return str(path)
    return shutil.which("dravo")
