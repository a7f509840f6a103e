"""orvex-sim as its users start it."""
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

import pytest

from port import Port, wait_for

LIMIT = 60


class Simulator:
    """Starts orvex-sim in an environment whose temporary directory must be empty afterwards."""

    def __init__(self, build_dir, temporary):
        self.program = build_dir / "tools" / "orvex-sim" / "orvex-sim"
        self.temporary = temporary
        self.environment = {**os.environ, "TMPDIR": str(temporary)}
        self.started = []

    def run(self, *arguments, **options):
        """Runs it to its end."""
        settings = {"capture_output": True, "text": True, "timeout": LIMIT,
                    "env": self.environment, **options}
        return subprocess.run([self.program, *map(str, arguments)], check=False, **settings)

    def start(self, *arguments, **options):
        """Starts it; what still runs at the test's end is killed."""
        settings = {"stdout": subprocess.PIPE, "stderr": subprocess.PIPE, "text": True,
                    "env": self.environment, **options}
        process = subprocess.Popen([self.program, *map(str, arguments)], **settings)
        self.started.append(process)
        return process

    def serve(self, *arguments):
        """Starts "serve" and waits for its lines, one for each device."""
        process = self.start("serve", *arguments)
        devices = sum(argument in ("-d", "--device") for argument in arguments) or 1
        process.announced = [process.stdout.readline().rstrip("\n") for _ in range(devices)]
        return process

    def leftovers(self):
        return sorted(path.name for path in self.temporary.iterdir())

    def stop_all(self):
        for process in self.started:
            process.kill()
            process.communicate(timeout=LIMIT)


@pytest.fixture
def sim(build_dir):
    temporary = pathlib.Path(tempfile.mkdtemp(prefix="sim-", dir="/tmp"))
    simulator = Simulator(build_dir, temporary)
    yield simulator
    simulator.stop_all()
    wait_for(lambda: simulator.leftovers() == [])
    shutil.rmtree(temporary, ignore_errors=True)


@pytest.fixture
def example(build_dir):
    """The paths of the examples by their names."""
    return lambda name: build_dir / "examples" / name


@pytest.fixture
def script(tmp_path):
    """Makes a Python program; the result is the command that runs it."""
    def make(text):
        path = tmp_path / "client.py"
        path.write_text(text)
        return [sys.executable, str(path)]
    return make


@pytest.fixture
def open_port():
    ports = []

    def open_it(path):
        ports.append(Port(path))
        return ports[-1]
    yield open_it
    for port in ports:
        port.close()
