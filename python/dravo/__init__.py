"""Places two molecules exactly: poses, scans, energies, minima, pictures.

In short::

    import dravo

    pair = dravo.read("dimer.xyz", split=6)
    pair.identify()                                      # the six parameters, and why
    placer = dravo.Placer(pair)
    atoms = placer.place(r=4.0, theta=90, beta=30)       # an ase.Atoms
    poses = dravo.grid(r="3:7:0.1", theta=range(0, 181, 10), pair=pair)
    xyz = placer.positions(poses)                        # poses x atoms x 3, Angstrom
    for batch in dravo.scan(placer, poses, contacts="drop"):
        print(batch.shortest.min())
    e = dravo.energies(placer, poses, "gfnff")           # kcal/mol
    pair.view()                                          # in a notebook

Lengths are in Angstrom, angles in degrees, energies in kcal/mol. Six numbers make a pose, in this
order everywhere: r, theta, phi, alpha, beta, gamma (see `Pose`). Names, units and defaults are
those of the commands of ``dravo``. Everything raised on purpose is a `dravo.Error`.
"""

from ._core import __version__
from ._energies import Docking, Energies, Method, Minimum, PairEnergy, dock, energies, energy
from ._errors import (
    EngineError,
    Error,
    FileError,
    InputError,
    NoRotationFound,
    NoUniqueFrame,
    OutOfRange,
)
from ._identify import Axis, Frame, Identification, identify_many
from ._molecules import (
    ClosePair,
    Contact,
    HydrogenBond,
    Molecule,
    Pair,
    Pose,
    Survey,
    read,
    read_molecule,
)
from ._pictures import Page, Picture, draw, view
from ._placer import Placer
from ._poses import Poses, grid, random, zipped
from ._program import run
from ._scan import Scan, ScanBatch, scan

__all__ = [
    "Axis",
    "ClosePair",
    "Contact",
    "Docking",
    "Energies",
    "EngineError",
    "Error",
    "FileError",
    "Frame",
    "HydrogenBond",
    "Identification",
    "InputError",
    "Method",
    "Minimum",
    "Molecule",
    "NoRotationFound",
    "NoUniqueFrame",
    "OutOfRange",
    "Page",
    "Pair",
    "PairEnergy",
    "Picture",
    "Placer",
    "Pose",
    "Poses",
    "Scan",
    "ScanBatch",
    "Survey",
    "__version__",
    "dock",
    "draw",
    "energies",
    "energy",
    "grid",
    "identify_many",
    "random",
    "read",
    "read_molecule",
    "run",
    "scan",
    "view",
    "zipped",
]

# Errors and help name what people import.
for _name in __all__:
    if getattr(globals()[_name], "__module__", "").startswith("dravo."):
        globals()[_name].__module__ = "dravo"
del _name
