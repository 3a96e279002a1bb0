"""Results in the forms of other libraries, pickled and drawn; docstrings and type hints."""

import doctest
import importlib
import os
import pathlib
import pickle
import subprocess
import sys

import numpy as np
import pytest

import esttform
from conftest import DATA

SOURCE = pathlib.Path(__file__).resolve().parents[2]
TYPES = [("arches_panorama.csv", "projective"), ("scan_page_affine.csv", "affine"), ("scan_text_rotated.csv", "similarity")]


@pytest.mark.parametrize("file, type", TYPES)
@pytest.mark.parametrize("layout", ["rows", "columns"])
def test_other_libraries_map_points_to_the_same_place(file, type, layout):
    cv2 = pytest.importorskip("cv2")
    pytest.importorskip("skimage")
    pts1, pts2 = esttform.read_matches(DATA / file)
    turned = (lambda points: points) if layout == "rows" else np.transpose
    result = esttform.estimate(turned(pts1), turned(pts2), type, seed=1)
    mapped = turned(result.map(turned(pts1)))
    assert np.median(np.hypot(*(mapped - pts2)[result.inliers].T)) < 2.0
    np.testing.assert_allclose(result.as_skimage()(pts1), mapped, rtol=1e-12, atol=1e-9)
    by_cv2 = cv2.perspectiveTransform if type == "projective" else cv2.transform
    np.testing.assert_allclose(by_cv2(pts1[:, None, :], result.as_cv2())[:, 0], mapped, rtol=1e-12, atol=1e-9)
    for theirs in (result.as_cv2(), result.as_skimage()):       # there and back
        np.testing.assert_array_equal(esttform.as_tform(theirs, layout), result.tform)
    np.testing.assert_array_equal(esttform.to_homography(result.tform, layout), result.as_homography())


def test_homography_of_single_points_is_single_and_shapes_are_refused():
    points = np.random.default_rng(0).uniform(0, 90, (20, 2)).astype(np.float32)
    assert esttform.estimate(points, points, "affine", seed=1).as_homography().dtype == np.float32
    for call in (lambda: esttform.to_homography(np.zeros((2, 3)), "rows"), lambda: esttform.as_tform(np.zeros((3, 2)), "rows"),
                 lambda: esttform.as_tform(np.eye(3), "row")):
        with pytest.raises(ValueError, match="expected"):
            call()


def test_pickle_and_plot():
    pyplot = pytest.importorskip("matplotlib.pyplot")
    pyplot.switch_backend("Agg")
    result = esttform.estimate(*esttform.read_matches(DATA / "box_in_scene.csv"), seed=1)
    axes = result.plot(pyplot.figure().add_subplot())
    labels = [text.get_text() for text in axes.get_legend().get_texts()]
    assert labels == [f"others ({result.pair_num - result.inlier_num})", f"inliers ({result.inlier_num})"]
    assert axes.yaxis_inverted()
    other = pickle.loads(pickle.dumps(result))
    assert other.tform.tobytes() == result.tform.tobytes() and (other.inliers == result.inliers).all()
    with pytest.raises(ValueError, match="does not have its points"):
        other.plot()


@pytest.mark.parametrize("module", ["", "._estimate", "._code", "._matches", "._many", ".dask", "._convert", "._result"])
def test_docstrings(module, monkeypatch):
    if module == ".dask":
        pytest.importorskip("distributed")
    monkeypatch.chdir(SOURCE)                                   # examples name the bundled files
    assert doctest.testmod(importlib.import_module("esttform" + module)).failed == 0


def test_type_hints(tmp_path):
    user = tmp_path / "user.py"
    user.write_text("import numpy as np\nimport esttform\n"
                    "result = esttform.estimate(np.zeros((4, 2)), np.zeros((4, 2)), 'affine', seed=1)\n"
                    "reveal_type(result.inlier_num)\nesttform.estimate(np.zeros((4, 2)))\n")
    mypy = [sys.executable, "-m", "mypy", "--cache-dir", str(tmp_path / "cache")]
    if subprocess.run([*mypy, "--version"], capture_output=True).returncode != 0:
        pytest.skip("mypy is not installed")
    package = subprocess.run(mypy, cwd=SOURCE / "python", capture_output=True, text=True)
    assert package.returncode == 0, package.stdout
    use = subprocess.run([*mypy, str(user)], env={**os.environ, "MYPYPATH": str(SOURCE / "python")}, capture_output=True, text=True)
    assert 'Revealed type is "Union[builtins.int, None]"' in use.stdout and 'Missing positional argument "pts2"' in use.stdout
