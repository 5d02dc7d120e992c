"""Cases, what becomes of them, and what differs between two such outcomes."""
import os
import shutil
import subprocess
from dataclasses import dataclass, field
from itertools import zip_longest
from pathlib import Path

SECONDS_PER_CASE = 60
STATUSES = (0, 1, 2)  # any other is a crash, or the end of the patience


@dataclass
class Case:
    """A shell command in a folder that holds nothing but the given files."""
    name: str
    kind: str
    command: str
    files: dict[str, str | bytes] = field(default_factory=dict)


@dataclass
class Outcome:
    status: int
    screen: bytes
    messages: bytes
    files: dict[str, bytes]  # of links the target; folders end in a slash and are empty


def contents(path):
    if path.is_symlink():
        return os.readlink(path).encode()
    return path.read_bytes() if path.is_file() else b""


def files_in(folder):
    return {str(path.relative_to(folder)) + ("/" if path.is_dir() else ""): contents(path)
            for path in folder.rglob("*")}


def write_files(folder, files):
    for name, text in files.items():
        path = folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(text if isinstance(text, bytes) else text.encode())


def run(case, programs, folder):
    """Runs a case with the programs of one build; `folder` is made and removed."""
    folder.mkdir(parents=True)
    write_files(folder, case.files)
    environment = {"PATH": f"{programs}:/usr/bin:/bin", "LC_ALL": "C"}
    command = ["timeout", "--signal=KILL", str(SECONDS_PER_CASE), "sh", "-c", case.command]
    done = subprocess.run(command, cwd=folder, env=environment, stdin=subprocess.DEVNULL,
                          capture_output=True, check=False)
    outcome = Outcome(done.returncode, done.stdout, done.stderr, files_in(folder))
    shutil.rmtree(folder)
    return outcome


# --- differences --------------------------------------------------------------------------------

def shown(line):
    text = "(nothing)" if line is None else repr(line)[1:]
    return text if len(text) <= 100 else text[:100] + "..."


def different_line(what, reference, present):
    """The first line in which two texts differ; None when they are equal."""
    if reference == present:
        return None
    pairs = zip_longest(reference.splitlines(True), present.splitlines(True))
    number, (was, now) = next((k, pair) for k, pair in enumerate(pairs, 1) if pair[0] != pair[1])
    return f"{what}, line {number}:\n  - {shown(was)}\n  + {shown(now)}"


def different_file(reference, present):
    for name in sorted(reference.keys() | present.keys()):
        if name not in present:
            return f"{name}: is no longer written"
        if name not in reference:
            return f"{name}: was not written"
        if found := different_line(name, reference[name], present[name]):
            return found
    return None


def difference(reference, present):
    """The first difference in a few lines; None when there is none."""
    for outcome in (reference, present):
        if outcome.status not in STATUSES:
            return f"crash, or no end within {SECONDS_PER_CASE} s: status {outcome.status}"
    if reference.status != present.status:
        return f"exit status {reference.status}, now {present.status}"
    return (different_line("standard output", reference.screen, present.screen)
            or different_line("standard error", reference.messages, present.messages)
            or different_file(reference.files, present.files))


class Comparison:
    """Two builds, and a place for the folders of their runs."""

    def __init__(self, reference, present, scratch):
        self.programs = [Path(reference).resolve(), Path(present).resolve()]
        self.scratch = Path(scratch)

    def __call__(self, number, case):
        """The outcome with the reference, and the difference. Folders of both have one name."""
        outcomes = [run(case, programs, self.scratch / which / str(number))
                    for which, programs in zip(("reference", "present"), self.programs)]
        return outcomes[0], difference(*outcomes)
