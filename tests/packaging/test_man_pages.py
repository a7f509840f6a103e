"""The manual pages name what the programs and the header have, and are well made."""
import gzip
import re

import pytest

from conftest import ROOT

TOOLS = ["orvexctl", "orvex-sim"]
PAGES = [("orvexctl", 1), ("orvex-sim", 1), ("qtr_orvex", 3)]


def page_text(installed, name, section):
    """A page as man finds and shows it."""
    text = installed.output("man", "--encoding=UTF-8", str(section), name,
                            env={"MANWIDTH": "200", "MAN_KEEP_FORMATTING": ""})
    return re.sub(".\b", "", text)


def page_file(installed, name, section):
    folder = installed.prefix / "share" / "man" / f"man{section}"
    plain, packed = folder / f"{name}.{section}", folder / f"{name}.{section}.gz"
    return gzip.decompress(packed.read_bytes()) if packed.exists() else plain.read_bytes()


@pytest.mark.parametrize("tool", TOOLS)
def test_subcommands_and_options_are_those_of_the_program(installed, help_of, tool):
    text = page_text(installed, tool, 1)
    described = set(re.findall(r"--[a-z]+(?:-[a-z]+)*", text.split("ENVIRONMENT")[0]))
    real = {option for name in [None, *help_of[tool].subcommands]
            for option in help_of[tool].options(name)}
    assert described == real
    page = page_file(installed, tool, 1).decode().split(".Ss Options")[0]
    entries = re.findall(r"^\.It Cm ([a-z]+).*?(?:, Cm ([a-z]+).*)?$", page, re.M)
    assert sorted(name for entry in entries for name in entry if name) == sorted(
        help_of[tool].subcommands)



def test_members_of_a_simulated_device(installed, help_of):
    part = re.search(r"A DEVICE is.*?\n((?:  .*\n)+)", help_of["orvex-sim"].text["run"])[1]
    real = re.findall(r"^  ([a-z]+)", part, re.M)
    text = page_text(installed, "orvex-sim", 1)
    described = re.search(r"Members of a device(.*?)ENVIRONMENT", text, re.S)[1]
    assert re.findall(r"^     ([a-z]+)  ", described, re.M) == real


def test_exit_codes_of_orvexctl(installed, help_of):
    told = re.search(r"Exit codes:(.*)\n", help_of["orvexctl"].text[None] + "\n", re.S)[1]
    real = set(re.findall(r"\b(\d+) ", told))
    text = page_text(installed, "orvexctl", 1).split("EXIT STATUS")[1].split("EXAMPLES")[0]
    assert real <= set(re.findall(r"\b(\d+)\b", text))


def test_calls_and_status_codes_of_the_header(installed):
    header = (ROOT / "include" / "qtr_orvex.h").read_text()
    text = page_text(installed, "qtr_orvex", 3)
    calls = re.findall(r"ORVEX_API\s+(\w+)\s+(ORVEX_\w+)\(([^;]*)\);", header)
    assert len(calls) == 17
    synopsis = " ".join(text.split("SYNOPSIS")[1].split("DESCRIPTION")[0].split())
    for result, name, parameters in calls:
        arguments = " ".join(parameters.split()).replace("* ", " *")
        assert f"{result} {name}({arguments});" in synopsis
    codes = set(re.findall(r"#define (ORVEX_(?:OK|ERR_\w+))", header))
    assert set(re.findall(r"\bORVEX_(?:OK|ERR_\w+)\b", text)) == codes


@pytest.mark.parametrize("name, section", PAGES)
def test_page_is_well_made(installed, version, tmp_path, name, section):
    path = tmp_path / f"{name}.{section}"
    path.write_bytes(page_file(installed, name, section))
    assert installed.run("mandoc", "-T", "lint", "-W", "warning", path).out == ""
    shown = installed.run("man", "--warnings", "-E", "UTF-8", "-l", path)
    assert (shown.code, shown.err) == (0, "")
    assert f"qtr_orvex {version}" in page_text(installed, name, section)


@pytest.mark.parametrize("name, section", PAGES)
def test_pages_that_are_referred_to_exist(installed, name, section):
    for other, its in re.findall(r"^\.Xr (\S+) (\d)", page_file(installed, name, section).decode(),
                                 re.M):
        assert page_text(installed, other, its)
