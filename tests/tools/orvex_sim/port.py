"""A client of a serial port, and waiting."""
import os
import select
import time
import tty

LIMIT = 30


def wait_for(condition, limit=LIMIT):
    """Waits until the condition holds; fails after the limit."""
    end = time.monotonic() + limit
    while not condition():
        assert time.monotonic() < end, "waited in vain"
        time.sleep(0.01)


class Port:
    """A port in raw mode, or the master of a pseudo-terminal."""

    def __init__(self, path=None, descriptor=None):
        if descriptor is None:
            descriptor = os.open(path, os.O_RDWR | os.O_NOCTTY | os.O_NONBLOCK)
            tty.setraw(descriptor)
        self.descriptor = descriptor

    def send(self, request):
        os.write(self.descriptor, request.encode())

    def receive(self, limit=LIMIT):
        """The next reply with its carriage return; what there is when none comes."""
        reply = b""
        while not reply.endswith(b"\r"):
            if not select.select([self.descriptor], [], [], limit)[0]:
                break
            reply += os.read(self.descriptor, 1)
        return reply.decode()

    def ask(self, request):
        self.send(request)
        return self.receive()

    def close(self):
        if self.descriptor is not None:
            os.close(self.descriptor)
            self.descriptor = None
