"""The commands of the program dravo."""

from __future__ import annotations

import os
import sys
from typing import IO, Any

from . import _places
from ._errors import Error, InputError, NoUniqueFrame
from ._molecules import FileName


def run(command: str, *files: FileName, **options: Any) -> str:
    """Runs a command of the program ``dravo``, for long work that writes files.

    Options are keyword arguments: ``output="scan"`` is ``--output scan``, ``resume=True`` is
    ``--resume``, False and None leave an option out, tuples and lists are joined with commas.
    Returns what the command prints; its messages go to standard error while it runs. Ctrl-C ends
    it: what was made stays, and ``resume=True`` goes on.

    Raises `NoUniqueFrame` where the command refuses a pair (exit status 1), `InputError` with its
    message otherwise, and `Error` where the program is not found.

    >>> print(run("place", "argon.xyz", "hcn.xyz", r=4.34).splitlines()[0])
    4
    """
    program = _places.program()
    if program is None:
        raise Error("the program dravo is neither beside the package nor on PATH")
    words = [program, command, *(os.fspath(file) for file in files)]
    for name, value in options.items():
        words += _words(name, value)
    import tempfile

    with tempfile.TemporaryFile("w+") as printed:
        status, messages = _run(words, printed)
        if status < 0:
            raise Error(f"signal {-status} ended dravo {command}\n{messages}".strip())
        if status == 1:
            raise NoUniqueFrame(messages)
        if status != 0:
            raise InputError(messages)
        printed.seek(0)
        return printed.read()


def _run(words: list[str], printed: IO[str]) -> tuple[int, str]:
    """The exit status and the messages, which are shown as they come."""
    import subprocess

    lines = []
    with subprocess.Popen(words, stdout=printed, stderr=subprocess.PIPE, text=True) as running:
        assert running.stderr is not None
        try:
            for line in running.stderr:
                lines.append(line.removeprefix("dravo: "))
                sys.stderr.write(line)
        except KeyboardInterrupt:
            running.terminate()
            raise
    return running.returncode, "".join(lines).strip()


def _words(name: str, value: Any) -> list[str]:
    if name == "check" and value is False:
        return ["--no-check"]
    option = "--" + name.replace("_", "-")
    if value is None or value is False or name == "check":
        return []
    if value is True:
        return [option]
    if isinstance(value, (tuple, list)):
        value = ",".join(map(str, value))
    return [f"{option}={value}"]
