"""Many sets of matches, by several processes."""

from __future__ import annotations

import glob
import os
import sys
from itertools import islice
from typing import TYPE_CHECKING, Any, Callable, Iterable, Iterator, List, Sequence, Tuple, Union

from esttform import _core
from esttform._estimate import Estimator
from esttform._matches import read_matches
from esttform._processes import by_processes
from esttform._result import Result

if TYPE_CHECKING:
    from numpy.typing import ArrayLike, DTypeLike

Item = Union[str, "os.PathLike[str]", "Tuple[ArrayLike, ArrayLike]"]
Outcome = Union[Result, Exception]

CHUNK_SIZE = 16
"""Items that a process gets at a time."""


def item_seed(seed: int, index: int) -> int:
    """Start of the random numbers of the item at a position, from 0; that of ``esttform batch``."""
    return _core.batch_seed(seed, index)


def item_list(items: str | os.PathLike[str] | Iterable[Item]) -> Iterable[Item]:
    """The items themselves, or the files of a folder or a pattern, sorted by the bytes of their names."""
    if not isinstance(items, (str, os.PathLike)):
        return items
    path = str(os.fspath(items))
    if os.path.isdir(path):
        names = [name for name in os.listdir(path) if name.lower().endswith((".csv", ".tsv")) and not name.startswith(".")]
        files = [os.path.join(path, name) for name in names]
        files = [file for file in files if os.path.isfile(file) or not os.path.exists(file)]    # a link to nowhere is reported
    else:
        files = [path] if os.path.exists(path) else glob.glob(path)
    if not files:
        raise FileNotFoundError(f"{path}: no file has such a name")
    files.sort(key=os.fsencode)
    return files


class ItemEstimator:
    """Estimates item after item. A result depends on the item and its seed alone, though the block stays open."""

    def __init__(self, type: str, dtype: DTypeLike | None, layout: str | None, columns: Sequence[str], settings: dict[str, Any]) -> None:
        self._type = type
        self._dtype = dtype
        self._layout = layout
        self._columns = columns
        self._settings = settings
        self._open: dict[Tuple[Any, str], Estimator] = {}

    def __call__(self, item: Item, seed: int) -> Result:
        if isinstance(item, (str, os.PathLike)):
            pts1, pts2 = read_matches(item, self._dtype or "float64", self._columns)
        else:
            pts1, pts2 = _pair(item)
        import numpy as np

        pts1 = pts1 if isinstance(pts1, np.ndarray) else np.asarray(pts1, dtype=self._dtype or "float64")
        layout = self._layout or ("rows" if pts1.ndim != 2 or pts1.shape[1] == 2 else "columns")
        key = pts1.dtype, layout
        if key not in self._open:
            self._open[key] = Estimator(self._type, dtype=pts1.dtype, layout=layout, **self._settings)
        return self._open[key].step(pts1, pts2, seed=seed).without_points()

    def outcome(self, item: Item, seed: int) -> Outcome:
        """The result, or what went wrong with this item."""
        try:
            return self(item, seed)
        except Exception as fault:                         # of whatever kind: it belongs to this item
            return fault


def _pair(item: Any) -> Tuple[Any, Any]:
    try:
        pts1, pts2 = item
    except (TypeError, ValueError):
        raise TypeError(f"item: got {type(item).__name__}, expected a path or two arrays of points") from None
    return pts1, pts2


def _outcome_by(*arguments: Any) -> Callable[[Tuple[int, Item]], Outcome]:
    estimator = ItemEstimator(*arguments)
    return lambda numbered: estimator.outcome(numbered[1], numbered[0])


def estimate_many(
    items: str | os.PathLike[str] | Iterable[Item],
    type: str = "projective",
    *,
    seed: int = 0,
    jobs: int | None = None,
    dtype: DTypeLike | None = None,
    layout: str | None = None,
    columns: Sequence[str] = (),
    errors: str = "raise",
    progress: bool = False,
    **settings: Any,
) -> List[Any]:
    """One estimate for each of many sets of matches, by several processes.

    Parameters
    ----------
    items : iterable, or path
        Each item is a pair of arrays ``(pts1, pts2)``, or the path of a file of matches. A path in place of the items is a folder,
        of which its files ``*.csv`` and ``*.tsv`` are taken, or a pattern; files are sorted by the bytes of their names.
    type : {"projective", "affine", "similarity"}
        What is estimated.
    seed : int
        Each item gets its own start of the random numbers from this and its position: `item_seed`.
    jobs : int, optional
        Processes; 1: none but this one. Not given: one a processor.
    dtype, columns
        How files are read; see `read_matches`.
    layout : {"rows", "columns"}, optional
        As of `estimate`.
    errors : {"raise", "return"}
        "raise": the first item that cannot be estimated ends it all; "return": its exception stands in place of its result.
    progress : bool
        Show how far it is, on standard error.
    **settings
        As of `estimate`.

    Returns
    -------
    list of Result
        In the order of the items, whatever the number of processes; equal to those of ``esttform batch`` to the bit.

    Examples
    --------
    >>> results = estimate_many(["examples/data/scan_page_affine.csv"] * 3, "affine", seed=1, jobs=1)
    >>> [result.found for result in results]
    [True, True, True]
    """
    if errors not in ("raise", "return"):
        raise ValueError(f"errors: got {errors!r}, expected raise or return")
    if jobs is not None and jobs < 1:
        raise ValueError(f"jobs: got {jobs}, expected at least 1")
    arguments = type, dtype, layout, tuple(columns), settings
    Estimator(type, max_points=4, **settings).close()       # wrong settings are refused here and not by every item
    job_num = jobs or len(os.sched_getaffinity(0))
    numbered = ((item_seed(seed, index), item) for index, item in enumerate(item_list(items)))
    chunks = _chunks(numbered)
    done = _in_this_process(arguments, chunks) if job_num == 1 else by_processes(_outcome_by, arguments, chunks, job_num)

    outcomes: dict[int, List[Outcome]] = {}
    item_num = 0
    for position, chunk_outcomes in done:
        outcomes[position] = chunk_outcomes
        item_num += len(chunk_outcomes)
        if progress:
            print(f"\r{item_num} estimated", end="", file=sys.stderr, flush=True)
        if errors == "raise":
            for outcome in chunk_outcomes:
                if isinstance(outcome, Exception):
                    raise outcome
    if progress:
        print(file=sys.stderr)
    return [outcome for position in sorted(outcomes) for outcome in outcomes[position]]


def _chunks(items: Iterator[Tuple[int, Item]]) -> Iterator[List[Tuple[int, Item]]]:
    while chunk := list(islice(items, CHUNK_SIZE)):
        yield chunk


def _in_this_process(
    arguments: Tuple[Any, ...], chunks: Iterator[List[Tuple[int, Item]]]
) -> Iterator[Tuple[int, List[Outcome]]]:
    outcome = _outcome_by(*arguments)
    for position, chunk in enumerate(chunks):
        yield position, [outcome(numbered) for numbered in chunk]
