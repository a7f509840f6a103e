"""A lock for what many may do at a time, and what one must do alone."""

from __future__ import annotations

import threading
import time
from contextlib import contextmanager
from typing import Iterator


class Gate:
    """Many pass together, or one is alone.

    Who waits to be alone is let in before those who come later, but not for longer than a while:
    somebody inside may need one of them to get out again, as a call that waits for a group of
    channels does.
    """

    def __init__(self, patience: float = 2.5) -> None:
        self._patience = patience
        self._changed = threading.Condition(threading.Lock())
        self._inside = 0
        self._alone = False
        self._waiting = 0
        self._yield_until = 0.0

    @contextmanager
    def together(self) -> Iterator[None]:
        """Passes beside others."""
        with self._changed:
            while self._alone or time.monotonic() < self._yield_until:
                self._changed.wait(None if self._alone else self._patience / 10)
            self._inside += 1
        try:
            yield
        finally:
            with self._changed:
                self._inside -= 1
                self._changed.notify_all()

    @contextmanager
    def alone(self) -> Iterator[None]:
        """Passes when nobody else does."""
        with self._changed:
            self._waiting += 1
            self._yield_until = time.monotonic() + self._patience
            while self._alone or self._inside:
                self._changed.wait()
            self._waiting -= 1
            if self._waiting == 0:
                self._yield_until = 0.0
            self._alone = True
        try:
            yield
        finally:
            with self._changed:
                self._alone = False
                self._changed.notify_all()
