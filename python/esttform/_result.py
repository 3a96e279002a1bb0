"""What an estimate gives."""

from __future__ import annotations

from dataclasses import dataclass
from typing import TYPE_CHECKING, Any

import numpy as np

from esttform._convert import to_homography, to_skimage

if TYPE_CHECKING:
    from numpy.typing import ArrayLike, NDArray


@dataclass(frozen=True)
class Message:
    """A warning of the block, and how often the step raised it."""

    id: str
    text: str
    count: int


class Result:
    """A transformation and the matches that agree with it.

    Attributes
    ----------
    tform : ndarray, float64 or float32
        The block's matrix in the convention of the points. For points in rows (N-by-2) it acts on row vectors,
        ``[x1, y1, 1] @ tform``: 3-by-2, projective 3-by-3. For points in columns (2-by-N) on column vectors,
        ``tform @ [x1, y1, 1]``: 2-by-3, projective 3-by-3. All zero when nothing was found.
    inliers : ndarray of bool, shape (N,), or None
        The pairs that agree with the transformation; None when the fit was to all pairs.
    inlier_num : int or None
        How many these are.
    warnings : tuple of Message
        What the block had to say, each message once.
    type : str
        "similarity", "affine" or "projective".
    layout : str
        "rows" or "columns": the convention of the points.
    pair_num : int
        How many pairs there were.
    reason : str or None
        Why nothing was found; None when something was.
    """

    __slots__ = ("tform", "inliers", "inlier_num", "warnings", "type", "layout", "pair_num", "reason", "_pts1", "_pts2")

    def __init__(
        self,
        tform: NDArray[Any],
        inliers: NDArray[np.bool_] | None,
        inlier_num: int | None,
        warnings: tuple[Message, ...],
        type: str,
        layout: str,
        pair_num: int,
        reason: str | None = None,
        pts1: ArrayLike | None = None,
        pts2: ArrayLike | None = None,
    ) -> None:
        self.tform = tform
        self.inliers = inliers
        self.inlier_num = inlier_num
        self.warnings = warnings
        self.type = type
        self.layout = layout
        self.pair_num = pair_num
        self.reason = reason
        self._pts1 = pts1
        self._pts2 = pts2

    @property
    def found(self) -> bool:
        """Whether there is a transformation: False when `tform` is all zero."""
        return self.reason is None

    def as_homography(self) -> NDArray[Any]:
        """The transformation as a 3-by-3 matrix that acts on column vectors (x, y, 1), with the numbers of `tform`.

        A projective matrix is scaled as the block scales it: its last element need not be 1.
        """
        return to_homography(self.tform, self.layout)

    def as_cv2(self) -> NDArray[Any]:
        """What OpenCV takes: 2-by-3 for ``cv2.warpAffine``, of a projective result 3-by-3 for ``cv2.warpPerspective``.

        Raises
        ------
        ValueError
            Nothing was found.
        """
        self._refuse_none()
        matrix = self.as_homography()
        return matrix if self.type == "projective" else matrix[:2].copy()

    def as_skimage(self) -> Any:
        """A transform object of scikit-image, which maps points ``(x, y)`` of the first set to the second.

        Raises
        ------
        ValueError
            Nothing was found.
        """
        self._refuse_none()
        return to_skimage(self.as_homography(), self.type)

    def map(self, points: ArrayLike) -> NDArray[np.float64]:
        """Carries points over by the transformation.

        Parameters
        ----------
        points : array_like
            In the convention of the result: N-by-2, or 2-by-N.

        Raises
        ------
        ValueError
            Nothing was found, or the points have another shape.
        """
        self._refuse_none()
        given = np.asarray(points, dtype=np.float64)
        rows = given if self.layout == "rows" else given.T
        if rows.ndim != 2 or rows.shape[1] != 2:
            raise ValueError(f"points: got shape {given.shape}, expected {'N-by-2' if self.layout == 'rows' else '2-by-N'}")
        mapped = np.column_stack([rows, np.ones(len(rows))]) @ self.as_homography().T.astype(np.float64)
        with np.errstate(divide="ignore", invalid="ignore"):
            mapped = mapped[:, :2] / mapped[:, 2:]
        return np.asarray(mapped if self.layout == "rows" else mapped.T)

    def plot(self, ax: Any = None) -> Any:
        """Draws the motion of every pair in the first picture: inliers as solid blue lines, the others dashed orange.

        Parameters
        ----------
        ax : matplotlib.axes.Axes, optional
            Where to draw; None: the current axes.

        Returns
        -------
        matplotlib.axes.Axes

        Raises
        ------
        ValueError
            The result does not have its points: it was pickled, or comes from `estimate_many` or `Estimator.step_in_place`.
        """
        from esttform._plot import plot_result

        if self._pts1 is None or self._pts2 is None:
            raise ValueError("the result does not have its points: it is from another process, estimate_many or step_in_place")
        return plot_result(self, self._pts1, self._pts2, ax)

    def without_points(self) -> Result:
        """The same without the points that `plot` draws, which a result keeps alive."""
        return Result(self.tform, self.inliers, self.inlier_num, self.warnings, self.type, self.layout, self.pair_num, self.reason)

    def _refuse_none(self) -> None:
        if not self.found:
            raise ValueError(f"no {self.type} transformation was found: {self.reason}")

    def __reduce__(self) -> tuple[Any, ...]:
        return Result, (self.tform, self.inliers, self.inlier_num, self.warnings, self.type, self.layout, self.pair_num, self.reason)

    def __repr__(self) -> str:
        if not self.found:
            return f"<Result: no {self.type} transformation found: {self.reason}>"
        share = "" if self.inlier_num is None else f"{self.inlier_num} of "
        return f"<Result: {self.type}, {share}{self.pair_num} pairs{' inliers' if share else ''}>"
