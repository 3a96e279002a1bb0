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
    for wrong in ({"errors": "ignore"}, {"jobs": 0}, {"confidence": 200}):
        with pytest.raises(ValueError):
            esttform.estimate_many(items, **wrong)
    with pytest.raises(FileNotFoundError):
        esttform.estimate_many(tmp_path / "*.csv")


def test_a_lost_process_loses_nothing(items, expected, tmp_path):
    for idx in (2, 39):
        mark = tmp_path / str(idx)
        some = [*items[:idx], Deadly(items[idx], mark, os.getpid()), *items[idx + 1:]]
        assert bits(esttform.estimate_many(some, "affine", seed=5, jobs=2)) == expected
        assert mark.exists()
    with pytest.raises(esttform.LostProcessError, match="3 processes with the same 1 items ended, the last with exit code -9"):
        esttform.estimate_many([Deadly(items[0], tmp_path / "no folder" / "mark", os.getpid())], "affine", jobs=2)


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
