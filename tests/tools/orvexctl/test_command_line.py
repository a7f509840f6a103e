import pathlib
import re

import pytest

ROOT = pathlib.Path(__file__).resolve().parents[3]
VERBS = ["list", "info", "set", "on", "off", "lamp", "shutter", "exec", "commands", "watch",
         "shell", "doctor", "run"]


def test_version_is_the_projects(orvexctl_alone):
    version = re.search(r"project\(qtr_orvex VERSION ([0-9.]+)",
                        (ROOT / "CMakeLists.txt").read_text())[1]
    result = orvexctl_alone("--version")
    assert (result.code, result.out) == (0, f"orvexctl {version}\n")


def test_help_names_all_verbs_and_exit_codes(orvexctl_alone):
    result = orvexctl_alone("--help")
    assert result.code == 0
    for verb in VERBS:
        assert re.search(rf"^  {verb} +[A-Z]", result.out, re.MULTILINE), verb
    assert "Exit codes: 0 done, 1 other failure, 2 usage, 3 no device, 4 no permission" in result.out


@pytest.mark.parametrize("verb", VERBS)
def test_every_verb_has_help_with_examples(orvexctl_alone, verb):
    result = orvexctl_alone(verb, "--help")
    assert result.code == 0
    assert "--device" in result.out
    examples = result.out.split("Examples:\n")[1]
    assert examples.startswith(f"  orvexctl {verb}")
    assert max(map(len, result.out.splitlines())) <= 120


def test_no_verb(orvexctl_alone):
    result = orvexctl_alone()
    assert result.code == 2
    assert "A subcommand is required" in result.err


def test_unknown_verb_suggests_the_nearest(orvexctl_alone):
    result = orvexctl_alone("inof")
    assert result.code == 2
    assert 'there is no sub-command "inof"; did you mean info' in result.err


def test_unknown_option(orvexctl_alone):
    result = orvexctl_alone("info", "--jsn")
    assert result.code == 2
    assert "--jsn" in result.err
