"""A light on a pseudo-terminal that answers what a test tells it to."""

import os
import tempfile
import threading
import tty

TAMAR = {
    "co": "", "dc": "", "sv?": "2.0.1", "sn?": "TA-0007", "us?": "0,0,0", "ip?": "100,200,300",
    "gt?": "30,31,32", "lw?": "365,999,470", "ln?": "UV,,BLUE", "ni?": "50,0,50",
}
SPRUCE = {
    "co": "", "dc": "", "sv?": "1.0", "sn?": "SP-0001", "us?": "0,0,0,0",
    "ip?": "100,200,300,400", "gt?": "30,31,32,33", "lw?": "365,385,405,470", "ln?": "A,B,C,D",
}
LAMP = {
    "tt": "", "jj": "", "vv": "3.1", "hh": "77", "uu": "0", "ii": "2", "dd": "60", "ni": "10",
    "gt": "41", "GSN": "CE-0009",
}


class FakeLight:
    """Answers the requests it knows, and every other one with an empty reply.

    A reply of None is silence; replies are sent with a carriage return unless they hold one.
    """

    def __init__(self, replies, **changes):
        self.replies = {**replies, **changes}
        self.requests = []
        self._directory = tempfile.TemporaryDirectory()
        os.chmod(self._directory.name, 0o755)
        self.port = os.path.join(self._directory.name, "ttyACM0")
        self._master, self._slave = os.openpty()
        tty.setraw(self._slave)
        self.terminal = os.ttyname(self._slave)
        os.symlink(self.terminal, self.port)
        threading.Thread(target=self._serve, daemon=True).start()

    def _serve(self):
        received = b""
        while True:
            try:
                received += os.read(self._master, 1024)
            except OSError:
                return
            while b"\r" in received:
                request, received = received.split(b"\r", 1)
                self._answer(request.decode().lstrip("A") if request != b"A" else "A")

    def _answer(self, request):
        self.requests.append(request)
        reply = self.replies.get(request, "")
        if reply is not None:
            data = reply if isinstance(reply, bytes) else reply.encode()
            os.write(self._master, data if b"\r" in data else data + b"\r")

    def close(self):
        os.close(self._slave)
        os.close(self._master)
        self._directory.cleanup()
