"""Many sets of matches on a cluster, with Dask.

A result depends on its item, the seed and the item's position alone: not on partitions, workers or threads, and it is that of
`esttform.estimate_many`. Every partition is a pure task, so Dask computes again what a lost worker had. Blocks of one process take
turns; start workers with one thread each.
"""

from __future__ import annotations

from itertools import accumulate
from typing import TYPE_CHECKING, Any, Callable, Iterable, List, Sequence, Tuple, cast

from dask.bag.core import Bag, from_delayed
from dask.base import compute
from dask.delayed import Delayed, delayed

from esttform._many import ItemEstimator, Outcome, item_list, item_seed, refuse_wrong_call

if TYPE_CHECKING:
    import pandas
    from dask.dataframe.core import DataFrame
    from numpy.typing import DTypeLike

PARTITION_SIZE = 64
"""Items of a partition, unless `npartitions` says otherwise: enough to make the scheduler's share small."""


def estimate_many(
    items: Any,
    type: str = "projective",
    *,
    seed: int = 0,
    npartitions: int | None = None,
    dtype: DTypeLike | None = None,
    layout: str | None = None,
    columns: Sequence[str | int] = (),
    errors: str = "raise",
    **settings: Any,
) -> Bag:
    """One estimate for each of many sets of matches, as a Dask bag.

    Nothing is estimated before the bag is computed; ``distributed.progress(results.persist())`` shows how far it is.

    Parameters
    ----------
    items : dask.bag.Bag, iterable, or path
        Items are those of `esttform.estimate_many`: pairs of arrays or paths of files, which the workers read. A bag keeps its
        partitions; it is counted first, since an item's position decides its seed, so persist a bag whose items are dear. An
        iterable may also hold delayed objects, each of one item. A path is a folder or a pattern.
    npartitions : int, optional
        Partitions of what is no bag. Not given: 64 items each.
    type, seed, dtype, layout, columns, errors, **settings
        As of `esttform.estimate_many`.

    Returns
    -------
    dask.bag.Bag of Result
        In the order of the items.

    Examples
    --------
    >>> results = estimate_many(["examples/data/scan_page_affine.csv"] * 3, "affine", seed=1)
    >>> results.map(lambda result: result.found).compute(scheduler="sync")
    [True, True, True]
    """
    parts = _estimated(items, npartitions, (type, dtype, layout, tuple(columns), settings), seed, errors)
    results: Bag = from_delayed([part for part, _ in parts])
    return results


def estimate_frame(items: Any, type: str = "projective", **options: Any) -> DataFrame:
    """The same as a Dask DataFrame, one row an item.

    Parameters
    ----------
    items, type, **options
        As of `estimate_many`. With ``errors="return"`` an item that cannot be estimated has its message in the column error.

    Returns
    -------
    dask.dataframe.DataFrame
        Index: position of the item. Columns: found, pair_num, inlier_num (-1 without a mask), h00 to h22 (the 3-by-3 matrix that
        acts on column vectors, row by row), reason (why nothing was found), warnings (identifiers), error.
    """
    from dask.dataframe.io.io import from_delayed as frame_from_delayed

    take = {name: options.pop(name, default) for name, default in _DEFAULTS.items()}
    arguments = type, take["dtype"], take["layout"], tuple(take["columns"]), options
    parts = _estimated(items, take["npartitions"], arguments, take["seed"], take["errors"])
    frames = [delayed(_frame)(part, offset) for part, offset in parts]
    return cast("DataFrame", frame_from_delayed(frames, meta=_frame([], 0)))


_DEFAULTS = {"npartitions": None, "dtype": None, "layout": None, "columns": (), "seed": 0, "errors": "raise"}


def _estimated(
    items: Any, npartitions: int | None, arguments: Tuple[Any, ...], seed: int, errors: str
) -> List[Tuple[Delayed, int]]:
    """The delayed list of outcomes of every partition, with the position of its first item."""
    refuse_wrong_call(seed, errors, arguments)
    if isinstance(items, Bag):
        parts = items.to_delayed()
        sizes = compute(*[delayed(_size)(part) for part in parts])
    else:
        parts, sizes = _partitions(list(item_list(items)), npartitions)
    offsets = [0, *accumulate(sizes)]
    estimate = delayed(_estimate_part, pure=True)
    return [(estimate(part, arguments, seed, offset, errors), offset) for part, offset in zip(parts, offsets)]


def _partitions(items: List[Any], npartitions: int | None) -> Tuple[List[Delayed], List[int]]:
    if npartitions is not None and npartitions < 1:
        raise ValueError(f"npartitions: got {npartitions}, expected at least 1")
    number = npartitions or -(-len(items) // PARTITION_SIZE) or 1
    bounds = [len(items) * idx // number for idx in range(number + 1)]
    chunks = [items[begin:end] for begin, end in zip(bounds, bounds[1:])]
    # A path or a pair of arrays is data; a delayed item is computed before its partition.
    parts = [delayed(_listed)(*chunk) if _has_delayed(chunk) else delayed(chunk, traverse=False) for chunk in chunks]
    return parts, [len(chunk) for chunk in chunks]


def _has_delayed(chunk: Iterable[Any]) -> bool:
    return any(isinstance(item, Delayed) for item in chunk)


def _listed(*items: Any) -> List[Any]:
    return list(items)


def _size(part: Iterable[Any]) -> int:
    return sum(1 for _ in part)


def _estimate_part(part: Iterable[Any], arguments: Tuple[Any, ...], seed: int, offset: int, errors: str) -> List[Outcome]:
    estimator = ItemEstimator(*arguments)
    estimate_one: Callable[[Any, int], Outcome] = estimator.outcome if errors == "return" else estimator.__call__
    return [estimate_one(item, item_seed(seed, offset + idx)) for idx, item in enumerate(part)]


def _frame(outcomes: List[Outcome], offset: int) -> pandas.DataFrame:
    import numpy as np
    import pandas

    found = [not isinstance(outcome, Exception) and outcome.found for outcome in outcomes]
    results = [None if isinstance(outcome, Exception) else outcome for outcome in outcomes]
    matrices = np.array([np.full(9, np.nan) if result is None else result.as_homography().astype(float).ravel() for result in results])
    columns: dict[str, Any] = {
        "found": np.array(found, dtype=bool),
        "pair_num": np.array([result.pair_num if result else -1 for result in results], dtype=np.int64),
        "inlier_num": np.array(
            [-1 if result is None or result.inlier_num is None else result.inlier_num for result in results], dtype=np.int64
        ),
    }
    for idx in range(9):
        columns[f"h{idx // 3}{idx % 3}"] = matrices.reshape(-1, 9)[:, idx]
    columns["reason"] = np.array([(result and result.reason) or "" for result in results], dtype=object)
    columns["warnings"] = np.array([" ".join(w.id for w in result.warnings) if result else "" for result in results], dtype=object)
    columns["error"] = np.array([str(o) if isinstance(o, Exception) else "" for o in outcomes], dtype=object)
    return pandas.DataFrame(columns, index=pandas.RangeIndex(offset, offset + len(outcomes)))
