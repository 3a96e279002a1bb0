"""Many items: the same results by one process, several, Dask, and the program; lost processes and bad items."""

import json
import os
import signal
import subprocess
import time

import numpy as np
import pytest

import esttform
from conftest import DATA, assert_equals_program

FILES = [str(DATA / name) for name in ("arches_panorama.csv", "box_in_scene.csv", "micrograph_shift.csv", "scan_page_affine.csv")]


@pytest.fixture(scope="module")
def items():
    """Forty sets of different sizes."""
    random = np.random.default_rng(3)
    pairs = []
    for idx in range(40):
        pts1 = random.uniform(0, 640, (20 + 7 * idx, 2))
        pts2 = pts1 @ [[1.1, 0.1], [-0.1, 0.9]] + idx
        pts2[::3] = random.uniform(0, 640, pts2[::3].shape)
        pairs.append((pts1, pts2))
    return pairs


def bits(results):
    return [(result.tform.tobytes(), result.inliers.tobytes()) for result in results]


@pytest.fixture(scope="module")
def expected(items):
    return bits(esttform.estimate(*item, "affine", seed=esttform.item_seed(5, idx)) for idx, item in enumerate(items))


def test_files_as_the_program_does(tmp_path):
    output = tmp_path / "results.jsonl"
    subprocess.run([os.environ["ESTTFORM_PROGRAM"], "batch", *FILES, "-o", output, "--seed", "7", "--quiet"], check=True)
    steps = [{**json.loads(line), "layout": "columns"} for line in output.read_text().splitlines()]
    results = esttform.estimate_many(FILES, seed=7, jobs=2)
    assert len(steps) == len(FILES)
    for result, step in zip(results, steps):
        assert_equals_program(result, step)


@pytest.mark.parametrize("jobs", [1, 2, 3])
def test_jobs_do_not_matter(items, expected, jobs):
    assert bits(esttform.estimate_many(iter(items), "affine", seed=5, jobs=jobs)) == expected


def test_bad_items(items, tmp_path):
    some = [items[0], (np.zeros((3, 3)), np.zeros((3, 3))), str(tmp_path / "none.csv"), 7, items[3]]
    results = esttform.estimate_many(some, "affine", seed=5, jobs=2, errors="return")
    assert [type(result).__name__ for result in results] == ["Result", "ValueError", "SettingsError", "TypeError", "Result"]
    with pytest.raises(ValueError, match="got shape"):
        esttform.estimate_many(some, "affine", seed=5, jobs=2)
    for wrong in ({"errors": "ignore"}, {"jobs": 0}, {"confidence": 200}, {"seed": -1}, {"layout": "across"}):
        with pytest.raises(ValueError):
            esttform.estimate_many(items, **wrong)
    for wrong in ({"dtype": "int64"}, {"max_points": 9}):
        with pytest.raises(TypeError):
            esttform.estimate_many(items, **wrong)
    with pytest.raises(FileNotFoundError):
        esttform.estimate_many(tmp_path / "*.csv")


@pytest.mark.parametrize("jobs", [1, 2])
def test_items_are_taken_as_estimate_takes_them(jobs):
    random = np.random.default_rng(4)
    pts1 = random.integers(0, 200, (30, 2))
    whole, real = pts1.astype("int16"), pts1.astype("float32")
    some = [(whole, whole + np.int16(3)), (pts1.tolist(), (pts1 + 3).tolist()), (np.asfortranarray(real), np.asfortranarray(real + 3)),
            (memoryview(real), real)]
    settings = {"type": "similarity", "stop_at_inliers": 50}
    many = esttform.estimate_many(some, **settings, seed=2, jobs=jobs)
    single = [esttform.estimate(*item, **settings, seed=esttform.item_seed(2, idx)) for idx, item in enumerate(some)]
    assert bits(many) == bits(single)
    narrow, = esttform.estimate_many(some[:1], "similarity", tform_type="single", dtype="int16", jobs=jobs)
    assert narrow.tform.dtype == np.float32


class Untellable(Exception):
    def __init__(self, one, two):
        super().__init__(one)                               # pickled without two, and so not to be read again


class Awkward:
    """An item whose fault cannot be told to another process, and, if it is so made, neither can the item."""

    def __init__(self, is_local):
        self.hold = (lambda: None) if is_local else None

    def __iter__(self):
        raise Untellable("no points here", 2)


def test_faults_that_cannot_be_told(items, expected, capfd):
    some = [items[0], Awkward(True), items[2], *[Awkward(False)] * 20, items[23]]
    for jobs in (1, 2):
        results = esttform.estimate_many(some, "affine", seed=5, jobs=jobs, errors="return")
        assert bits(results[idx] for idx in (0, 2, 23)) == [expected[idx] for idx in (0, 2, 23)]
        assert {str(results[idx]) for idx in (1, *range(3, 23))} == {"Untellable: no points here"}
    assert capfd.readouterr() == ("", "")


def test_a_lost_process_loses_nothing(items, expected, tmp_path):
    for idx in (2, 39):
        mark = tmp_path / str(idx)
        some = [*items[:idx], Deadly(items[idx], mark, os.getpid()), *items[idx + 1:]]
        assert bits(esttform.estimate_many(some, "affine", seed=5, jobs=2)) == expected
        assert mark.exists()
    deadly = Deadly(items[7], tmp_path / "no folder" / "mark", os.getpid())
    results = esttform.estimate_many([*items[:7], deadly, *items[8:]], "affine", seed=5, jobs=2, errors="return")
    assert str(results.pop(7)) == "3 processes with this item ended, the last with exit code -9"
    assert bits(results) == expected[:7] + expected[8:]
    with pytest.raises(esttform.LostProcessError):
        esttform.estimate_many([deadly], "affine", jobs=2)


class Deadly(tuple):
    """A pair of arrays that kills the process, of another than its maker, that takes it apart first; any such, without a place for the mark."""

    def __new__(cls, item, mark, maker):
        pair = super().__new__(cls, item)
        pair.mark, pair.maker = mark, maker
        return pair

    def __reduce__(self):
        return Deadly, (list(super().__iter__()), self.mark, self.maker)

    def __iter__(self):
        if os.getpid() != self.maker and not self.mark.exists():
            if self.mark.parent.exists():
                self.mark.touch()
            os.kill(os.getpid(), signal.SIGKILL)
        return super().__iter__()


@pytest.fixture(scope="module")
def client():
    distributed = pytest.importorskip("distributed")
    with distributed.LocalCluster(n_workers=2, threads_per_worker=1, dashboard_address=None) as cluster, \
            distributed.Client(cluster) as one:
        yield one


def test_dask_gives_the_same(client, items, expected):
    import dask
    import dask.bag

    import esttform.dask

    inputs = [
        (items, {"npartitions": 7}),
        (dask.bag.from_sequence(items, npartitions=3).filter(lambda item: True), {}),
        ([dask.delayed(item, traverse=False) for item in items], {"npartitions": 2}),
    ]
    for given, keywords in inputs:
        assert bits(esttform.dask.estimate_many(given, "affine", seed=5, **keywords).compute()) == expected
    results = esttform.estimate_many(FILES, seed=7, jobs=1)
    assert bits(esttform.dask.estimate_many(FILES, seed=7).compute()) == bits(results)
    frame = esttform.dask.estimate_frame([*FILES, "none.csv"], seed=7, npartitions=2, errors="return").compute()
    assert frame.index.tolist() == [0, 1, 2, 3, 4]
    assert frame["inlier_num"].tolist() == [result.inlier_num for result in results] + [-1]
    assert frame.loc[1, ["h00", "h01", "h02"]].tolist() == results[1].as_homography()[0].tolist()
    assert frame["found"].tolist() == [True] * 4 + [False] and "cannot open" in frame.loc[4, "error"]


def test_a_lost_worker_loses_nothing(client, items, expected):
    import esttform.dask

    long = [items[idx % 40] for idx in range(120)]
    plain = bits(esttform.estimate_many(long, "affine", seed=5, jobs=1, samples=3000))
    parts = client.compute(esttform.dask.estimate_many(long, "affine", seed=5, npartitions=30, samples=3000).to_delayed())
    while not any(part.done() for part in parts):
        time.sleep(0.001)
    lost = next(iter(client.run(os.getpid).values()))
    os.kill(lost, signal.SIGKILL)
    assert not all(part.done() for part in parts)
    assert bits(result for part in client.gather(parts) for result in part) == plain
    client.wait_for_workers(2, timeout=30)
    assert lost not in client.run(os.getpid).values()
