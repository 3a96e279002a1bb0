"""Matched points from files, as the program reads them."""

from __future__ import annotations

import os
from typing import TYPE_CHECKING, Any, Sequence

from esttform import _core

if TYPE_CHECKING:
    from numpy.typing import DTypeLike, NDArray


def read_matches(
    path: str | os.PathLike[str], dtype: DTypeLike = "float64", columns: Sequence[str | int] = ()
) -> tuple[NDArray[Any], NDArray[Any]]:
    """Matched points of a CSV or TSV file.

    Parameters
    ----------
    path : path
        A file with columns x1, y1, x2, y2, by name or, without a header, in this order. ``-`` is standard input.
    dtype : data type
        Element type of the points, one of the block's eight.
    columns : sequence of str or int, optional
        Other names, or positions counted from 1, of these four columns.

    Returns
    -------
    pts1, pts2 : ndarray, N-by-2

    Raises
    ------
    SettingsError
        A file that cannot be read, with file and line.

    Examples
    --------
    >>> pts1, pts2 = read_matches("examples/data/scan_page_affine.csv")
    >>> pts1.shape == pts2.shape
    True
    """
    return _core.read_matches(os.fsencode(path), dtype, [str(column) for column in columns])
