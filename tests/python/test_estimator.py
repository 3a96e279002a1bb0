"""Estimators: their life, their memory, threads, and what is refused."""

import threading

import numpy as np
import pytest

import esttform
from conftest import DATA

PARAM = "disThrAffine"
POINTS = np.random.default_rng(0).uniform(0, 640, (40, 2))


def test_refusals_say_what_was_found_and_expected(capfd):
    good, whole = POINTS, POINTS.astype(int)
    nan = good.copy()
    nan[3, 1] = np.nan
    open_one = esttform.Estimator(max_points=40)
    closed = esttform.Estimator()
    closed.close()
    closed.close()
    cases = [
        (ValueError, r"pts1: got shape \(4, 3\), expected N-by-2 or 2-by-N", lambda: esttform.estimate(np.zeros((4, 3)), good)),
        (ValueError, r"pts1: got shape \(40, 1, 2\), .*; reshape\(-1, 2\) makes it so", lambda: esttform.estimate(good[:, None], good)),
        (ValueError, "pts1: got masked points", lambda: esttform.estimate(np.ma.masked_greater(good, 600), good)),
        (ValueError, r"pts2: got shape \(39, 2\), expected that of pts1, \(40, 2\)", lambda: esttform.estimate(good, good[1:])),
        (TypeError, "got elements of type int64, expected one of float64", lambda: esttform.estimate(whole, whole)),
        (TypeError, "pts2: got elements of type float32, expected float64", lambda: esttform.estimate(good, good.astype("f"))),
        (TypeError, "pts1: got elements of type int16, expected float64, with",
         lambda: open_one.step(good.astype("h"), good.astype("h"))),
        (ValueError, r"pts2: got \(.*, nan\) at point 3, expected finite", lambda: esttform.estimate(good, nan)),
        (ValueError, "got 41 points, expected up to 40", lambda: open_one.step(np.zeros((41, 2)), np.zeros((41, 2)))),
        (ValueError, r"expected 2-by-N", lambda: esttform.estimate(good, good, layout="columns")),
        (ValueError, "points: got 41, expected 0 to 40", lambda: open_one.step_in_place(41)),
        (ValueError, "pts1: got a part of the estimator's own", lambda: open_one.step(open_one.pts2, open_one.pts1)),
        (ValueError, "max_points: got 1000000000, expected 0 to", lambda: esttform.Estimator(max_points=10**9)),
        (TypeError, "max_points: got a value of type float", lambda: esttform.Estimator(max_points=2.5)),
        (esttform.StepError, "at least 4 point pairs; got 3", lambda: open_one.step(good[:3], good[:3])),
        (esttform.ClosedError, "closed", lambda: closed.step(good, good)),
        (esttform.ClosedError, "closed", lambda: closed.pts1),
        (esttform.SettingsError, 'type: got "afine", expected similarity, affine, projective',
         lambda: esttform.estimate(good, good, "afine")),
        (esttform.SettingsError, "threshold and threshold_px: both given",
         lambda: esttform.estimate(good, good, threshold=1, threshold_px=1)),
        (esttform.SettingsError, "refine: has no effect with robust=False",
         lambda: esttform.estimate(good, good, robust=False, refine=True)),
        (esttform.SettingsError, "confidence: got 101, expected a number from 0 to 100", lambda: esttform.Estimator(confidence=101)),
        (ValueError, "params: got pointsInRows, which follows", lambda: esttform.estimate(good, good, params={"pointsInRows": 1})),
        (ValueError, "seed: got -1, expected a whole number", lambda: esttform.estimate(good, good, seed=-1)),
        (TypeError, "'threshhold', which is no setting", lambda: esttform.estimate(good, good, threshhold=1)),
        (esttform.SettingsError, "not tunable", lambda: open_one.set_param("method", 2)),
        (ValueError, "got speed, expected the name", lambda: open_one.set_param("speed", 2)),
        (esttform.LoadError, "nowhere.so: cannot load", lambda: esttform.estimate(good, good, block="/nowhere.so")),
        (esttform.SettingsError, "nowhere.csv: cannot open", lambda: esttform.read_matches("/nowhere.csv")),
        (esttform.SettingsError, r"^columns: got 2 columns, expected 4", lambda: esttform.read_matches(DATA / "box_in_scene.csv", columns=[1, 2])),
        (esttform.SettingsError, "^/no\udcff.csv: cannot open", lambda: esttform.read_matches("/no\udcff.csv")),
        (TypeError, "value: got a value of type str, expected a number", lambda: open_one.set_param(PARAM, "x")),
        (ValueError, r"pts1: got a list that is no array of numbers, expected N-by-2", lambda: esttform.estimate([[1, 2], [3]], good)),
        (TypeError, "variable_size: got a value of type str, expected True or False",
         lambda: esttform.generate_code(max_points=9, variable_size="no")),
        (ValueError, "max_points: got 2147483648, more than", lambda: esttform.generate_code(max_points=2**31)),
        (ValueError, "seed: got -1", lambda: esttform.item_seed(-1, 0)),
        (TypeError, "no setting 'seed'", lambda: esttform.generate_code(max_points=9, seed=1)),
    ]
    for kind, text, call in cases:
        with pytest.raises(kind, match=text):
            call()
    assert open_one.step(good, good, seed=1).found              # a refusal does no harm
    assert capfd.readouterr() == ("", "")


def test_life():
    with esttform.Estimator("similarity", max_points=40, seed=1) as estimator:
        copied = estimator.step(POINTS, POINTS + 3, seed=9)
        estimator.pts1[:], estimator.pts2[:] = POINTS, POINTS + 3
        in_place = estimator.step_in_place(40, seed=9)
        estimator.set_param(PARAM, 0.25)
        assert estimator.params[PARAM] == 0.25
        own = estimator.pts1
    assert copied.tform.tobytes() == in_place.tform.tobytes()
    assert estimator.closed
    own[:] = 1.0                                                # its memory is still there


def test_not_robust_and_not_found():
    whole = esttform.estimate(POINTS, POINTS + 3, "affine", robust=False)
    assert whole.inliers is None and whole.inlier_num is None and whole.found
    none = esttform.estimate(np.ones((5, 2)), POINTS[:5], "similarity", seed=1)
    assert not none.found and not none.tform.any() and "1 different place" in none.reason
    for call in (none.as_cv2, none.as_skimage, lambda: none.map(POINTS)):
        with pytest.raises(ValueError, match="no similarity transformation was found"):
            call()


def test_other_threads_go_on_during_a_step():
    # A step of two threads that would wait for each other if one kept the interpreter's lock.
    counts, is_done = [0], threading.Event()

    def count():
        while not is_done.is_set():
            counts[0] += 1

    random = np.random.default_rng(1)
    pts1, pts2 = random.uniform(0, 640, (1000, 2)), random.uniform(0, 640, (1000, 2))
    counter = threading.Thread(target=count)
    counter.start()
    before = counts[0]
    esttform.estimate(pts1, pts2, samples=20000, seed=1)
    during = counts[0] - before
    is_done.set()
    counter.join()
    assert during > 1000                                        # with the lock kept: a handful


def test_threads_share_an_estimator():
    def shifted(idx):
        size = (100, 300, 700, 2000, 20000)[idx % 5]            # it grows while others step
        points = np.random.default_rng(idx).uniform(0, 640, (size, 2))
        return points, points + idx

    expected = [esttform.estimate(*shifted(idx), "similarity", seed=idx).tform.tobytes() for idx in range(40)]
    estimator, results = esttform.Estimator("similarity"), {}

    def work(start):
        for idx in range(start, 40, 4):
            results[idx] = estimator.step(*shifted(idx), seed=idx).tform.tobytes()

    threads = [threading.Thread(target=work, args=(start,)) for start in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert [results[idx] for idx in range(40)] == expected


def test_close_while_others_make_room():
    faults = []

    def grow(estimator, size):
        try:
            estimator.step(np.zeros((size, 2)), np.ones((size, 2)), seed=1)
        except esttform.ClosedError:
            pass
        except Exception as fault:
            faults.append(fault)

    for _ in range(20):
        estimator = esttform.Estimator("similarity", robust=False)
        threads = [threading.Thread(target=grow, args=(estimator, size)) for size in (50000, 300, 70000)]
        for thread in threads:
            thread.start()
        estimator.close()
        for thread in threads:
            thread.join()
        assert estimator.closed and not faults
    with pytest.raises(esttform.ClosedError), estimator:
        pass
