# %% [markdown]
# # A surface of the formamide dimer
#
# Molecule 1 moves away from molecule 2 and turns out of the plane of the dimer. Short contacts are
# dropped, the rest get energies by GFN-FF, and the best pairs are written. Files go into the
# current folder: `surface.png`, `best.xyz`, `surface.html`.
#
# Needs ASE and matplotlib (Debian: python3-ase, python3-matplotlib).

# %%
from pathlib import Path

import ase.io
import matplotlib.pyplot as plt
import numpy as np

import dravo

# In a notebook, which has no __file__, start it in the folder of this script.
here = Path(__file__).parent if "__file__" in globals() else Path.cwd()

# %% [markdown]
# ## The pair, and its six parameters

# %%
pair = dravo.read(here / "../formamide-dimer/formamide-dimer.xyz", split=6)
print(pair.identify())
for bond in pair.hydrogen_bonds():
    print(f"hydrogen bond of {bond.distance:.2f} Angstrom, {bond.angle:.0f} degrees")

# %% [markdown]
# ## The scan
#
# r and beta vary; what is not given stays as the pair has it. The hydrogen bonds are shorter than
# 1.9 Angstrom, so only atoms closer than 1.6 count as a contact.

# %%
r = np.linspace(2.8, 6.0, 33)
beta = np.linspace(0.0, 180.0, 37)
poses = dravo.grid(r=r, beta=beta, pair=pair)
placer = dravo.Placer(pair, contact_distance=1.6)
kept = dravo.scan(placer, poses, contacts="drop").rest()
print(f"{len(kept)} of {len(poses)} poses have no short contact")

# %% [markdown]
# ## Energies
#
# `index` tells where a kept pose stands in the grid, from 1. Dropped poses stay nan.

# %%
energies = dravo.energies(placer, kept.poses, "gfnff")
surface = np.full(len(poses), np.nan)
surface[kept.index - 1] = energies
surface = surface.reshape(len(r), len(beta))

lowest = dravo.Pose(*kept.poses[energies.argmin()])
print(f"lowest: {np.nanmin(surface):.2f} kcal/mol at r {lowest.r:.2f}, beta {lowest.beta:.0f}")

# %% [markdown]
# ## The map

# %%
figure, axes = plt.subplots(figsize=(6, 4))
depth = np.nanmax(np.abs(surface[surface < 0]))
colours = axes.pcolormesh(beta, r, surface, cmap="RdBu_r", vmin=-depth, vmax=depth)
axes.plot(lowest.beta, lowest.r, "k+")
axes.set_xlabel("beta, degrees")
axes.set_ylabel("r, Angstrom")
axes.set_xticks(range(0, 181, 30))
figure.colorbar(colours, label="interaction energy, kcal/mol")
figure.savefig("surface.png", dpi=150, bbox_inches="tight")

# %% [markdown]
# ## The ten best pairs
#
# As `ase.Atoms`: the six parameters and the energy go into the file with each.

# %%
order = np.argsort(energies.energy)[:10]
best = list(placer.atoms(kept.poses[order]))
for atoms, energy in zip(best, energies.energy[order]):
    atoms.info["e_int_kcal_mol"] = energy
ase.io.write("best.xyz", best)

# %% [markdown]
# ## A page
#
# A map of all kept poses beside the pair, which turns; click a pose to see it.

# %%
page = dravo.view(placer, kept.poses, {"e_int_kcal_mol": energies, "shortest": kept.shortest})
page.save("surface.html", overwrite=True)
page
