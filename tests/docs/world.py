"""A newcomer's computer: the library and its tools as if they were installed, simulated lights,
and an empty directory to work in."""
import json
import os
import re
import shlex
import signal
import subprocess

from pages import ROOT

LONG_ENOUGH = 300  # seconds, for a busy machine
NOTHING_ATTACHED = {"devices": [{"model": "Tamar", "simulator": {"pluggedIn": False}}]}
TESTBED = ["sim/liborvex_testbed.a", "sim/liborvex_sim.a", "libqtr_orvex.so"]
SEPARATOR = "@@ next command @@"


class World:
    def __init__(self, build, directory):
        self.build = build
        self.directory = directory / "desk"
        self.directory.mkdir()
        self.simulator = str(build / "tools/orvex-sim/orvex-sim")
        self.nothing = directory / "nothing.json"
        self.nothing.write_text(json.dumps(NOTHING_ATTACHED))
        self.environment = {
            **{name: value for name, value in os.environ.items()
               if name not in ("COLORTERM", "NO_COLOR", "LD_PRELOAD")},
            "ORVEX": str(ROOT), "BUILD": str(build), "LC_ALL": "C.UTF-8",
            "PATH": self._path(), "CPATH": f"{ROOT}/include:{ROOT}",
            "LIBRARY_PATH": str(build), "LD_LIBRARY_PATH": str(build),
            "PYTHONPATH": str(ROOT / "python"), "XDG_STATE_HOME": str(directory)}

    def _path(self):
        tools = [self.build / "tools/orvexctl", self.build / "tools/orvex-sim"]
        return ":".join([*map(str, tools), os.environ["PATH"]])

    def under_lights(self, lights, command):
        if lights == "those of the demo":
            return [str(ROOT / "scripts/with_simulated_lights"), str(self.build), *command]
        options = [] if lights == "none" else shlex.split(lights)
        options = options or ["--scenario", str(self.nothing)]
        return [self.simulator, "run", *options, "--", *command]

    def run(self, lights, command):
        """Runs a command in the directory; standard error is among its output."""
        done = self.run_alone(self.under_lights(lights, command))
        if lights not in ("", "none"):  # A remark on the light of the page, not on its commands.
            done.stdout = re.sub(r"\Aorvex-sim: the library knows no USB identifier.*\n", "",
                                 done.stdout)
        return done

    def run_alone(self, command):
        """The same for a program that brings its own lights."""
        return subprocess.run(command, cwd=self.directory, env=self.environment,
                              stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                              timeout=LONG_ENOUGH)

    def run_script(self, lights, text):
        return self.run(lights, ["bash", "-euo", "pipefail", "-c", text])

    def run_console(self, lights, commands):
        """What each command prints; they share the lights and one shell."""
        text = "".join(f"{command}\nprintf '%s\\n' '{SEPARATOR}'\n" for command in commands)
        outputs = self.run(lights, ["bash", "-c", text]).stdout.split(SEPARATOR + "\n")
        assert len(outputs) == len(commands) + 1, outputs
        return outputs[:-1]

    def run_until_interrupted(self, lights, command, expected_lines):
        """What a command prints that is interrupted when its output has the expected length."""
        with subprocess.Popen(self.under_lights(lights, ["bash", "-c", f"exec {command}"]),
                              cwd=self.directory, env=self.environment, text=True,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT) as process:
            lines = [process.stdout.readline() for _ in range(expected_lines)]
            process.send_signal(signal.SIGINT)
            rest, _ = process.communicate(timeout=LONG_ENOUGH)
        return "".join(lines) + rest

    def compile(self, language, source, program):
        """Compiles a program; one of the simulator's is linked with it."""
        compiler = ["cc", "-std=gnu11"] if language == "c" else ["c++", "-std=c++17"]
        testbed = [str(self.build / name) for name in TESTBED] if uses_simulator(source) else []
        done = subprocess.run(
            [*compiler, "-Wall", "-Wextra", "-Werror", str(source), "-o", str(program), *testbed,
             *(testbed_flags() if testbed else ["-lqtr_orvex"]), "-pthread"],
            env=self.environment, capture_output=True, text=True)
        assert done.returncode == 0, done.stderr


def uses_simulator(source):
    return "#include \"sim/" in source.read_text()


def testbed_flags():
    flags = subprocess.run(["pkg-config", "--cflags", "--libs", "umockdev-1.0", "gio-unix-2.0"],
                           check=True, capture_output=True, text=True).stdout.split()
    return ["-Wl,--no-as-needed", "-l:libumockdev-preload.so.0", "-Wl,--as-needed", *flags]


# What differs from run to run: addresses, times, the user, process numbers.
VARIABLE = [(r"0x[0-9a-fA-F]{9,}", "0xADDRESS"), (r"\b\d+\.\d ms\b", "TIME ms"),
            (r"\buser \w+ may\b", "user NAME may"), (r"^ +\d+\.\d{6} ", "TIME "),
            (r"belongs to \S+ \(\S+\) and user \w+ .*", "belongs to SOMEBODY"),
            (r"-aG \w+ \w+,", "-aG GROUP USER,"), (r"\bprocess \d+", "process N"),
            (r"/tmp/pytest-\S+/desk/", "")]


def settled(text):
    """A text without what differs from run to run."""
    for pattern, replacement in VARIABLE:
        text = re.sub(pattern, replacement, text, flags=re.M)
    return text.rstrip("\n")


def same(shown, printed):
    """Whether a printed text is as shown; "…" alone on a line stands for any lines, within a line
    for any text."""
    pattern = re.escape(settled(shown))
    pattern = re.sub(r"^…\n", "(?:.*\n)*", pattern.replace("\\\n", "\n"), flags=re.M)
    pattern = re.sub(r"(?:\n|\A)…\Z", r"(?:\n.*)*", pattern).replace("…", ".*")
    return re.fullmatch(pattern, settled(printed)) is not None
