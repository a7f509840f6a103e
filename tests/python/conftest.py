"""The package beside simulated lights.

The tests run as a program under orvex-sim, whose lights (lights.json) the package finds through
udev: pytest starts itself again there. What needs lights of its own, or a process, is a child.
Some of the Tamar's commands are out of order, see the time line in lights.json. Start these tests
by themselves, not together with those in other directories.
"""

import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import time

import pytest

ROOT = pathlib.Path(__file__).resolve().parents[2]
HERE = pathlib.Path(__file__).resolve().parent
LONG_ENOUGH = 120  # seconds, for a busy machine
INSIDE = "ORVEX_TESTS_INSIDE"

sys.path.insert(0, str(ROOT / "python"))


def pytest_addoption(parser):
    parser.addoption("--build", default="build/dev", help="the build directory to test")


def simulator(build):
    return str(build / "tools" / "orvex-sim" / "orvex-sim")


def pytest_configure(config):
    build = ROOT / config.getoption("--build")
    if INSIDE in os.environ:
        return
    config.pluginmanager.getplugin("capturemanager").stop_global_capturing()
    trace = tempfile.mkdtemp(prefix="orvex-python-")
    outside = {name: os.environ.get(name) for name in ("LD_PRELOAD", "UMOCKDEV_DIR", "TMPDIR")}
    environment = {**os.environ, "PYTHONPATH": str(ROOT / "python"),
                   "ORVEX_LIBRARY": str(build / "libqtr_orvex.so.1"),
                   INSIDE: json.dumps({"trace": f"{trace}/trace", "outside": outside})}
    command = [simulator(build), "run", "--scenario", str(HERE / "lights.json"),
               "--trace", f"{trace}/trace", "--", sys.executable, "-B", "-m", "pytest",
               *map(str, config.invocation_params.args)]
    sys.stdout.flush()
    os.execve(command[0], command, environment)


def pytest_unconfigure():
    trace = pathlib.Path(json.loads(os.environ[INSIDE])["trace"])
    trace.unlink(missing_ok=True)
    trace.parent.rmdir()


class Mypy:
    """Checks types while the tests run: the package with the examples, and a user's program."""

    def __init__(self, directory):
        package = ROOT / "python"
        wrong = pathlib.Path(directory) / "wrong.py"
        wrong.write_text('import orvex\norvex.open("Tamar").channels[1].intensity = "much"\n')
        self._directory = directory
        self._runs = {
            "package": self._start("package", "--scripts-are-modules", "--ignore-missing-imports",
                                   *(ROOT / "examples" / "python").glob("*.py"), package / "orvex",
                                   package / "generate_commands.py"),
            "user": self._start("user", wrong)}

    def _start(self, name, *arguments):
        environment = {**os.environ, "MYPYPATH": str(ROOT / "python")}
        del environment["LD_PRELOAD"]
        return subprocess.Popen(
            ["mypy", "--strict", "--python-version", "3.9", "--cache-dir",
             f"{self._directory}/{name}", *map(str, arguments)],
            env=environment, text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)

    def __call__(self, name):
        out, _ = self._runs[name].communicate(timeout=LONG_ENOUGH)
        return self._runs[name].returncode, out


def pytest_collection_finish(session):
    if any("mypy" in item.fixturenames for item in session.items):
        session.config.mypy_directory = tempfile.TemporaryDirectory()
        session.config.mypy = Mypy(session.config.mypy_directory.name)


@pytest.fixture(scope="session")
def mypy(request):
    return request.config.mypy


@pytest.fixture(scope="session")
def build_dir(request):
    return ROOT / request.config.getoption("--build")


class Trace:
    """What has gone to a light since this object was made."""

    END = {1: ("GetLogicTTL", "tl?"), 2: ("GetPowerFactor", "??")}

    def __init__(self, light, device=1):
        self._path = pathlib.Path(json.loads(os.environ[INSIDE])["trace"])
        self._light, self._device = light, device
        self._begin = len(self._lines())

    def _lines(self):
        return self._path.read_text().splitlines()

    def requests(self):
        """The requests until now; a last one marks the end."""
        name, end = self.END[self._device]
        self._light.command(name)
        pattern = re.compile(rf" *[\d.]+ {self._device} > (.*?)(\\r)+$")
        deadline = time.monotonic() + LONG_ENOUGH
        while time.monotonic() < deadline:
            sent = [found[1] for found in map(pattern.match, self._lines()[self._begin:]) if found]
            if end in sent:
                return sent[:sent.index(end)]
            time.sleep(0.01)
        raise AssertionError("the trace has no end")


@pytest.fixture
def trace():
    return Trace


@pytest.fixture
def tamar():
    """The Tamar, all LEDs off and at half their intensity."""
    import orvex

    with orvex.open("Tamar") as light:
        light.command("TurnAllLedOff")
        light.command("SetIntensity", "500,500,500,500,500,500,0,500")
        list(light.channels)
        light.channels[1].raw  # Brings the library's record up to date.
        yield light


@pytest.fixture
def cedar():
    import orvex

    with orvex.open("Cedar") as light:
        yield light


class Child:
    """Starts programs outside of the tests' own simulator, beside lights of their own."""

    def __init__(self, build, directory):
        self.build = build
        self.directory = directory
        outside = json.loads(os.environ[INSIDE])["outside"]
        inherited = {name: value for name, value in os.environ.items()
                     if name not in outside and name != INSIDE
                     and not name.startswith(("UMOCKDEV", "ORVEX_SIM"))}
        self.environment = {**inherited, "PYTHONDONTWRITEBYTECODE": "1", "MPLBACKEND": "agg",
                            "MPLCONFIGDIR": str(HERE.parents[1] / "build" / "matplotlib"),
                            **{name: value for name, value in outside.items() if value}}

    def command(self, program, devices=("Tamar",), timeline=()):
        """The command line that starts a program beside lights; with none: by itself."""
        if not devices:
            return program
        if not timeline:
            options = [word for model in devices for word in ("--device", model)]
            return [simulator(self.build), "run", *options, "--", *program]
        scenario = self.directory / f"scenario{len(list(self.directory.iterdir()))}.json"
        described = [{"model": model} for model in devices]
        scenario.write_text(json.dumps({"devices": described, "timeline": list(timeline)}))
        return [simulator(self.build), "run", "--scenario", str(scenario), "--", *program]

    def start(self, program, devices=("Tamar",), timeline=(), env=None, **options):
        return subprocess.Popen(
            self.command([sys.executable, *map(str, program)], devices, timeline),
            env={**self.environment, **(env or {})}, text=True, stdout=subprocess.PIPE,
            stderr=subprocess.PIPE, cwd=self.directory, **options)

    def run(self, program, devices=("Tamar",), timeline=(), env=None, **options):
        """Runs Python with arguments; fails when it does."""
        with self.start(program, devices, timeline, env, **options) as process:
            out, err = process.communicate(timeout=LONG_ENOUGH)
        assert process.returncode == 0, out + err
        return out


@pytest.fixture
def child(build_dir, tmp_path):
    return Child(build_dir, tmp_path)
