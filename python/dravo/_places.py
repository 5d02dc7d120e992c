"""Where what is installed with the package stands."""

from __future__ import annotations

import os
import shutil
from pathlib import Path


def program() -> str | None:
    """The path of the program ``dravo``: below the prefix of this package, beside its folder where
    it was built, or on the PATH."""
    folder = Path(__file__).resolve().parent
    places = [above / "bin" / "dravo" for above in list(folder.parents)[:4]]
    for path in [*places, folder.parents[1] / "dravo"]:
        if path.is_file() and os.access(path, os.X_OK):
            return str(path)
    return shutil.which("dravo")
