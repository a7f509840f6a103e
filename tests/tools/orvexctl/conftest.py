"""orvexctl as its users start it."""
import json
import os
import subprocess
from dataclasses import dataclass

import pexpect
import pytest

from fake_light import FakeLight

LONG_ENOUGH = 120  # seconds, for a busy machine


def channel(position, name, wavelength, temperature, group=0):
    return {"position": position, "name": name, "wavelength": wavelength, "percent": 50.0,
            "raw": 500, "minimum": 50, "maximum": 1000, "step": 10, "temperature": temperature,
            "group": group, "on": False}


TAMAR = {
    "model": "Tamar", "firmware": "1.4.2", "serial": "TA-0815", "simulator": {"settleMs": 500},
    "channels": [
        channel(1, "UV", 365, 31), channel(2, "UV-A", 385, 31), channel(3, "VIOLET", 405, 32),
        channel(4, "BLUE", 470, 34, 1), channel(5, "GREEN", 525, 33, 1),
        channel(6, "AMBER", 590, 30, 1), {"position": 7, "fitted": False},
        channel(8, "RED", 635, 29, 1)]}
CEDAR = {
    "model": "Cedar", "firmware": "1.4.2", "serial": "SN-0042",
    "lamp": {"hours": 1250, "percent": 50, "minimum": 5, "temperature": 38}}


@dataclass
class Result:
    code: int
    out: str
    err: str


class Programs:
    """The programs of a build, and the simulated lights they run under."""

    def __init__(self, build, directory):
        self.orvexctl = str(build / "tools" / "orvexctl" / "orvexctl")
        self.simulator = str(build / "tools" / "orvex-sim" / "orvex-sim")
        self.directory = directory

    def under_lights(self, command, timeline=()):
        """The command line that starts a command beside a Tamar and a Cedar."""
        scenario = self.directory / f"lights{len(os.listdir(self.directory))}.json"
        scenario.write_text(json.dumps({"devices": [TAMAR, CEDAR], "timeline": list(timeline)}))
        return [self.simulator, "run", "--scenario", str(scenario), "--", *command]

    @staticmethod
    def environment(changes=None):
        environment = {name: value for name, value in os.environ.items()
                       if name not in ("COLORTERM", "NO_COLOR")}
        environment.update({"LC_ALL": "C.UTF-8", "TERM": "xterm"}, **(changes or {}))
        return environment

    def start(self, command, env=None, **options):
        return subprocess.Popen(command, env=self.environment(env), text=True,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE, **options)

    def run(self, command, env=None, input=None, **options):
        with self.start(command, env, stdin=subprocess.PIPE, **options) as process:
            out, err = process.communicate(input or "", timeout=LONG_ENOUGH)
        return Result(process.returncode, out, err)


@pytest.fixture(scope="session")
def programs(build_dir, tmp_path_factory):
    return Programs(build_dir, tmp_path_factory.mktemp("lights"))


@pytest.fixture
def orvexctl(programs):
    """Runs orvexctl beside the simulated lights."""
    def run(*arguments, **options):
        return programs.run(programs.under_lights([programs.orvexctl, *arguments]), **options)
    return run


@pytest.fixture
def orvexctl_alone(programs):
    """Runs orvexctl without any lights but those of --model and --port."""
    def run(*arguments, **options):
        return programs.run([programs.orvexctl, *arguments], **options)
    return run


@pytest.fixture
def shell_script(programs):
    """Runs a shell script beside the simulated lights; in it, "orvexctl" is the program."""
    def run(script, **options):
        directory = os.path.dirname(programs.orvexctl)
        path = directory + ":" + os.environ["PATH"]
        return programs.run(programs.under_lights(["sh", "-c", script]), {"PATH": path}, **options)
    return run


@pytest.fixture
def terminal(programs):
    """Starts orvexctl in a terminal beside the simulated lights."""
    started = []

    def start(*arguments, env=None, timeline=()):
        command = programs.under_lights([programs.orvexctl, *arguments], timeline)
        child = pexpect.spawn(command[0], command[1:], env=programs.environment(env),
                              timeout=LONG_ENOUGH, encoding="utf-8", dimensions=(40, 140))
        started.append(child)
        return child

    yield start
    for child in started:
        child.close(force=True)


@pytest.fixture
def fake_light():
    """Makes lights of given replies: fake_light(TAMAR, **{"gt?": None})."""
    lights = []

    def make(replies, **changes):
        lights.append(FakeLight(replies, **changes))
        return lights[-1]

    yield make
    for light in lights:
        light.close()
