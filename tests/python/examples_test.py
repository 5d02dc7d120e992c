"""examples/python: the scripts run, and what they write is right."""

import os
import runpy
import struct
from pathlib import Path
from typing import Any

import ase.io
import numpy as np
import numpy.typing as npt
import pytest

Distances = npt.NDArray[np.float64]

SCRIPTS = Path(os.environ["DRAVO_EXAMPLES"]) / "python"
BUILD = Path(os.environ["DRAVO_PROGRAM"]).parent

pytestmark = pytest.mark.skipif(
    not (BUILD / "dravo-xtb-worker").exists(), reason="a build without libxtb"
)


def run(name: str, folder: Path) -> dict[str, Any]:
    """What a script has computed, which ran in a folder."""
    before = Path.cwd()
    os.chdir(folder)
    try:
        return runpy.run_path(str(SCRIPTS / name))
    finally:
        os.chdir(before)


class TestScan:
    @pytest.fixture(scope="class")
    def made(self, tmp_path_factory: pytest.TempPathFactory) -> tuple[Path, dict[str, Any]]:
        # Without a display, as in a batch system.
        with pytest.MonkeyPatch.context() as changed:
            for display in ("DISPLAY", "WAYLAND_DISPLAY", "MPLBACKEND"):
                changed.delenv(display, raising=False)
            folder = tmp_path_factory.mktemp("scan")
            return folder, run("scan.py", folder)

    def test_draws_a_map(self, made: tuple[Path, dict[str, Any]]) -> None:
        picture = (made[0] / "surface.png").read_bytes()
        assert picture.startswith(b"\x89PNG\r\n\x1a\n")
        width, height = struct.unpack(">II", picture[16:24])
        assert 600 < width < 1200 and 400 < height < 900

    def test_saves_a_page_with_the_energies(self, made: tuple[Path, dict[str, Any]]) -> None:
        page = (made[0] / "surface.html").read_text()
        assert page.lower().startswith("<!doctype html>")
        assert page.rstrip().endswith("</html>")
        assert "e_int_kcal_mol" in page

    def test_drops_poses_with_atoms_closer_than_it_says(
        self, made: tuple[Path, dict[str, Any]]
    ) -> None:
        found = made[1]
        xyz = found["placer"].positions(found["poses"])
        between = np.linalg.norm(xyz[:, :6, None] - xyz[:, None, 6:], axis=-1).min(axis=(1, 2))
        np.testing.assert_array_equal(np.isnan(found["surface"]).ravel(), between <= 1.6)

    def test_finds_the_published_dimer_lowest(self, made: tuple[Path, dict[str, Any]]) -> None:
        """CCSD(T) has -16.1 kcal/mol (Takatani and others, 2010); GFN-FF is 3.3 off at most in S22.
        In the published geometry, which is planar, r is 3.23."""
        found = made[1]
        assert np.nanmin(found["surface"]) == pytest.approx(-16.1, abs=3.3)
        assert found["lowest"].beta == 90.0
        assert found["lowest"].r == pytest.approx(3.23, abs=0.15)

    def test_has_a_surface_that_the_plane_of_the_dimer_mirrors(
        self, made: tuple[Path, dict[str, Any]]
    ) -> None:
        """Both molecules are planar, so beta and 180 - beta are mirror images."""
        surface = made[1]["surface"]
        np.testing.assert_allclose(surface, surface[:, ::-1], atol=1e-4)

    def test_writes_the_best_pairs(self, made: tuple[Path, dict[str, Any]]) -> None:
        folder, found = made
        best = ase.io.read(folder / "best.xyz", ":")
        energies = [atoms.info["e_int_kcal_mol"] for atoms in best]
        wanted = np.sort(found["surface"][~np.isnan(found["surface"])])[:10]
        np.testing.assert_allclose(energies, wanted, atol=1e-6)
        for atoms in best:
            assert atoms.get_chemical_formula() == "C2H6N2O2"
            molecule1, molecule2 = (atoms[atoms.arrays["molecule"] == k] for k in (1, 2))
            assert len(molecule1) == len(molecule2) == 6
            apart = molecule1.get_center_of_mass() - molecule2.get_center_of_mass()
            assert np.linalg.norm(apart) == pytest.approx(atoms.info["r"], abs=1e-6)


class TestCalculators:
    #: of two argon atoms, measured: 99.5 per cm, and 3.76 Angstrom
    WELL = 99.5 * 2.85914e-3
    DISTANCE = 3.76

    @pytest.fixture(scope="class")
    def found(self, tmp_path_factory: pytest.TempPathFactory) -> dict[str, Any]:
        return run("calculators.py", tmp_path_factory.mktemp("calculators"))

    @pytest.fixture(scope="class")
    def distances(self, found: dict[str, Any]) -> Distances:
        """To the two atoms of the dimer, in every pose, by the law of cosines."""
        r, phi = np.meshgrid(found["r"], np.radians(found["phi"]), indexing="ij")
        half = found["distance"] / 2
        across, along = r.ravel() * np.cos(phi).ravel(), r.ravel() * np.sin(phi).ravel()
        return np.array([np.hypot(across, along - half), np.hypot(across, along + half)])

    def test_the_calculator_gets_the_atoms_where_they_belong(
        self, found: dict[str, Any], distances: Distances
    ) -> None:
        sixth = (3.40 / distances) ** 6
        in_kcal_mol = 0.01034 * 23.06055
        wanted = (4 * in_kcal_mol * (sixth**2 - sixth)).sum(axis=0)
        np.testing.assert_allclose(found["lennard_jones"], wanted, rtol=1e-5, atol=1e-6)
        # The triangle has two wells more than the dimer.
        assert wanted.min() == pytest.approx(-2 * in_kcal_mol, rel=1e-3)

    def test_atoms_that_clash_have_no_energy(
        self, found: dict[str, Any], distances: Distances
    ) -> None:
        """Closer than half of twice the radius of argon, 1.88 Angstrom (Bondi)."""
        clashes = distances.min(axis=0) < 1.88
        assert 0 < clashes.sum() < len(clashes)
        np.testing.assert_array_equal(found["gfn2"].status == "clash", clashes)
        np.testing.assert_array_equal(np.isnan(found["gfn2"].energy), clashes)

    def test_both_bind_as_argon_does(self, found: dict[str, Any]) -> None:
        r, phi = found["r"], found["phi"]
        for energies in (found["lennard_jones"], found["gfn2"].energy):
            surface = energies.reshape(len(r), len(phi))
            triangle, line = np.nanmin(surface[:, 0]), np.nanmin(surface[:, -1])
            assert line == pytest.approx(-self.WELL, rel=0.2)
            assert triangle == pytest.approx(-2 * self.WELL, rel=0.25)
            place = r[np.nanargmin(surface[:, 0])]
            assert place == pytest.approx(self.DISTANCE * np.sqrt(0.75), abs=0.1)
            place = r[np.nanargmin(surface[:, -1])]
            assert place == pytest.approx(self.DISTANCE * 1.5, abs=0.15)
