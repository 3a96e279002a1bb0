"""C sources that estimate as this package does."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any

from esttform import _core
from esttform._estimate import settings_of

if TYPE_CHECKING:
    from numpy.typing import DTypeLike


def generate_code(
    type: str = "projective",
    *,
    max_points: int,
    dtype: DTypeLike = "float64",
    layout: str = "rows",
    order: str = "C",
    name: str = "esttform",
    variable_size: bool = False,
    main: bool = False,
    **settings: Any,
) -> dict[str, str]:
    """C99 sources for a program or a device without this library, those of ``esttform codegen``.

    Parameters
    ----------
    type : {"similarity", "affine", "projective"}
        What is estimated.
    max_points : int
        Point pairs of a step; with `variable_size` the most.
    dtype : data type
        Element type of the points, one of the block's eight.
    layout : {"rows", "columns"}
        N-by-2 or 2-by-N.
    order : {"C", "F"}
        Order of the points in memory, as of `Estimator`: N-by-2 in C order is x0, y0, x1, ..., as 2-by-N in F order is; the other
        two are all x, then all y.
    name : str
        A C identifier: prefix of the files and of what other sources see.
    variable_size : bool
        Steps may have fewer points than `max_points`.
    main : bool
        Adds main.c, a program that reads matches from a file.
    **settings
        As of `estimate`, without `seed`.

    Returns
    -------
    dict of str to str
        Texts by file name: NAME.h, NAME.c, the runtime, a CMakeLists.txt.

    Raises
    ------
    SettingsError
        A setting, a size or a name that is refused.

    Examples
    --------
    >>> sorted(generate_code("affine", max_points=100, name="shift"))[:2]
    ['CMakeLists.txt', 'is_little_endian_rt.c']
    """
    if "seed" in settings:
        raise TypeError("generate_code has no setting 'seed': generated code is seeded when it runs")
    return _core.generate_code(max_points, dtype, layout, order, name, variable_size, main, settings_of(type, settings))
