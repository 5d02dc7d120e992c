"""Proof that the comparison can fail: programs that do one thing more than the reference does."""
import tempfile
from pathlib import Path

from running import Case, Comparison

PAIR = "'[0006.5-084-011]-(214-152-306)-QN-DRAVO.xyz'"
CHANGES = {
    "nothing": ("", False),
    "exit status": ("status=1", True),
    "a byte of standard output": ("printf ' '", True),
    "a byte of standard error": ("printf ' ' >&2", True),
    "a byte in the middle of a file": (
        f"printf '#' | dd of={PAIR} bs=1 seek=100 conv=notrunc status=none", True),
    "the last byte of a file": ("truncate --size=-1 QN-LOG-PARAM.txt", True),
    "the name of a file": (f"mv {PAIR} pair.xyz", True),
    "an empty file more": (": > more", True),
    "a file less": ("rm input-GEOMETRY.xyz", True),
    "an empty folder more": ("mkdir more", True),
    "an end by a signal": ("kill -SEGV $$", True),
}


def write_program(folder, original, change):
    folder.mkdir()
    program = folder / "qn-dravo"
    program.write_text(f"#!/bin/sh\n'{original}'\nstatus=$?\n{change}\nexit $status\n")
    program.chmod(0o755)


def failures(reference, example):
    """What was changed and is not reported, or is reported without a change."""
    program = Path(reference).resolve() / "qn-dravo"
    case = Case("self-test", "self-test", "qn-dravo", {"QN-input-GEOMETRY.xyz": example})
    wrong = []
    with tempfile.TemporaryDirectory() as scratch:
        for number, (title, (change, reported)) in enumerate(CHANGES.items()):
            folder = Path(scratch) / f"programs-{number}"
            write_program(folder, program, change)
            found = Comparison(reference, folder, scratch)(number, case)[1]
            if (found is not None) != reported:
                wrong.append(f"{title}: {found or 'not reported'}")
    return wrong
