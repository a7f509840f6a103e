"""What is installed, tested where it is: with --prefix /usr as any program finds it, below another
prefix as a user of that prefix sets up the environment."""
import os
import pathlib
import re
import subprocess
from dataclasses import dataclass

import pytest

ROOT = pathlib.Path(__file__).resolve().parents[2]
LONG_ENOUGH = 120  # seconds, for a busy machine


def pytest_addoption(parser):
    parser.addoption("--prefix", required=True, help="where everything is installed")


def pytest_configure(config):
    config.addinivalue_line("markers", "system: of the folders that the system searches by itself")


def pytest_collection_modifyitems(config, items):
    if config.getoption("--prefix") != "/usr":
        items[:] = [item for item in items if not item.get_closest_marker("system")]


@dataclass
class Result:
    code: int
    out: str
    err: str


class Installed:
    """An installed tree, and the programs run in it."""

    def __init__(self, prefix):
        self.prefix = pathlib.Path(prefix)
        self.is_system = prefix == "/usr"
        self.libraries = next(path.parent for path in self.prefix.glob("lib/**/libqtr_orvex.so"))
        self.environment = {**os.environ, "LC_ALL": "C.UTF-8", "TERM": "xterm",
                            "HOME": "/nonexistent"}
        if not self.is_system:
            self.environment.update({
                "PATH": f"{prefix}/bin:{os.environ['PATH']}",
                "PKG_CONFIG_PATH": f"{self.libraries}/pkgconfig",
                "LD_LIBRARY_PATH": str(self.libraries),
                "CMAKE_PREFIX_PATH": prefix,
                "XDG_DATA_DIRS": f"{prefix}/share:/usr/share",
                "MANPATH": f"{prefix}/share/man",
                "PYTHONPATH": f"{prefix}/lib/python3/dist-packages"})

    def run(self, *command, **options):
        result = subprocess.run([str(word) for word in command], text=True, capture_output=True,
                                env={**self.environment, **options.pop("env", {})},
                                timeout=LONG_ENOUGH, stdin=subprocess.DEVNULL, **options)
        return Result(result.returncode, result.stdout, result.stderr)

    def output(self, *command, **options):
        """What a command prints that must succeed."""
        result = self.run(*command, **options)
        assert result.code == 0, f"{command}\n{result.out}{result.err}"
        return result.out

    def beside_a_tamar(self, *command, **options):
        return self.output("orvex-sim", "run", "--device", "Tamar,serial=TA-0815", "--", *command,
                           **options)


class Help:
    """What a tool's --help names."""

    def __init__(self, installed, tool):
        self.text = {None: installed.output(tool, "--help")}
        part = re.search(r"^Subcommands:\n((?:  .*\n)+)", self.text[None], re.M)
        self.subcommands = re.findall(r"^  ([a-z]+) ", part[1], re.M)
        self.text.update({name: installed.output(tool, name, "--help")
                          for name in self.subcommands})

    def options(self, subcommand=None):
        """The long options of a sub-command, or those that come before one."""
        return re.findall(r"^  (?:-[a-z],)?(--[a-z-]+)\b", self.text[subcommand], re.M)


@pytest.fixture(scope="session")
def installed(request):
    return Installed(request.config.getoption("--prefix"))


@pytest.fixture(scope="session")
def help_of(installed):
    texts = {tool: Help(installed, tool) for tool in ("orvexctl", "orvex-sim")}
    assert len(texts["orvexctl"].subcommands) >= 13 and len(texts["orvex-sim"].subcommands) >= 4
    return texts


@pytest.fixture(scope="session")
def version():
    """The one place that says the version."""
    return re.search(r"project\(qtr_orvex VERSION (\S+)", (ROOT / "CMakeLists.txt").read_text())[1]
