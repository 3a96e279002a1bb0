"""Work in several processes, none of which may be missed: work that a process takes with it is given to another."""

from __future__ import annotations

import multiprocessing
import signal
from collections import Counter, deque
from multiprocessing.connection import Connection, wait
from typing import Any, Callable, Deque, Generic, Iterator, List, Sequence, Tuple, TypeVar, Union

from esttform._errors import LostProcessError

WorkT = TypeVar("WorkT")
DoneT = TypeVar("DoneT")

LOST_MAX = 3
"""Processes that one piece of work may cost alone: what kills its process must come to an end."""


class _Worker(Generic[WorkT, DoneT]):
    """A process with a chunk of work at most. It ends with the process that started it, however that ends."""

    def __init__(self, make: Callable[..., Callable[[WorkT], DoneT]], arguments: Sequence[Any]) -> None:
        self.pipe, others = multiprocessing.Pipe()
        self._process = multiprocessing.Process(target=_serve, args=(others, self.pipe, make, arguments), daemon=True)
        self._process.start()
        others.close()                                      # so that the end of the process is the end of the pipe
        self.first = -1
        self.chunk: List[WorkT] = []

    def give(self, first: int, chunk: List[WorkT]) -> None:
        self.first, self.chunk = first, chunk
        try:
            self.pipe.send(chunk)
        except OSError:
            pass                                            # the process is gone, which is found when its results are taken

    def end(self) -> int | None:
        """Ends the process; its exit code."""
        self.pipe.close()
        self._process.kill()
        self._process.join()
        return self._process.exitcode


def by_processes(
    make: Callable[..., Callable[[WorkT], DoneT]], arguments: Sequence[Any], chunks: Iterator[List[WorkT]], job_num: int
) -> Iterator[Tuple[int, List[Union[DoneT, LostProcessError]]]]:
    """The results of chunks of work, as they are ready, each with the position of its first piece.

    Every process calls ``make(*arguments)`` and calls what it gets for every piece of work. A chunk is drawn when a process has
    nothing to do, so that memory does not grow with their number. The pieces of a chunk that was lost with its process are
    given out one by one; in the place of the result of one that ends `LOST_MAX` processes stands a `LostProcessError`. Work that
    cannot be sent to a process is done in this one.
    """
    again: Deque[Tuple[int, List[WorkT]]] = deque()
    lost_nums: Counter[int] = Counter()
    following = _with_positions(chunks)
    workers: List[_Worker[WorkT, DoneT]] = []
    work_here: Callable[[WorkT], DoneT] | None = None
    idle: List[_Worker[WorkT, DoneT]] = []
    try:
        while True:
            while len(workers) < job_num:
                first, chunk = again.popleft() if again else next(following, (-1, []))
                if not chunk:
                    break
                worker = idle.pop() if idle else _Worker(make, arguments)
                try:
                    worker.give(first, chunk)
                    workers.append(worker)
                except Exception:                           # whatever pickling makes of it
                    idle.append(worker)
                    work_here = work_here or make(*arguments)
                    yield first, [work_here(piece) for piece in chunk]
            if not workers:
                return
            ready = wait([worker.pipe for worker in workers])
            for worker in [worker for worker in workers if worker.pipe in ready]:
                workers.remove(worker)
                try:
                    done = worker.pipe.recv()
                except (EOFError, OSError):
                    exit_code = worker.end()
                    lost_nums[worker.first] += len(worker.chunk) == 1
                    if lost_nums[worker.first] < LOST_MAX:
                        again.extend((worker.first + idx, [piece]) for idx, piece in enumerate(worker.chunk))
                        continue
                    lost = LostProcessError(f"{LOST_MAX} processes with this item ended, the last with exit code {exit_code}")
                    yield worker.first, [lost]
                    continue
                idle.append(worker)
                yield worker.first, done
    finally:
        for worker in [*workers, *idle]:
            worker.end()


def _with_positions(chunks: Iterator[List[WorkT]]) -> Iterator[Tuple[int, List[WorkT]]]:
    first = 0
    for chunk in chunks:
        yield first, chunk
        first += len(chunk)


def _serve(pipe: Connection, other_end: Connection, make: Callable[..., Callable[[Any], Any]], arguments: Sequence[Any]) -> None:
    other_end.close()                                       # so that the end of the starter is the end of the pipe
    signal.signal(signal.SIGINT, signal.SIG_IGN)            # Ctrl-C is the starter's business
    work = make(*arguments)
    try:
        while True:
            pipe.send([work(piece) for piece in pipe.recv()])
    except (EOFError, OSError):
        pass                                                # the starter is gone
