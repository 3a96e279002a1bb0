"""The picture of a result, drawn by matplotlib."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any

import numpy as np

if TYPE_CHECKING:
    from esttform._result import Result

# Two colours that all people tell apart, and two line styles for those who print in black and white.
INLIER_STYLE = {"color": "#0072B2", "linestyle": "-", "linewidth": 1.0}
OTHER_STYLE = {"color": "#D55E00", "linestyle": (0, (4, 2)), "linewidth": 0.7}


def plot_result(result: Result, pts1: Any, pts2: Any, ax: Any) -> Any:
    """Draws each pair as a line from its first point to its second one. Returns the axes."""
    from matplotlib import pyplot
    from matplotlib.collections import LineCollection

    if ax is None:
        ax = pyplot.gca()
    first, second = (np.asarray(points, dtype=np.float64) for points in (pts1, pts2))
    if result.layout == "columns":
        first, second = first.T, second.T
    mask = np.ones(len(first), dtype=bool) if result.inliers is None else result.inliers
    name = "pairs" if result.inliers is None else "inliers"
    for chosen, style, label in ((~mask, OTHER_STYLE, "others"), (mask, INLIER_STYLE, name)):
        if not chosen.any():
            continue
        lines = np.stack([first[chosen], second[chosen]], axis=1)
        ax.add_collection(LineCollection(lines, label=f"{label} ({chosen.sum()})", **style))
        ax.plot(*first[chosen].T, ".", markersize=3, color=style["color"])
    ax.autoscale_view()
    ax.set_aspect("equal")
    if not ax.yaxis_inverted():                            # pixels: y points down
        ax.invert_yaxis()
    ax.set_xlabel("x (pixels)")
    ax.set_ylabel("y (pixels)")
    ax.set_title(f"{result.type}, from first to second point" if result.found else f"no {result.type} transformation")
    if len(first) > 0:
        ax.legend(loc="best")
    return ax
