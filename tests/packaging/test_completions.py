"""Completions in bash, zsh and fish: what the shells offer is what the programs take."""
import pathlib

import pytest

HERE = pathlib.Path(__file__).parent
MODELS = ["Alder", "Birch", "Cedar", "Hazel", "Larch", "Maple", "Rowan", "Spruce", "Tamar",
          "Willow"]
ALDER_COMMANDS = [
    "ClearAlarm", "CloseShutter", "Connect", "GetIntensityH4", "GetLampHours",
    "GetSoftwareVersion", "GetUnitStatus", "LockFrontPanel", "OpenShutter", "SetIntensityH4",
    "TurnLampOff", "TurnLampOn", "UnlockFrontPanel"]


class Shell:
    def __init__(self, name, installed, home):
        self.name = name
        self.installed = installed
        self.home = home

    def command(self, line):
        share = self.installed.prefix / "share"
        if self.name == "bash":
            words = line.split(" ")
            return ["bash", "--norc", HERE / "complete.bash",
                    share / "bash-completion" / "completions" / words[0], *words]
        if self.name == "zsh":
            # Debian's zsh looks in its own folders by itself.
            folder = "" if self.installed.is_system else share / "zsh" / "site-functions"
            return ["zsh", "-f", HERE / "complete.zsh", line, folder]
        return ["fish", "-c", "complete -C$argv[1]", line]

    def offers(self, line, runner=None, cwd=None):
        runner = runner or self.installed.output
        out = runner(*self.command(line), env={"HOME": str(self.home)}, cwd=cwd or self.home)
        return sorted({word.split("\t")[0].rstrip() for word in out.splitlines() if word})


@pytest.fixture(scope="session", params=["bash", "zsh", "fish"])
def shell(request, installed, tmp_path_factory):
    return Shell(request.param, installed, tmp_path_factory.mktemp("home"))


@pytest.mark.parametrize("tool", ["orvexctl", "orvex-sim"])
def test_subcommands(shell, help_of, tool):
    assert shell.offers(f"{tool} ") == sorted(help_of[tool].subcommands)


@pytest.mark.parametrize("tool", ["orvexctl", "orvex-sim"])
def test_options(shell, help_of, tool):
    for subcommand in [None, *help_of[tool].subcommands]:
        line = f"{tool} {subcommand + ' ' if subcommand else ''}--"
        assert shell.offers(line) == sorted(help_of[tool].options(subcommand)), line


def test_models_are_those_of_the_simulator(installed):
    listed = [line.split()[0] for line in installed.output("orvex-sim", "models").splitlines()[1:]]
    assert listed == MODELS


@pytest.mark.parametrize("line", [
    "orvexctl info --model ", "orvexctl --model ", "orvex-sim models ", "orvex-sim run -d ",
    "orvex-sim serve --device "])
def test_models(shell, line):
    assert shell.offers(line) == MODELS


def test_lights_that_are_attached(shell, installed):
    assert shell.offers("orvexctl info -d ", installed.beside_a_tamar) == [
        "/dev/ttyACM0", "Tamar"]


def test_commands_of_a_model(shell):
    assert shell.offers("orvexctl exec --model Alder ") == ALDER_COMMANDS


def test_commands_of_the_only_light(shell, installed):
    names = [line.split()[0] for line in
             installed.output("orvexctl", "commands", "--model", "Tamar").splitlines()[1:]]
    assert len(names) > 60
    assert shell.offers("orvexctl exec ", installed.beside_a_tamar) == sorted(names)


def test_a_value_is_no_command(shell):
    assert shell.offers("orvexctl exec --model Alder SetIntensityH4 ") == []


@pytest.mark.parametrize("line, words", [
    ("orvexctl lamp ", ["off", "on"]), ("orvexctl shutter ", ["close", "open"]),
    ("orvexctl --json shutter ", ["close", "open"]), ("orvexctl on -d Tamar ", ["all"]),
    ("orvexctl sh", ["shell", "shutter"]), ("orvexctl info --timeout ", [])])
def test_words(shell, line, words):
    assert shell.offers(line) == words


@pytest.mark.parametrize("line", ["orvexctl run ", "orvexctl info --log ", "orvex-sim replay ",
                                  "orvex-sim run --scenario ", "orvex-sim serve --trace "])
def test_files(shell, line, tmp_path):
    (tmp_path / "first-script").touch()
    (tmp_path / "second").touch()
    assert shell.offers(line + "fi", cwd=tmp_path) == ["first-script"]


def test_a_program_beside_lights_is_completed_as_itself(shell, help_of):
    assert shell.offers("orvex-sim run -d Tamar -- orvexctl ") == sorted(
        help_of["orvexctl"].subcommands)
