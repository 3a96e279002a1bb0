"""The program to compare with, and the bundled matches."""

import json
import os
import pathlib
import subprocess

import numpy as np
import pytest

DATA = pathlib.Path(__file__).resolve().parents[2] / "examples" / "data"


@pytest.fixture(scope="session")
def program():
    """Runs the program; gives its steps from JSON lines."""

    def run(*arguments):
        command = [os.environ["ESTTFORM_PROGRAM"], *map(str, arguments)]
        text = subprocess.run(command, capture_output=True, text=True, check=True).stdout
        layout = arguments[arguments.index("--layout") + 1] if "--layout" in arguments else "columns"
        return [{**json.loads(line), "layout": layout} for line in text.splitlines()]

    return run


def assert_equals_program(result, step):
    """Equal to the bit: JSON numbers have all digits that it takes to read them back exactly.

    The program's matrix may be that of the other convention.
    """
    expected = np.array(step["tform"], dtype=result.tform.dtype)
    acts_on_rows = expected.shape == (3, 2) or (expected.shape == (3, 3) and step["layout"] == "rows")
    if acts_on_rows != (result.layout == "rows"):
        expected = np.ascontiguousarray(expected.T)
    assert result.tform.tobytes() == expected.tobytes()
    assert result.inliers.astype(int).tolist() == step["inliers"]
    assert result.inlier_num == step["inlierNum"]
