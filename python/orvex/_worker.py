"""Calls of the main thread are made in threads of their own.

Python runs the handlers of signals in the main thread, and only when a call into C is over. A call
on a light may take long, and a signal that arrives in the thread that makes it breaks the exchange
off. So the main thread lets another one, which takes no signals, make the call, and waits: Ctrl-C
is heard at once, and the exchange that is under way comes to its end in good order. What it was
part of goes no further.
"""

from __future__ import annotations

import os
import signal
import threading
import time
from queue import SimpleQueue
from typing import Any, Callable, List, Optional, Set, TypeVar

from ._log import deliver

T = TypeVar("T")

_LOG_INTERVAL = 0.1  # seconds between two looks at the log while a call takes long
_LONGEST_SETTLING = 3.0  # seconds; a silent light ends an exchange after 2.1

_here = threading.local()


class Abandoned(BaseException):
    """Nobody waits for this job any more."""


class _Job:
    def __init__(self, action: Callable[[], Any], undo: Optional[Callable[[Any], None]]) -> None:
        self._action = action
        self._undo = undo
        self._guard = threading.Lock()
        self._done = False
        self._succeeded = False
        self._result: Any = None
        self._error: Optional[BaseException] = None
        self.abandoned = False
        self.finished = threading.Lock()
        self.finished.acquire()

    def run(self) -> None:
        _here.job = self
        try:
            stop_if_abandoned()
            self._result = self._action()
            self._succeeded = True
        except BaseException as error:
            self._error = error
        _here.job = None
        with self._guard:
            self._done = True
            unwanted = self.abandoned
        if unwanted:
            self._take_back()

    def abandon(self) -> None:
        """The exchange under way comes to its end; what follows is not begun."""
        with self._guard:
            self.abandoned = True
            done = self._done
        if done and self._succeeded:
            _start(_Job(self._take_back, None))

    def result(self) -> Any:
        if self._error is not None:
            try:
                raise self._error
            finally:
                self._error = None  # Else the traceback's frames hold it for ever.
        return self._result

    def _take_back(self) -> None:
        if self._succeeded and self._undo is not None:
            self._undo(self._result)


_idle: List[SimpleQueue[_Job]] = []
_running: Set[_Job] = set()


def _work(jobs: SimpleQueue[_Job]) -> None:
    signal.pthread_sigmask(signal.SIG_BLOCK, signal.valid_signals())
    while True:
        job = jobs.get()
        _running.add(job)
        job.run()
        _running.discard(job)
        _idle.append(jobs)
        job.finished.release()
        del job


def _start(job: _Job) -> None:
    try:
        jobs = _idle.pop()
    except IndexError:
        jobs = SimpleQueue()
        threading.Thread(target=_work, args=(jobs,), name="orvex", daemon=True).start()
    jobs.put(job)


def interruptible(action: Callable[[], T], undo: Optional[Callable[[T], None]] = None) -> T:
    """Carries out an action in such a way that signals neither wait for it nor break it.

    When the main thread stops waiting although the action succeeds, undo gets its result.
    """
    if threading.current_thread() is not threading.main_thread():
        try:
            return action()
        finally:
            deliver()
    job = _Job(action, undo)
    try:
        _start(job)
        while not job.finished.acquire(timeout=_LOG_INTERVAL):
            deliver()
        deliver()
        result: T = job.result()
        return result
    except BaseException:
        job.abandon()
        raise


def stop_if_abandoned() -> None:
    """Ends an action between two exchanges when nobody waits for it."""
    job: Optional[_Job] = getattr(_here, "job", None)
    if job is not None and job.abandoned:
        raise Abandoned


def settle() -> None:
    """Lets exchanges that nobody waits for end before the library goes."""
    deadline = time.monotonic() + _LONGEST_SETTLING
    while _running and time.monotonic() < deadline:
        time.sleep(0.005)


def _forget() -> None:
    _idle.clear()
    _running.clear()


os.register_at_fork(after_in_child=_forget)
