"""The commands of the program dravo."""

from __future__ import annotations

import os
import subprocess
from typing import Any

from . import _places
from ._errors import Error, InputError, NoUniqueFrame
from ._molecules import FileName


def run(command: str, *files: FileName, **options: Any) -> str:
    """Runs a command of the program ``dravo``, for long work that writes files.

    Options are keyword arguments: ``output="scan"`` is ``--output scan``, ``resume=True`` is
    ``--resume``, False and None leave an option out, tuples and lists are joined with commas.
    Returns what the command prints; its messages go to standard error. Ctrl-C ends it as it does
    in a shell: what was made stays, and ``resume=True`` goes on.

    Raises `NoUniqueFrame` where the command refuses a pair (exit status 1), `InputError` with its
    message otherwise, and `Error` where the program is not found.

    >>> print(run("place", "argon.xyz", "hcn.xyz", r=4.34).splitlines()[0])
    4
    """
    program = _places.program()
    if program is None:
        raise Error("the program dravo is not there: it is installed beside the package, or on PATH")
    words = [program, command, *(os.fspath(file) for file in files)]
    for name, value in options.items():
        words += _words(name, value)
    done = subprocess.run(words, capture_output=True, text=True, check=False)
    message = done.stderr.strip()
    if done.returncode == 1:
        raise NoUniqueFrame(message)
    if done.returncode != 0:
        raise InputError(message)
    if message:
        print(message)
    return done.stdout


def _words(name: str, value: Any) -> list[str]:
    option = "--" + name.replace("_", "-")
    if value is None or value is False:
        return []
    if value is True:
        return [option]
    if isinstance(value, (tuple, list)):
        value = ",".join(map(str, value))
    return [f"{option}={value}"]
