"""Transformations to and from the forms of other libraries."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any

import numpy as np

if TYPE_CHECKING:
    from numpy.typing import NDArray


def to_homography(tform: Any, layout: str = "rows") -> NDArray[Any]:
    """A matrix of the block as a 3-by-3 matrix that acts on column vectors (x, y, 1).

    Parameters
    ----------
    tform : array_like
        3-by-2 or 3-by-3 for points in rows, 2-by-3 or 3-by-3 for points in columns.
    layout : {"rows", "columns"}
        The convention of the points that the matrix is for.

    Raises
    ------
    ValueError
        Another shape or layout.
    """
    matrix = np.asarray(tform)
    _refuse_layout(layout)
    upright = matrix.T if layout == "rows" else matrix
    if upright.shape == (3, 3):
        return upright.copy()
    if upright.shape != (2, 3):
        expected = "3-by-2 or 3-by-3" if layout == "rows" else "2-by-3 or 3-by-3"
        raise ValueError(f"tform: got shape {matrix.shape}, expected {expected}")
    return np.vstack([upright, np.array([[0, 0, 1]], dtype=upright.dtype)])


def as_tform(transform: Any, layout: str = "rows") -> NDArray[Any]:
    """A transformation of another library as the block writes it.

    Parameters
    ----------
    transform : array_like or a transform of scikit-image
        2-by-3 (``cv2.estimateAffine2D``) or 3-by-3 (``cv2.findHomography``), acting on column vectors (x, y, 1); or an object
        with a 3-by-3 one in `params`.
    layout : {"rows", "columns"}
        The convention of the points that the result is for.

    Returns
    -------
    ndarray
        A 3-by-3 matrix whose last row is 0, 0, 1 is an affine one and gives 3-by-2 (rows) or 2-by-3 (columns); another
        3-by-3 matrix keeps its shape.

    Raises
    ------
    ValueError
        Another shape or layout.
    """
    _refuse_layout(layout)
    is_object = hasattr(transform, "params")
    matrix = np.asarray(transform.params if is_object else transform)
    if matrix.shape not in (((3, 3),) if is_object else ((2, 3), (3, 3))):     # params of two rows are polynomials
        expected = "an object with 3-by-3 params" if is_object else "2-by-3 or 3-by-3"
        raise ValueError(f"transform: got shape {matrix.shape}, expected {expected}")
    if matrix.shape == (3, 3) and np.array_equal(matrix[2], [0, 0, 1]):
        matrix = matrix[:2]
    return np.ascontiguousarray(matrix.T if layout == "rows" else matrix)


def to_skimage(homography: NDArray[Any], type: str) -> Any:
    """A transform object of scikit-image for a 3-by-3 matrix."""
    from skimage import transform

    classes = {
        "similarity": transform.SimilarityTransform,
        "affine": transform.AffineTransform,
        "projective": transform.ProjectiveTransform,
    }
    return classes[type](matrix=homography.astype(np.float64))


def _refuse_layout(layout: str) -> None:
    if layout not in ("rows", "columns"):
        raise ValueError(f"layout: got {layout!r}, expected rows or columns")
