"""What the devices saw: orvex-sim's traces, and when which light was on."""
from __future__ import annotations

import re
from dataclasses import dataclass, field

LINE = re.compile(r" *(\d+\.\d+) (\d+) ([<>]) (.*)")
FOREVER = float("inf")


@dataclass
class Request:
    """A request, without its carriage return, and the reply to it, with it; None: none came."""
    time: float
    device: int
    text: str
    reply: str | None = None


@dataclass
class Span:
    """A time for which the same positions were on; a lamp's open shutter is position 0."""
    begin: float
    end: float
    positions: set[int]


@dataclass
class Trace:
    requests: list[Request] = field(default_factory=list)

    @staticmethod
    def of(path):
        trace = Trace()
        for line in path.read_text().splitlines() if path.exists() else []:
            if match := LINE.fullmatch(line):
                trace._take(float(match[1]), int(match[2]), match[3], match[4])
        return trace

    def _take(self, time, device, direction, text):
        if direction == ">":
            self.requests.append(Request(time, device, text.replace("\\r", "")))
            return
        for request in reversed(self.requests):
            if request.device == device:
                request.reply = text
                return

    def texts(self, device=1, after="sn?"):
        """A device's requests behind those of its opening."""
        texts = [request.text for request in self.requests if request.device == device]
        return texts[texts.index(after) + 1:] if after in texts else []

    def time_of(self, text, device=1):
        return next(r.time for r in self.requests if r.text == text and r.device == device)

    def spans(self, device=1):
        """When which positions of a device were on. A refused request changes nothing, one without
        a reply has been carried out."""
        spans, lit = [], set()
        for request in self.requests:
            if request.device != device or request.reply == "e\\r":
                continue
            now = lit_after(request.text, lit)
            if now != lit:
                if lit:
                    spans[-1].end = request.time
                if now:
                    spans.append(Span(request.time, FOREVER, now))
                lit = now
        return spans


def lit_after(request, lit):
    """The positions that are on after a request."""
    if request == "mm":
        return {0}
    if request in ("zz", "of=a"):
        return set()
    if match := re.fullmatch(r"(on|of)=(\d+(?:,\d+)*)", request):
        positions = {int(number) for number in match[2].split(",")}
        return lit | positions if match[1] == "on" else lit - positions
    return lit
