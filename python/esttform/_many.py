"""Many sets of matches, by several processes."""

from __future__ import annotations

import glob
import os
import pickle
import sys
from itertools import islice
from typing import TYPE_CHECKING, Any, Callable, Iterable, Iterator, List, Sequence, Tuple, Union

from esttform import _core
from esttform._errors import EsttformError
from esttform._estimate import Estimator, estimate
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


def refuse_wrong_call(seed: int, errors: str, arguments: Tuple[Any, ...]) -> None:
    """Finds what is wrong with the call itself before any item is touched."""
    item_seed(seed, 0)
    if errors not in ("raise", "return"):
        raise ValueError(f"errors: got {errors!r}, expected raise or return")
    ItemEstimator(*arguments)


def item_list(items: str | os.PathLike[str] | Iterable[Item]) -> Iterable[Item]:
    """The items themselves, or the files of a folder or a pattern, sorted by the bytes of their names."""
    if not isinstance(items, (str, os.PathLike)):
        return items
    path = str(os.fspath(items))
    if os.path.isdir(path):
        names = [name for name in os.listdir(path) if name.lower().endswith((".csv", ".tsv")) and not name.startswith(".")]
        files = [os.path.join(path, name) for name in names]
        expected = "no file in the folder, expected *.csv or *.tsv"
        files = [file for file in files if os.path.isfile(file) or not os.path.exists(file)]    # a link to nowhere is reported
    else:
        files = [path] if os.path.exists(path) else glob.glob(path)
        expected = "no file has such a name"
    if not files:
        raise FileNotFoundError(f"{path}: {expected}")
    files.sort(key=os.fsencode)
    return files


class ItemEstimator:
    """Estimates item after item, each as if it were alone."""

    def __init__(self, type: str, dtype: DTypeLike | None, layout: str | None, columns: Sequence[str | int], settings: dict[str, Any]) -> None:
        """Wrong settings are refused here, once, and not with every item.

        TForm of single precision is for integer points only, so that points of unknown type are taken for integers.
        """
        Estimator(type, max_points=4, dtype=dtype or "int32", layout=layout or "rows", **_known(settings)).close()
        self._type = type
        self._dtype = dtype or "float64"
        self._layout = layout
        self._columns = columns
        self._settings = settings

    def __call__(self, item: Item, seed: int) -> Result:
        layout = self._layout
        if isinstance(item, (str, os.PathLike)):
            item, layout = read_matches(item, self._dtype, self._columns), "rows"
        pts1, pts2 = _pair(item)
        return estimate(pts1, pts2, self._type, layout=layout, seed=seed, **self._settings).without_points()

    def outcome(self, item: Item, seed: int) -> Outcome:
        """The result, or what went wrong with this item, which other processes can be told."""
        try:
            return self(item, seed)
        except Exception as fault:                         # of whatever kind: it belongs to this item
            try:
                pickle.loads(pickle.dumps(fault))
            except Exception:                              # of whatever kind: it cannot be told as it is
                return EsttformError(f"{fault.__class__.__name__}: {fault}")
            return fault


def _known(settings: dict[str, Any]) -> dict[str, Any]:
    for name in ("max_points", "seed"):
        if name in settings:
            raise TypeError(f"got the keyword {name!r}, which is no setting of many items")
    return settings


def _pair(item: Any) -> Tuple[Any, Any]:
    try:
        pts1, pts2 = item
    except (TypeError, ValueError):
        raise TypeError(f"item: got {type(item).__name__}, expected a path or two arrays of points") from None
    return pts1, pts2


def _outcome_by(*arguments: Any) -> Callable[[Tuple[int, Item]], Outcome]:
    estimator = ItemEstimator(*arguments)
    return lambda seeded: estimator.outcome(seeded[1], seeded[0])


def estimate_many(
    items: str | os.PathLike[str] | Iterable[Item],
    type: str = "projective",
    *,
    seed: int = 0,
    jobs: int | None = None,
    dtype: DTypeLike | None = None,
    layout: str | None = None,
    columns: Sequence[str | int] = (),
    errors: str = "raise",
    progress: bool = False,
    **settings: Any,
) -> List[Any]:
    """One estimate for each of many sets of matches, by several processes.

    Parameters
    ----------
    items : iterable, or path
        Each item is a pair of arrays ``(pts1, pts2)`` as of `estimate`, or the path of a file of matches. A path in place of the
        items is a folder, of which its files ``*.csv`` and ``*.tsv`` are taken, or a pattern; files are sorted by the bytes of
        their names.
    type : {"projective", "affine", "similarity"}
        What is estimated.
    seed : int
        Each item gets its own start of the random numbers from this and its position: `item_seed`.
    jobs : int, optional
        Processes; 1: none but this one. Not given: one a processor.
    dtype, columns
        How files are read; see `read_matches`. Arrays have their own types.
    layout : {"rows", "columns"}, optional
        Of arrays, as of `estimate`.
    errors : {"raise", "return"}
        "raise": an item that cannot be estimated ends it all with its exception; "return": the exception stands in place of its
        result. One that no other process can be told becomes an `EsttformError` with its text.
    progress : bool
        Show how far it is, on standard error.
    **settings
        As of `estimate`.

    Returns
    -------
    list of Result
        In the order of the items, whatever the number of processes: those of ``estimate(pts1, pts2, seed=item_seed(seed, index))``,
        and of files those of ``esttform batch``, to the bit. They do not keep the points.

    Raises
    ------
    LostProcessError
        An item ended several processes.
    TypeError, ValueError
        As of `estimate`.

    Examples
    --------
    >>> results = estimate_many(["examples/data/scan_page_affine.csv"] * 3, "affine", seed=1, jobs=1)
    >>> [result.found for result in results]
    [True, True, True]
    """
    if jobs is not None and jobs < 1:
        raise ValueError(f"jobs: got {jobs}, expected at least 1")
    arguments = type, dtype, layout, tuple(columns), settings
    refuse_wrong_call(seed, errors, arguments)
    job_num = jobs or len(os.sched_getaffinity(0))
    chunks = _chunks((item_seed(seed, index), item) for index, item in enumerate(item_list(items)))
    done = _in_this_process(arguments, chunks) if job_num == 1 else by_processes(_outcome_by, arguments, chunks, job_num)

    outcomes: dict[int, Outcome] = {}
    try:
        for first, chunk_outcomes in done:
            outcomes.update(enumerate(chunk_outcomes, first))
            if progress:
                print(f"\r{len(outcomes)} estimated", end="", file=sys.stderr, flush=True)
            for outcome in chunk_outcomes:
                if errors == "raise" and isinstance(outcome, Exception):
                    raise outcome
    finally:
        if progress:
            print(file=sys.stderr)
    return [outcomes[index] for index in range(len(outcomes))]


def _chunks(items: Iterator[Tuple[int, Item]]) -> Iterator[List[Tuple[int, Item]]]:
    while chunk := list(islice(items, CHUNK_SIZE)):
        yield chunk


def _in_this_process(
    arguments: Tuple[Any, ...], chunks: Iterator[List[Tuple[int, Item]]]
) -> Iterator[Tuple[int, List[Outcome]]]:
    outcome = _outcome_by(*arguments)
    first = 0
    for chunk in chunks:
        yield first, [outcome(seeded) for seeded in chunk]
        first += len(chunk)
