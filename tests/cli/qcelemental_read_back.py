"""Reads exported pairs with QCElemental: molecules of QCSchema, and those of Psi4's input files.

    qcelemental_read_back.py DRAVO

runs DRAVO on pairs of its own in a temporary folder. Exit status 77 when QCElemental is not
installed.
"""
import json
import subprocess
import sys
import tempfile
from pathlib import Path

try:
    import qcelemental
    from qcelemental import molparse
except ImportError:
    print("python3-qcelemental is not installed")
    sys.exit(77)

WATER = [("O", 2.5, 0.0, 0.0), ("H", 1.55, 0.1, 0.0), ("H", 2.8, 0.9, -0.25)]

# Atoms of molecule 1, then its charge and multiplicity; molecule 2 is water.
PAIRS = {
    "fluoride": ([("F", 0.0, 0.0, 0.0)], -1, 1),
    "hydroxyl": ([("O", 0.0, 0.0, 0.0), ("H", -0.97, 0.0, 0.0)], 0, 2),
    "chloride": ([("Cl", -0.5, 0.125, 0.0)], -1, 1),
}

BOHR = 0.529177210903  # CODATA 2018, in Angstrom


def export(dravo, folder, name, program, *options):
    """The input files of a pair, by their names."""
    atoms, charge, multiplicity = PAIRS[name]
    lines = [f"{symbol} {x:.8f} {y:.8f} {z:.8f}" for symbol, x, y, z in atoms + WATER]
    (folder / "pair.xyz").write_text(f"{len(lines)}\n\n" + "\n".join(lines) + "\n")
    output = folder / f"{name}-{program}-{len(list(folder.iterdir()))}"
    subprocess.run([dravo, "export", program, "pair.xyz", "--split", str(len(atoms)), "--no-check",
                    "--method", "hf", "--basis", "sto-3g", f"--charges={charge},0",
                    "--multiplicities", f"{multiplicity},1", *options, "--quiet", "-o", output],
                   cwd=folder, check=True)
    inputs = {file.stem: file.read_text() for file in (output / "000" / "000001").iterdir()
              if file.name != "pose.xyz"}
    assert inputs, output
    return inputs


def expect_atoms(where, symbols, bohr, atoms):
    assert list(symbols) == [atom[0] for atom in atoms], (where, symbols)
    expected = [x for atom in atoms for x in atom[1:]]
    assert len(bohr) == len(expected), where
    for found, x in zip(bohr, expected):
        assert abs(found * BOHR - x) < 1e-8, (where, found * BOHR, x)


def expect_molecule(name, where, molecule, ghost):
    """`ghost`: 1 or 2, which of the molecules has no nuclei; 0 for none."""
    atoms, charge, multiplicity = PAIRS[name]
    n1 = len(atoms)
    expect_atoms(where, molecule["symbols"], molecule["geometry"], atoms + WATER)
    real = [ghost != (1 if k < n1 else 2) for k in range(n1 + 3)]
    assert list(molecule["real"]) == real, (where, molecule["real"])
    charges = [0 if ghost == 1 else charge, 0]
    multiplicities = [1 if ghost == 1 else multiplicity, 1]
    assert molecule["molecular_charge"] == charges[0], where
    assert molecule["molecular_multiplicity"] == multiplicities[0], where
    assert [list(fragment) for fragment in molecule["fragments"]] == [
        list(range(n1)), list(range(n1, n1 + 3))], where
    assert list(molecule["fragment_charges"]) == charges, where
    assert list(molecule["fragment_multiplicities"]) == multiplicities, where
    assert molecule["fix_com"] and molecule["fix_orientation"], where


def check_qcschema(dravo, folder, name):
    inputs = export(dravo, folder, name, "qcschema")
    assert sorted(inputs) == ["molecule-1", "molecule-2", "pair"], sorted(inputs)
    for file, ghost in (("pair", 0), ("molecule-1", 2), ("molecule-2", 1)):
        atomic = qcelemental.models.AtomicInput(**json.loads(inputs[file]))
        assert atomic.driver == "energy" and atomic.model.method == "hf", file
        assert atomic.model.basis == "sto-3g", file
        molecule = qcelemental.models.Molecule(**json.loads(inputs[file])["molecule"], validate=True)
        found = molecule.dict()
        found["geometry"] = molecule.geometry.flatten()
        expect_molecule(name, f"{name} qcschema {file}", found, ghost)


def psi4_molecule(text):
    """What stands between the braces, read as Psi4 reads it."""
    block = text[text.index("{") + 1:text.index("}")]
    return molparse.from_string(block, dtype="psi4", return_processed=False)["qm"]


def check_psi4(dravo, folder, name):
    atoms, charge, multiplicity = PAIRS[name]
    n1 = len(atoms)
    pair = psi4_molecule(export(dravo, folder, name, "psi4")["pair"])
    assert pair["units"] == "Angstrom", pair["units"]
    assert pair["fix_com"] and pair["fix_orientation"] and pair["fix_symmetry"] == "c1"
    expect_atoms(f"{name} psi4", [symbol.title() for symbol in pair["elem"]],
                 [x / BOHR for x in pair["geom"]], atoms + WATER)
    assert list(pair["real"]) == [True] * (n1 + 3)
    assert list(pair["fragment_separators"]) == [n1]
    assert list(pair["fragment_charges"]) == [charge, 0]
    assert list(pair["fragment_multiplicities"]) == [multiplicity, 1]
    for ghost, file in ((1, "molecule-2"), (2, "molecule-1")):
        inputs = export(dravo, folder, name, "psi4", "--ghost", str(ghost))
        assert list(inputs) == [file], inputs
        lent = psi4_molecule(inputs[file])
        where = f"{name} psi4 --ghost {ghost}"
        expect_atoms(where, [symbol.title() for symbol in lent["elem"]],
                     [x / BOHR for x in lent["geom"]], atoms + WATER)
        assert list(lent["real"]) == [ghost == 2] * n1 + [ghost == 1] * 3, (where, lent["real"])
        assert lent["molecular_charge"] == (charge if ghost == 2 else 0), where
        assert lent["molecular_multiplicity"] == (multiplicity if ghost == 2 else 1), where


def main(dravo):
    for name in PAIRS:
        with tempfile.TemporaryDirectory() as folder:
            check_qcschema(dravo, Path(folder), name)
            check_psi4(dravo, Path(folder), name)
            print(f"{name}: read back")


if __name__ == "__main__":
    main(str(Path(sys.argv[1]).resolve()))
