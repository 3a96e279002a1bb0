"""The module and the program give the same bits, for every element type, memory order and convention."""

import itertools

import numpy as np
import pytest

import esttform
from conftest import DATA, assert_equals_program

BUNDLED = [
    ("arches_panorama.csv", "projective", "float64"),
    ("scan_page_affine.csv", "affine", "float64"),
    ("scan_text_rotated.csv", "similarity", "float64"),
    ("micrograph_shift.csv", "similarity", "float64"),
    ("box_in_scene.csv", "projective", "float64"),
    ("arches_panorama_int16.csv", "projective", "int16"),
    ("slice_shift_uint8.csv", "similarity", "uint8"),
]
PROGRAM_TYPE = {"float64": "double", "float32": "single"}


@pytest.mark.parametrize("file, type, dtype", BUNDLED)
def test_bundled_matches(program, file, type, dtype):
    step = program("estimate", DATA / file, "--type", type, "--points-type", PROGRAM_TYPE.get(dtype, dtype), "--seed", 5,
                   "--format", "json")[0]
    assert_equals_program(esttform.estimate(*esttform.read_matches(DATA / file, dtype), type, seed=5), step)


def memory_orders(points):
    """The same points in every kind of memory; only the second is in F order, what is in neither is read as C."""
    wide = np.zeros((len(points), 7), points.dtype)
    wide[:, 2:5:2] = points
    raw = bytearray(points.nbytes + 1)
    unaligned = np.frombuffer(raw, points.dtype, points.size, offset=1).reshape(points.shape)
    unaligned[:] = points
    constant = points.copy()
    constant.flags.writeable = False
    swapped = points.astype(points.dtype.newbyteorder())
    return [np.ascontiguousarray(points), np.asfortranarray(points), wide[:, 2:5:2], points[::-1][::-1], unaligned, constant, swapped]


@pytest.mark.parametrize("dtype", ["float64", "float32", "int8", "uint8", "int16", "uint16", "int32", "uint32"])
@pytest.mark.parametrize("convention", ["rows", "columns"])
def test_every_type_and_memory_order(program, tmp_path, dtype, convention):
    random = np.random.default_rng(7)
    pts1 = random.integers(0, 100, (60, 2)).astype(dtype)
    pts2 = (pts1 + [11, 3]).astype(dtype)
    pts2[::4] = random.integers(0, 100, (15, 2))
    matches = tmp_path / "matches.csv"
    np.savetxt(matches, np.hstack([pts1, pts2]).astype(np.int64), fmt="%d", delimiter=",", header="x1,y1,x2,y2", comments="")
    steps = [program("estimate", matches, "--type", "affine", "--points-type", PROGRAM_TYPE.get(dtype, dtype), "--seed", 3,
                     "--format", "json", "--layout", layout)[0] for layout in ("columns", "rows")]
    # What is C order of the rows is F order of the columns, and the block reads the same memory.
    turned = (lambda points: points) if convention == "rows" else np.transpose
    order = {"rows": "CF", "columns": "FC"}[convention]
    arrays = memory_orders(pts1), memory_orders(pts2)
    for (idx1, first), (idx2, second) in itertools.product(*map(enumerate, arrays)):
        before = first.tobytes(), second.tobytes()
        both = first.flags.c_contiguous and second.flags.c_contiguous
        is_f_pair = idx1 == idx2 == 1
        by_memory = steps[0] if both else steps[1] if is_f_pair else steps["CF".index(order[0])]
        assert_equals_program(esttform.estimate(turned(first), turned(second), "affine", seed=3), by_memory)
        assert before == (first.tobytes(), second.tobytes())
    for idx in (0, 1):
        forced = esttform.estimate(turned(arrays[0][2]), turned(arrays[1][4]), "affine", order=order[idx], seed=3)
        assert_equals_program(forced, steps[idx])
        with esttform.Estimator("affine", dtype=dtype, layout=convention, order=order[idx]) as estimator:
            for first, second in zip(*arrays):
                assert_equals_program(estimator.step(turned(first), turned(second), seed=3), steps[idx])


def test_settings_reach_the_block(program):
    pairs = [
        (["--method", "median", "--samples", 50], {"method": "median", "samples": 50}),
        (["--threshold-px", 2, "--no-refine"], {"threshold_px": 2, "refine": False}),
        (["--threshold", 2, "--max-samples", 20], {"threshold": 2, "max_samples": 20}),
        (["--confidence", 50, "--stop-at-inliers", 20], {"confidence": 50, "stop_at_inliers": 20}),
        (["--sampling", "cyclic", "--samples", 30], {"sampling": "cyclic", "samples": np.int32(30)}),
        (["--param", "disThrProjective=4"], {"params": {"disThrProjective": 4}}),
    ]
    pts1, pts2 = esttform.read_matches(DATA / "box_in_scene.csv")
    for options, keywords in pairs:
        step = program("estimate", DATA / "box_in_scene.csv", "--seed", 2, "--format", "json", *options)[0]
        assert_equals_program(esttform.estimate(pts1, pts2, seed=2, **keywords), step)


def test_stream_goes_on_as_the_programs(program):
    steps = program("estimate", DATA / "street_handheld.csv", "--type", "similarity", "--seed", 4, "--format", "json")
    table = np.genfromtxt(DATA / "street_handheld.csv", delimiter=",", names=True)
    frames = [table[table["frame"] == frame] for frame in np.unique(table["frame"])]
    assert len(frames) == len(steps)
    with esttform.Estimator("similarity", seed=4) as estimator:      # grows on its way
        for rows, step in zip(frames, steps):
            pts1, pts2 = np.column_stack([rows["x1"], rows["y1"]]), np.column_stack([rows["x2"], rows["y2"]])
            assert_equals_program(estimator.step(pts1, pts2), step)


def test_generated_code_is_the_programs(program, tmp_path):
    import os
    import subprocess

    folder = tmp_path / "code"
    subprocess.run([os.environ["ESTTFORM_PROGRAM"], "codegen", "--type", "affine", "--points-type", "int16", "--threshold-px", "2",
                    "--variable-size", "--with-main", "--max-points", "64", "--name", "shift", "-o", folder],
                   check=True, capture_output=True)
    files = esttform.generate_code("affine", max_points=64, dtype="int16", name="shift", variable_size=True, main=True, threshold_px=2)
    assert {path.name: path.read_text() for path in folder.iterdir() if path.name != "generated_files.txt"} == files
