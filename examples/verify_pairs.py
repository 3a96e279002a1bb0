"""Verifies many image pairs on a cluster: which of them show the same scene?

Makes a folder of match files, of which every second belongs to two pictures without anything in common, lets the workers of a
Dask cluster estimate each, and prints how many were told right and how many pairs a second were verified.

Usage: verify_pairs.py [--pairs N] [--workers N...] [--scheduler ADDRESS] [--without-dask]
"""

import argparse
import pathlib
import tempfile
import time
from collections.abc import Callable

import numpy as np
from dask.distributed import Client, LocalCluster

import esttform
import esttform.dask

SETTINGS = {"type": "projective", "seed": 1, "max_samples": 1000}
DATA = pathlib.Path(__file__).resolve().parent / "data"
SAME_SCENE_MIN = 60
"""Inliers from which on a pair counts as the same scene: of 300 wrong matches some 40 can agree with one map by chance."""


def write_pairs(folder: pathlib.Path, pair_num: int) -> np.ndarray:
    """Writes match files; True for those of the same scene: 300 matches drawn from real ones, a third of them right."""
    random = np.random.default_rng(1)
    pts1, pts2 = esttform.read_matches(DATA / "arches_panorama.csv")
    for idx in range(pair_num):
        chosen = random.choice(len(pts1), 300, replace=False)
        first, second = pts1[chosen], pts2[chosen]
        wrong = slice(100, None) if idx % 2 == 0 else slice(0, None)
        second[wrong] = random.permutation(second[wrong])
        np.savetxt(folder / f"pair_{idx:06}.csv", np.column_stack([first, second]), "%.2f", ",", header="x1,y1,x2,y2", comments="")
    return np.arange(pair_num) % 2 == 0


def by_cluster(client: Client, folder: pathlib.Path) -> np.ndarray:
    """Numbers of inliers."""
    return client.compute(esttform.dask.estimate_frame(folder / "*.csv", **SETTINGS)).result()["inlier_num"].to_numpy()


def by_processes(folder: pathlib.Path, job_num: int) -> np.ndarray:
    return np.array([result.inlier_num for result in esttform.estimate_many(folder / "*.csv", **SETTINGS, jobs=job_num)])


def report(worker_num: int, is_same: np.ndarray, inlier_nums: Callable[[], np.ndarray]) -> None:
    start = time.perf_counter()
    told_same = inlier_nums() >= SAME_SCENE_MIN
    seconds = time.perf_counter() - start
    print(f"{worker_num} workers: {len(told_same)} pairs, {np.sum(told_same == is_same)} told right, "
          f"{len(told_same) / seconds:.0f} pairs/s, {seconds:.1f} s", flush=True)


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--pairs", type=int, default=10000, help="number of pairs (default 10000)")
    parser.add_argument("--workers", type=int, nargs="+", default=[1, 2], help="worker processes on this machine (default 1 2)")
    parser.add_argument("--scheduler", help="address of a running cluster that sees the folder of temporary files")
    parser.add_argument("--without-dask", action="store_true", help="the same by processes of this machine alone")
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        is_same = write_pairs(folder, arguments.pairs)
        if arguments.scheduler:
            with Client(arguments.scheduler) as client:
                report(len(client.scheduler_info()["workers"]), is_same, lambda: by_cluster(client, folder))
            return
        for worker_num in arguments.workers:
            if arguments.without_dask:
                report(worker_num, is_same, lambda: by_processes(folder, worker_num))
                continue
            # Blocks of one process take turns, so that threads would not help.
            with LocalCluster(n_workers=worker_num, threads_per_worker=1, dashboard_address=None) as cluster, Client(cluster) as client:
                client.run(lambda: __import__("esttform"))      # what a worker does once is not measured
                report(worker_num, is_same, lambda: by_cluster(client, folder))


if __name__ == "__main__":
    main()
