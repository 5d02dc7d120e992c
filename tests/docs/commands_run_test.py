"""commands_run_test.py DRAVO: the commands of the pages run, in the order of their page, those with nothing below them too.

What pages show below a command is compared in tests/cli/examples_test.cpp, and pages whose commands build on each other in
tests/cli/tutorial_test.cpp.
"""

import os
import re
import shlex
import shutil
import subprocess
import sys
from pathlib import Path
from tempfile import TemporaryDirectory

SOURCES = Path(__file__).resolve().parents[2]
EXAMPLES = SOURCES / "examples"
DRAVO = Path(sys.argv[1]).resolve()
PAGES = ("README", "docs/commands", "docs/contacts", "docs/input", "docs/quantum-chemistry", "docs/scan", "docs/trajectories")
#: Files that the reader has.
GIVEN = {
    "dimer.xyz": "formamide-dimer/formamide-dimer.xyz",
    "benzene.xyz": "benzene-dimer/benzene.xyz",
    "input-GEOMETRY.xyz": "formamide-dimer/QN-input-GEOMETRY.xyz",
    "trajectory.xyz": "formamide-dimer/formamide-dimer.xyz",
    "traj.xyz": "formamide-dimer/formamide-dimer.xyz",
    "other.xyz": "formamide-dimer/formamide-dimer.xyz",
}
#: Beginnings of commands that are not run, and why.
LEFT_OUT = {
    "dravo scan dimer.xyz --split 6 --random 1000000": "a million poses",
    "dravo extract big ": "a million poses",
    "dravo export psi4 big ": "a million poses",
    "dravo collect ": "needs energies of a program of quantum chemistry",
    "dravo export PROGRAM ": "words in capitals stand for the reader's",
    "dravo prepare formamide.xyz ethanol.xyz ": "there is no ethanol in the examples",
    "dravo prepare dimer.xyz --split 6 --frame 3 ": "a file of three frames in Bohr",
    "dravo dock formamide.xyz ethanol.xyz ": "there is no ethanol in the examples",
    "dravo scan dimer.xyz --split 6 --r 2.8:6:0.1 --energy ": "energies, which a build may lack",
    "dravo energy ": "energies, which a build may lack",
    "dravo convert '[": "the name of a result of qn-dravo",
}


def commands_of(text: str) -> list[str]:
    """All commands of a page, without the remarks behind them; those with output too, since later ones need their files."""
    plain = re.sub(r"^```.*?^```$", "", text, flags=re.DOTALL | re.MULTILINE)
    return re.findall(r"^    (dravo .*)$", plain, re.MULTILINE)


ran, unused, problems = 0, set(LEFT_OUT), []
for page in PAGES:
    with TemporaryDirectory() as folder:
        (Path(folder) / "examples").symlink_to(EXAMPLES)
        for name, source in GIVEN.items():
            shutil.copy(EXAMPLES / source, Path(folder) / name)
        for command in commands_of((SOURCES / f"{page}.md").read_text()):
            reasons = {beginning for beginning in LEFT_OUT if command.startswith(beginning)}
            unused -= reasons
            if reasons:
                continue
            words = [str(DRAVO), *shlex.split(command, comments=True)[1:]]
            done = subprocess.run(words, cwd=folder, capture_output=True, text=True, env={**os.environ, "BROWSER": "true"})
            ran += 1
            if done.returncode != 0:
                problems.append(f"{page}: {command}\n{done.stderr}")
problems += [f"no page has a command that begins so: {beginning}" for beginning in sorted(unused)]
assert not problems, "\n".join(problems)
assert ran > 25, ran
