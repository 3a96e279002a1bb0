"""Work in several processes, none of which may be missed: a chunk of work that a process takes with it is given to another."""

from __future__ import annotations

import multiprocessing
import signal
from multiprocessing.connection import Connection, wait
from typing import Any, Callable, Dict, Generic, Iterator, List, Sequence, Tuple, TypeVar

from esttform._errors import LostProcessError

WorkT = TypeVar("WorkT")
DoneT = TypeVar("DoneT")

LOST_MAX = 3
"""Processes that one chunk may cost: work that kills its process must come to an end."""


class _Worker(Generic[WorkT, DoneT]):
    """A process with a chunk of work at most. It ends with the process that started it, however that ends."""

    def __init__(self, make: Callable[..., Callable[[WorkT], DoneT]], arguments: Sequence[Any]) -> None:
        self.pipe, others = multiprocessing.Pipe()
        self._process = multiprocessing.Process(target=_serve, args=(others, self.pipe, make, arguments), daemon=True)
        self._process.start()
        others.close()                                      # so that the end of the process is the end of the pipe
        self.position = -1
        self.chunk: List[WorkT] = []

    def give(self, position: int, chunk: List[WorkT]) -> None:
        self.position, self.chunk = position, chunk
        try:
            self.pipe.send(chunk)
        except (BrokenPipeError, ConnectionResetError):
            pass                                            # found when its results are taken

    def end(self) -> int | None:
        """Ends the process; its exit code."""
        self.pipe.close()
        self._process.kill()
        self._process.join()
        return self._process.exitcode


def by_processes(
    make: Callable[..., Callable[[WorkT], DoneT]], arguments: Sequence[Any], chunks: Iterator[List[WorkT]], job_num: int
) -> Iterator[Tuple[int, List[DoneT]]]:
    """The results of chunks of work with the positions of the chunks, as they are ready.

    Every process calls ``make(*arguments)`` and calls what it gets for every piece of work. A chunk is drawn when a process has
    nothing to do, so that memory does not grow with their number.

    Raises
    ------
    LostProcessError
        When the processes with one chunk ended `LOST_MAX` times.
    """
    numbered = enumerate(chunks)
    lost_nums: Dict[int, int] = {}
    workers: List[_Worker[WorkT, DoneT]] = []
    try:
        for position, chunk in numbered:
            workers.append(_Worker(make, arguments))
            workers[-1].give(position, chunk)
            if len(workers) == job_num:
                break
        while workers:
            ready = wait([worker.pipe for worker in workers])
            for worker in [worker for worker in workers if worker.pipe in ready]:
                try:
                    done = worker.pipe.recv()
                except (EOFError, ConnectionResetError):
                    workers.remove(worker)
                    exit_code = worker.end()
                    lost_nums[worker.position] = lost_nums.get(worker.position, 0) + 1
                    if lost_nums[worker.position] == LOST_MAX:
                        raise LostProcessError(
                            f"{LOST_MAX} processes with the same {len(worker.chunk)} items ended, the last with exit code {exit_code}"
                        ) from None
                    workers.append(_Worker(make, arguments))
                    workers[-1].give(worker.position, worker.chunk)
                    continue
                yield worker.position, done
                following = next(numbered, None)
                if following is None:
                    workers.remove(worker)
                    worker.end()
                else:
                    worker.give(*following)
    finally:
        for worker in workers:
            worker.end()


def _serve(pipe: Connection, other_end: Connection, make: Callable[..., Callable[[Any], Any]], arguments: Sequence[Any]) -> None:
    other_end.close()                                       # so that the end of the starter is the end of the pipe
    signal.signal(signal.SIGINT, signal.SIG_IGN)            # Ctrl-C is the starter's business
    work = make(*arguments)
    try:
        while True:
            pipe.send([work(piece) for piece in pipe.recv()])
    except (EOFError, BrokenPipeError, ConnectionResetError):
        pass                                                # the starter is gone
