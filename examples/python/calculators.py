# %% [markdown]
# # Any calculator of ASE, and the same scan by `dravo.energies`
#
# An argon atom around an argon dimer, by the Lennard-Jones potential of ASE and by GFN2-xTB. In
# this potential the best place is known: all three atoms at the distance of the dimer, two wells
# deep.
#
# Needs ASE (Debian: python3-ase).

# %%
from pathlib import Path

import numpy as np
from ase.calculators.lj import LennardJones
from ase.units import kcal, mol

import dravo

# In a notebook, which has no __file__, start it in the folder of this script.
here = Path(__file__).parent if "__file__" in globals() else Path.cwd()

# %% [markdown]
# ## Two molecules, and where one goes
#
# Epsilon over k is 120 K, sigma is 3.40 Angstrom. Beside a linear molecule 2 theta is 90, so that
# phi is the angle to the perpendicular: at 0 the three atoms make a triangle, at 90 a line.

# %%
epsilon, sigma = 0.01034, 3.40  # eV, Angstrom
distance = 2 ** (1 / 6) * sigma
argon = dravo.read_molecule(here / "../argon-hcn/argon.xyz")
dimer = dravo.Molecule(["Ar", "Ar"], [[0, 0, 0], [0, 0, distance]])

placer = dravo.Placer(argon, dimer)
print(placer, "where these change nothing:", ", ".join(placer.idle))

r = np.linspace(3.0, 6.0, 61)
phi = np.array([0.0, 30.0, 60.0, 90.0])
poses = dravo.grid(r=r, phi=phi, pair=placer)

# %% [markdown]
# ## By a calculator
#
# `placer.atoms` makes one `ase.Atoms` for each pose. The energy of the dimer alone is subtracted;
# an argon atom alone has none in this potential.

# %%
calculator = LennardJones(epsilon=epsilon, sigma=sigma, rc=100.0)


def energy_of(atoms):
    """By the calculator, kcal/mol."""
    atoms.calc = calculator
    return atoms.get_potential_energy() / (kcal / mol)


alone = energy_of(dimer.to_ase())
lennard_jones = np.array([energy_of(atoms) - alone for atoms in placer.atoms(poses)])

# %% [markdown]
# ## By dravo
#
# Poses whose atoms clash are not computed: their energy is nan.

# %%
gfn2 = dravo.energies(placer, poses, "gfn2")
print(gfn2)

# %% [markdown]
# ## Both

# %%
print("           Lennard-Jones         GFN2-xTB")
print("     phi       r   kcal/mol      r   kcal/mol")
for place, angle in enumerate(phi):
    row = f"{angle:8.0f}"
    for found in (lennard_jones, gfn2.energy):
        profile = found.reshape(len(r), len(phi))[:, place]
        k = np.nanargmin(profile)
        row += f"{r[k]:8.2f} {profile[k]:10.3f}"
    print(row)
