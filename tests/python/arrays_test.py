"""Arrays of every kind give the right numbers, or one clear error."""

from __future__ import annotations

import gc
from concurrent.futures import ThreadPoolExecutor
from typing import Any, Callable

import numpy as np
import pytest
from commands import FORMAMIDES

import dravo

ROWS = np.array([[4, 90, 0, 0, 30, 0], [5, 10, 200, 300, 40, 50], [6, 180, 10, 20, 0, 7]], float)


@pytest.fixture(name="placer", scope="module")
def made_placer() -> dravo.Placer:
    return dravo.Placer(FORMAMIDES.read())


every_second = np.zeros((6, 12))
every_second[::2, ::2] = ROWS
read_only = ROWS.copy()
read_only.flags.writeable = False
SAME = {
    "list": ROWS.tolist(),
    "tuples": tuple(map(tuple, ROWS)),
    "poses of a list": [dravo.Pose(*row) for row in ROWS],
    "Poses": dravo.Poses(ROWS),
    "Fortran order": np.asfortranarray(ROWS),
    "not contiguous": every_second[::2, ::2],
    "backwards": ROWS[::-1].copy()[::-1],
    "transposed": ROWS.T.copy().T,
    "float32": ROWS.astype(np.float32),
    "float16": ROWS.astype(np.float16),
    "longdouble": ROWS.astype(np.longdouble),
    "other byte order": ROWS.astype(">f8"),
    "int": ROWS.astype(int),
    "uint16": ROWS.astype(np.uint16),
    "read only": read_only,
    "not aligned": np.frombuffer(b"x" + ROWS.tobytes(), np.uint8)[1:].view(float).reshape(3, 6),
}


@pytest.mark.parametrize("kind", SAME)
def test_the_same_poses_of_any_kind_give_the_same_numbers(placer: dravo.Placer, kind: str) -> None:
    poses: Any = SAME[kind]
    wanted = placer.positions(ROWS)
    assert wanted.flags.c_contiguous and wanted.dtype == np.float64 and wanted.shape == (3, 12, 3)
    assert np.array_equal(placer.positions(poses), wanted)
    assert np.array_equal(dravo.scan(placer, poses, positions=True).rest().positions, wanted)
    assert np.array_equal([placer.placed_pair(dravo.Pose(*row)).positions for row in ROWS], wanted)


def test_single_precision_is_taken_as_it_is(placer: dravo.Placer) -> None:
    rows = np.array([[4.1, 90.3, 1.7, 2.9, 30.1, 3.3]], np.float32)
    assert np.array_equal(placer.positions(rows), placer.positions(rows.astype(float)))
    double = [[4.1, 90.3, 1.7, 2.9, 30.1, 3.3]]
    assert not np.array_equal(placer.positions(rows), placer.positions(double))


def test_the_poses_stay_what_they_were(placer: dravo.Placer) -> None:
    rows = ROWS.copy()
    found = placer.positions(rows)
    found[:] = 0.0
    assert np.array_equal(rows, ROWS) and found.flags.writeable


@pytest.mark.parametrize("none", [[], (), np.empty((0, 6)), np.empty(0), dravo.Poses([])], ids=repr)
def test_no_pose_is_no_error(placer: dravo.Placer, none: Any) -> None:
    assert placer.positions(none).shape == (0, 12, 3)
    assert list(dravo.scan(placer, none)) == []
    batch = dravo.scan(placer, none, positions=True).rest()
    assert len(batch) == 0 == len(batch.table())
    assert len(dravo.Poses(none)) == 0 and dravo.Poses(none).rows().shape == (0, 6)
    assert len(dravo.energies(placer, none)) == 0
    assert list(placer.atoms(none)) == []


#: with what the message must say
NO_POSES: dict[str, tuple[Any, str]] = {
    "one row": (ROWS[0], "^poses: expected an array of n x 6 numbers, found 6"),
    "five columns": (ROWS[:, :5], "^poses: expected an array of n x 6 numbers, found 3 x 5"),
    "seven columns": (np.zeros((2, 7)), "^poses: expected an array of n x 6 numbers, found 2 x 7"),
    "three dimensions": (ROWS[None], "^poses: expected an array of n x 6 numbers, found 1 x 3 x 6"),
    "empty, of other columns": (np.empty((0, 5)), "^poses: expected .* n x 6 numbers, found 0 x 5"),
    "empty, of a cube": (np.empty((0, 6, 6)), "^poses: expected .* n x 6 numbers, found 0 x 6 x 6"),
    "a number": (4.0, "^poses: expected an array of n x 6 numbers, found a single number"),
    "nothing": (None, "^poses: expected an array of numbers, found None"),
    "ragged": ([[4, 90], [5]], r"^poses: expected an array of numbers, found \[\[4, 90\], \[5\]\]"),
    "text": ("3:7:0.1", "^poses: expected an array of numbers, found '3:7:0.1'"),
    "texts": ([["4", "90", "0", "0", "30", "0"]], "^poses: expected an array of numbers"),
    "complex": (ROWS + 1j, "^poses: expected an array of numbers"),
    "objects": ([[object()] * 6], "^poses: expected an array of numbers"),
    "dates": (np.zeros((1, 6), "M8[s]"), "an array of numbers"),
    "truths": (np.ones((1, 6), bool), "an array of numbers"),
    "a dictionary": ({"r": 4}, "^poses: expected an array of numbers"),
    "not a number": ([[4, 90, 0, np.nan, 30, 0]], "^pose 1: alpha: expected .*, found nan"),
    "infinite": ([*ROWS, [np.inf, 0, 0, 0, 0, 0]], "^pose 4: r: expected .*, found inf"),
    "too large for a double": ([[10**400, 0, 0, 0, 0, 0]], "^poses: expected an array of numbers"),
}


@pytest.mark.parametrize("kind", NO_POSES)
def test_what_is_no_array_of_poses_is_told(placer: dravo.Placer, kind: str) -> None:
    poses, message = NO_POSES[kind]
    calls: list[Callable[[Any], object]] = [
        placer.positions, dravo.Poses, lambda rows: dravo.scan(placer, rows),
        lambda rows: dravo.energies(placer, rows), lambda rows: list(placer.atoms(rows)),
    ]  # fmt: skip
    for call in calls:
        with pytest.raises(dravo.InputError, match=message) as failure:
            call(poses)
        assert len(str(failure.value)) < 200
    if kind != "nothing":
        with pytest.raises(dravo.InputError, match=message):
            dravo.view(placer, poses)


@pytest.mark.parametrize(
    "k, value, name, lowest, highest",
    [
        (0, -0.001, "r", 0, 9999.9),
        (0, 1e300, "r", 0, 9999.9),
        (1, 180.001, "theta", 0, 180),
        (1, -1, "theta", 0, 180),
        (4, 181, "beta", 0, 180),
    ],
)
def test_what_is_out_of_range_is_told(
    placer: dravo.Placer, k: int, value: float, name: str, lowest: float, highest: float
) -> None:
    rows = np.repeat(ROWS, 20_000, axis=0)
    rows[50_000, k] = value
    pose = dravo.Pose(*rows[50_000])
    calls: list[Callable[[], object]] = [
        lambda: placer.positions(rows), lambda: dravo.Poses(rows),
        lambda: dravo.scan(placer, rows).rest(), lambda: placer.place(pose),
        lambda: placer.survey(pose), lambda: placer.applied(pose),
        lambda: dravo.grid(*pose), lambda: dravo.draw(placer, pose=pose),
        lambda: dravo.view(placer, pose=pose), lambda: dravo.view(placer, rows),
    ]  # fmt: skip
    for number, call in enumerate(calls):
        with pytest.raises(dravo.OutOfRange, match=name) as failure:
            call()
        found = failure.value
        told = (found.name, found.value, found.lowest, found.highest)
        assert told == (name, value, lowest, pytest.approx(highest, abs=1e-3)), number
        assert f"{name} {value:g}".replace("+", "") in str(found).replace("+", "")
        if number < 3:
            assert str(found).startswith(f"pose 50001: {name} ")


def test_any_number_of_turns_is_a_pose(placer: dravo.Placer) -> None:
    turned = ROWS + [0, 0, 360, -720, 0, 3600]
    assert np.allclose(placer.positions(turned), placer.positions(ROWS), atol=1e-12)
    for far in (1e15, -1e300):
        try:
            found = placer.positions([[4, 90, far, 0, 0, 0]])
        except dravo.Error:
            continue
        assert np.isfinite(found).all()


def test_more_than_there_is_memory_for_is_a_memory_error(placer: dravo.Placer) -> None:
    many = 10**15
    poses = dravo.random(many, r=4.0)
    assert len(poses) == many and poses[many - 1] == poses[-1]
    for call in (poses.rows, lambda: placer.positions(poses)):
        with pytest.raises(MemoryError):
            call()
    with pytest.raises(MemoryError):
        placer.positions(np.broadcast_to(ROWS[0], (many, 6)))
    with pytest.raises(dravo.InputError):
        dravo.random(many + 1, r=4.0)


def test_poses_are_a_sequence() -> None:
    poses = dravo.grid(r="4,5", theta="0:180:90", phi=0, alpha=0, beta=0, gamma="0,1")
    rows = poses.rows()
    assert len(poses) == len(rows) == 12
    assert [list(pose) for pose in poses] == rows.tolist()
    assert poses[np.int64(3)] == dravo.Pose(*rows[3]) and poses[-12] == poses[0]
    for bounds in ((2, 5), (None, None, 3), (None, None, -1), (8, 100), (5, 2)):
        some = slice(*bounds)
        assert np.array_equal(poses[some], rows[some]), some
    for k in (12, -13):
        with pytest.raises(IndexError):
            poses[k]
    with pytest.raises(TypeError):
        poses["r"]  # type: ignore[call-overload]
    assert np.asarray(poses, np.float32).dtype == np.float32


@pytest.mark.parametrize("threads", [0, 1, 3, 100, np.int8(2)])
def test_any_number_of_threads_gives_the_same(placer: dravo.Placer, threads: int) -> None:
    poses = dravo.random(5000, r=4.0)
    wanted = placer.positions(poses, threads=1)
    assert np.array_equal(placer.positions(poses, threads=threads), wanted)


@pytest.mark.parametrize("threads", [-1, 1025, 2.0, "2", None, True, 2**70])
def test_other_numbers_of_threads_are_refused(placer: dravo.Placer, threads: Any) -> None:
    frames = placer.positions(ROWS)
    calls: list[Callable[[], object]] = [
        lambda: placer.positions(ROWS, threads), lambda: dravo.scan(placer, ROWS, threads=threads),
        lambda: dravo.energies(placer, ROWS, threads=threads),
        lambda: dravo.dock(placer, starts=1, threads=threads),
        lambda: dravo.identify_many(frames, symbols=placer.symbols, split=6, threads=threads),
    ]  # fmt: skip
    for call in calls:
        with pytest.raises(dravo.InputError, match="^threads: expected"):
            call()


@pytest.mark.parametrize("batch", [0, -1, 1.5, "all", 2**40])
def test_batches_of_no_size_are_refused(placer: dravo.Placer, batch: Any) -> None:
    with pytest.raises(dravo.InputError, match="^batch: expected"):
        dravo.scan(placer, ROWS, batch=batch)


def test_molecules_and_pairs_from_arrays(placer: dravo.Placer) -> None:
    symbols, positions = placer.symbols, placer.pair.positions
    for same in (positions.tolist(), np.asfortranarray(positions), positions[::-1].copy()[::-1]):
        assert np.array_equal(dravo.Pair(symbols, same, split=6).positions, positions)
    numbers = [{"C": 6, "O": 8, "N": 7, "H": 1}[symbol] for symbol in symbols]
    assert dravo.Pair(numbers, positions, split=6).symbols == symbols
    assert dravo.Pair(tuple(symbols), positions, split=6).symbols == symbols
    for wrong, message in [
        (positions[:, :2], "n x 3 numbers, found 12 x 2"), (positions[:5], "12"),
        (positions * np.nan, "finite"), ("xyz", "numbers"), (positions.ravel(), "found 36"),
    ]:  # fmt: skip
        with pytest.raises(dravo.InputError, match=message):
            dravo.Pair(symbols, wrong, split=6)
    for nothing in ([], np.empty((0, 3))):
        with pytest.raises(dravo.InputError):
            dravo.Molecule([], nothing)
    with pytest.raises(dravo.InputError, match="Xx"):
        dravo.Molecule(["Xx"], [[0, 0, 0]])
    with pytest.raises(dravo.InputError, match='one for each atom such as .* found "?\'?OHH'):
        dravo.Molecule("OHH", np.eye(3))
    with pytest.raises(dravo.InputError):
        dravo.Molecule(["H"], [[1e300, 0, 0]])
    copy = placer.pair.positions
    copy[:] = 0
    assert np.array_equal(placer.pair.positions, positions)


def test_trajectories_from_arrays(placer: dravo.Placer) -> None:
    frames = placer.positions(ROWS)
    known = {"symbols": placer.symbols, "split": 6}
    wanted = dravo.identify_many(frames, **known)
    assert np.allclose(wanted["r"], ROWS[:, 0], atol=1e-9)
    assert wanted["frame"].tolist() == [1, 2, 3]
    large = np.zeros((6, 12, 6))
    large[::2, :, ::2] = frames
    for same in (np.asfortranarray(frames), large[::2, :, ::2]):
        assert (dravo.identify_many(same, **known) == wanted).all()
    single = dravo.identify_many(frames.astype(np.float32), **known)
    assert np.allclose(single["r"], ROWS[:, 0], atol=1e-5)
    assert len(dravo.identify_many(np.empty((0, 12, 3)), **known)) == 0
    for wrong, message in [
        (frames[0], "n x 12 x 3"), (frames[:, :5], "n x 12 x 3"), (frames * np.inf, "finite"),
        (frames + 1j, "numbers"),
    ]:  # fmt: skip
        with pytest.raises(dravo.InputError, match=message):
            dravo.identify_many(wrong, **known)


def test_a_scan_that_nobody_finishes_ends(placer: dravo.Placer) -> None:
    poses = dravo.random(10**12, r=4.0)
    for _ in range(20):
        for batch in dravo.scan(placer, poses, batch=100):
            assert len(batch) >= 100
            break
    running = dravo.scan(placer, poses, batch=100)
    next(running)
    running.close()
    running.close()
    assert list(running) == []
    with dravo.scan(placer, poses, batch=100) as running:
        next(running)
    assert next(running, None) is None
    del running
    gc.collect()


def test_an_exception_in_the_loop_ends_the_scan(placer: dravo.Placer) -> None:
    with pytest.raises(ZeroDivisionError):
        for batch in dravo.scan(placer, dravo.random(10**12, r=4.0), batch=1000):
            print(1 / (len(batch) - len(batch)))


def test_two_scans_at_once(placer: dravo.Placer) -> None:
    one, two = dravo.random(3000, r=3.0), dravo.random(3000, r=5.0, seed=1)
    pairs = list(zip(*(dravo.scan(placer, p, batch=500) for p in (one, two))))
    assert len(pairs) > 1
    for k, poses in enumerate((one, two)):
        found = np.concatenate([batches[k].shortest for batches in pairs])
        assert np.array_equal(found, dravo.scan(placer, poses).rest().shortest)


def test_one_placer_in_several_threads(placer: dravo.Placer) -> None:
    poses = [dravo.random(4000, r=4.0, seed=k) for k in range(16)]

    def work(k: int) -> tuple[float, float, int, int]:
        one = poses[k][k]
        return (
            float(placer.positions(poses[k]).sum()),
            float(dravo.scan(placer, poses[k]).rest().shortest.sum()),
            placer.survey(one).contacts,
            len(placer.placed_pair(one).identify().equivalent),
        )

    alone = [work(k) for k in range(16)]
    with ThreadPoolExecutor(8) as pool:
        assert list(pool.map(work, range(16))) == alone


def test_results_outlive_what_made_them() -> None:
    placer = dravo.Placer(FORMAMIDES.read())
    positions = placer.positions(ROWS)
    batch = next(dravo.scan(placer, ROWS, positions=True))
    pose = placer.pair.identify().equivalent
    wanted = positions.copy(), batch.shortest.copy(), pose.copy()
    del placer
    gc.collect()
    dravo.Placer(FORMAMIDES.read()).positions(dravo.random(10000, r=5.0))  # writes freed memory
    assert np.array_equal(positions, wanted[0]) and np.array_equal(batch.positions, wanted[0])
    assert np.array_equal(batch.shortest, wanted[1]) and np.array_equal(pose, wanted[2])
