"""Estimation, once and step after step."""

from __future__ import annotations

from types import TracebackType
from typing import TYPE_CHECKING, Any

from esttform import _core
from esttform._errors import ClosedError
from esttform._result import Result

if TYPE_CHECKING:
    from numpy.typing import ArrayLike, DTypeLike, NDArray


def settings_of(type: str, settings: dict[str, Any]) -> dict[str, Any]:
    settings["type"] = type
    return settings


def estimate(
    pts1: ArrayLike,
    pts2: ArrayLike,
    type: str = "projective",
    *,
    layout: str | None = None,
    order: str | None = None,
    **settings: Any,
) -> Result:
    """Estimates the transformation that maps points onto matched ones, in spite of wrong matches.

    Parameters
    ----------
    pts1, pts2 : array_like, N-by-2 or 2-by-N
        Matched points, of one of the types float64, float32, int8, uint8, int16, uint16, int32, uint32; a list of numbers becomes
        float64. Arrays are only read, and without a copy where they are contiguous, in C or Fortran order.
    type : {"projective", "affine", "similarity"}
        What is estimated; a similarity is without reflection.
    layout : {"rows", "columns"}, optional
        N-by-2 or 2-by-N; taken from the shape when not given, and 2-by-2 is N-by-2.
    order : {"C", "F"}, optional
        Memory order in which the block reads the points; taken from the arrays when not given, "C" for arrays in neither order.
        N-by-2 in C order is what the program reads with ``--layout columns``, its default; in F order ``--layout rows``; for
        2-by-N it is the other way round. The block sums in the order of memory: the last bits differ.
    robust : bool
        False: one least-squares fit to all pairs, wrong ones included. Default True.
    method : {"threshold", "median"}
        "threshold": inliers lie within a distance; "median": they are the better half. Default "threshold".
    threshold : float
        Largest distance of an inlier, *squared*: in squared units of the points. Default 9.
    threshold_px : float
        The same, not squared: in units of the points, pixels as a rule. Default 3.
    refine : bool
        Refit on the inliers while that improves the score, else once. Default True.
    samples : int
        Fixed number of samplings. Default with the median method: 1000.
    max_samples : int
        Most samplings; fewer when the confidence is reached. Default 10000.
    confidence : float
        Confidence, in percent, to have drawn one sample of right pairs only. Default 99.9.
    stop_at_inliers : float
        Stop sampling once this many percent of the pairs are inliers. Default: off.
    sampling : {"random", "cyclic"}
        Cyclic steps through the pairs. Default "random".
    tform_type : {"double", "single"} or data type
        Type of the result for integer points; double and single points give their own. Default "double".
    params : dict
        Raw dialog values of the block by name or index, over all others.
    seed : int
        Start of the random numbers, 0 to 4294967295; without it the processor time, so that two runs may differ a little.
    block : path
        The block's library; once used it stays loaded until the process ends.

    Returns
    -------
    Result
        `Result.found` is False when there is no transformation.

    Raises
    ------
    TypeError
        An element type or a setting of a wrong type, a keyword that is no setting.
    ValueError
        A shape, points that are not finite, a setting out of range or in contradiction to another (`SettingsError`).
    StepError
        The block refused the points.
    LoadError
        The block's library could not be loaded.

    Notes
    -----
    Other Python threads go on meanwhile, but the blocks of a process take turns: they share the C library's random numbers.

    Examples
    --------
    >>> pts1 = [[0, 0], [10, 0], [10, 10], [0, 10]]
    >>> pts2 = [[0, 0], [20, 0], [20, 20], [0, 20]]
    >>> estimate(pts1, pts2, "similarity", seed=1).tform.round(9) + 0
    array([[2., 0.],
           [0., 2.],
           [0., 0.]])
    """
    return _core.estimate(pts1, pts2, layout, order, settings_of(type, settings))


class Estimator:
    """A block that stays open, for step after step.

    Parameters
    ----------
    type : {"projective", "affine", "similarity"}
        What is estimated.
    max_points : int, optional
        Most points of a step. Not given: as many as steps have; the memory grows with them.
    dtype : data type
        Element type of the points of all steps.
    layout : {"rows", "columns"}
        N-by-2 or 2-by-N.
    order : {"C", "F"}
        Memory order in which the block reads the points, whatever order they come in; see `estimate`.
    **settings
        As of `estimate`. `seed` starts the random numbers when the estimator is opened; other blocks that the process opens or
        steps draw from them, too. With other blocks about, give each step a seed to have the same results again.

    Raises
    ------
    SettingsError, TypeError, LoadError
        As `estimate`.

    Notes
    -----
    A block reads its points at one place for as long as it is open, so that `step` copies them there. Who writes the points to
    `pts1` and `pts2` from the start saves the copy, where x and y lie side by side: N-by-2 in C, 2-by-N in F order. One estimator
    may be used by several threads: steps take turns.

    Examples
    --------
    >>> import numpy as np
    >>> frame = np.random.default_rng(0).uniform(0, 640, (50, 2))
    >>> with Estimator("similarity", seed=1) as estimator:
    ...     for shift in range(3):
    ...         print(estimator.step(frame, frame + shift))
    <Result: similarity, 50 of 50 pairs inliers>
    <Result: similarity, 50 of 50 pairs inliers>
    <Result: similarity, 50 of 50 pairs inliers>
    """

    def __init__(
        self,
        type: str = "projective",
        *,
        max_points: int | None = None,
        dtype: DTypeLike = "float64",
        layout: str = "rows",
        order: str = "C",
        **settings: Any,
    ) -> None:
        self._block = _core.RunningBlock(settings_of(type, settings), layout, order, dtype, max_points)
        self._is_rows = layout == "rows"

    def step(self, pts1: ArrayLike, pts2: ArrayLike, *, seed: int | None = None) -> Result:
        """One estimate over matched points.

        Parameters
        ----------
        pts1, pts2 : array_like
            In the estimator's element type and layout. The result keeps them for `Result.plot`, without a copy.
        seed : int, optional
            Starts the random numbers anew; without it they go on from the last step.

        Raises
        ------
        TypeError, ValueError
            Another element type, shape or number of points than the estimator takes; points that are not finite.
        StepError
            The block refused the points; the estimator goes on.
        ClosedError
            The estimator is closed.
        """
        return self._block.step(pts1, pts2, seed)

    def step_in_place(self, points: int, *, seed: int | None = None) -> Result:
        """One estimate over the first points of `pts1` and `pts2`, where they are.

        Parameters
        ----------
        points : int
            How many pairs these are. The result does not keep them: the next step has others in their place.
        seed : int, optional
            As of `step`.

        Raises
        ------
        ValueError
            More points than there is room for, or the errors of `step`.
        """
        if not 0 <= points <= self._block.room:
            raise ValueError(f"points: got {points}, expected 0 to {self._block.room}")
        pts1, pts2 = self._block.pts1, self._block.pts2
        shown = (slice(points), slice(None)) if self._is_rows else (slice(None), slice(points))
        return self._block.step(pts1[shown], pts2[shown], seed).without_points()

    @property
    def pts1(self) -> NDArray[Any]:
        """The estimator's own array of first points, `max_points` long; another takes its place when it grows."""
        return self._block.pts1

    @property
    def pts2(self) -> NDArray[Any]:
        """The estimator's own array of second points."""
        return self._block.pts2

    @property
    def params(self) -> dict[str, float]:
        """The block's eighteen dialog values by name."""
        return self._block.params

    def set_param(self, key: str | int, value: float) -> None:
        """Changes a dialog value between steps.

        Parameters
        ----------
        key : str or int
            Name or index of a parameter; ``esttform params`` tells which may change.
        value : float
            Its new value.

        Raises
        ------
        ValueError
            No such parameter, one that may not change now, or a value that the block refuses; the old one stays in force.
        """
        self._block.set_param(key, value)

    @property
    def closed(self) -> bool:
        """Whether the estimator was closed."""
        return not self._block.is_open

    def close(self) -> None:
        """Closes the block and frees its memory. A second time it does nothing."""
        self._block.close()

    def __enter__(self) -> Estimator:
        if self.closed:
            raise ClosedError("the estimator is closed; open another one")
        return self

    def __exit__(self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None) -> None:
        self.close()
