"""Robust estimation of 2-D transformations from matched points, some of which are wrong.

>>> import numpy as np
>>> import esttform
>>> corners = np.array([[0.0, 0.0], [640.0, 0.0], [640.0, 480.0], [0.0, 480.0], [320.0, 200.0]])
>>> moved = corners + [12.0, 5.0]
>>> moved[4] += 80.0                                      # one wrong match
>>> result = esttform.estimate(corners, moved, "similarity", seed=1)
>>> result.as_homography().round(6)
array([[ 1.,  0., 12.],
       [-0.,  1.,  5.],
       [ 0.,  0.,  1.]])
>>> result.inliers
array([ True,  True,  True,  True, False])

`estimate` does it once, `Estimator` step after step, `estimate_many` for many sets of matches, `esttform.dask` on a cluster.
`generate_code` gives C sources that do the same on a device. Results are those of the program ``esttform`` to the bit.
"""

from esttform._code import generate_code
from esttform._convert import as_tform, to_homography
from esttform._core import __version__
from esttform._errors import ClosedError, EsttformError, InternalError, LoadError, LostProcessError, SettingsError, StepError
from esttform._estimate import Estimator, estimate
from esttform._many import estimate_many, item_seed
from esttform._matches import read_matches
from esttform._result import Message, Result

# People know these by the name of the package.
for _part in (
    ClosedError, EsttformError, Estimator, InternalError, LoadError, LostProcessError, Message, Result, SettingsError, StepError,
    as_tform, estimate, estimate_many, generate_code, item_seed, read_matches, to_homography,
):
    _part.__module__ = __name__
del _part

__all__ = [
    "ClosedError", "EsttformError", "Estimator", "InternalError", "LoadError", "LostProcessError", "Message", "Result",
    "SettingsError", "StepError", "as_tform", "estimate", "estimate_many", "generate_code", "item_seed", "read_matches", "to_homography", "__version__",
]
