"""docs/installing.md: its files and commands, one after the other, in one folder."""
import re
import shutil

from conftest import ROOT

PAGE = ROOT / "docs" / "installing.md"


def test_files_and_commands_of_the_page(installed, tmp_path, version):
    shutil.copy(ROOT / "examples" / "first_light.c", tmp_path)
    told = []
    for name, text in re.findall(r"^<!-- (\S+) -->\n```\w+\n(.*?)^```$", PAGE.read_text(),
                                 re.M | re.S):
        if name == "run":
            told += installed.output("bash", "-ec", text, cwd=tmp_path).splitlines()
        else:
            (tmp_path / name).write_text(text)
    lines = [line for line in told if not re.match(r"-- |\[", line)]
    light = "Tamar: 6 channels, first: 365nm"
    assert lines == [light, light, "Tamar on /dev/ttyACM0", version]


def test_places_that_the_page_names(installed):
    part = PAGE.read_text().split("## Where things are")[1].split("\nudev reads")[0]
    places = re.findall(r"`([A-Za-z]+/[^`]*)`", part)
    assert len(places) >= 15
    for place in places:
        if place in ("lib/x86_64-linux-gnu", "share/zsh/site-functions/"):
            continue  # named beside their counterparts
        if not installed.is_system:
            place = place.replace("vendor-completions", "site-functions")
        path = re.sub("^LIB/", f"{installed.libraries}/", place)
        assert (installed.prefix / path).exists(), place
