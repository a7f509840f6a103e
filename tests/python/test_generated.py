"""What is told in two places is the same in both."""

import re
import shutil
import subprocess
import sys

import generate_commands
import orvex
from conftest import ROOT


def version_of_project():
    return re.search(r"project\(qtr_orvex VERSION ([\d.]+)", (ROOT / "CMakeLists.txt").read_text())[1]


def test_table_of_commands(build_dir):
    assert generate_commands.TARGET.read_text() == generate_commands.generated(build_dir), (
        "out of date: python/generate_commands.py BUILD")


def test_version_is_the_librarys():
    assert orvex.__version__ == version_of_project()


def test_version_of_the_distribution(tmp_path):
    shutil.copytree(ROOT / "python", tmp_path / "python")
    shutil.copy(ROOT / "CMakeLists.txt", tmp_path)
    told = subprocess.check_output([sys.executable, "setup.py", "-q", "--version"], text=True,
                                   cwd=tmp_path / "python", stderr=subprocess.DEVNULL)
    assert told.split() == [version_of_project()]


def test_models_and_commands():
    assert orvex.models() == ("Alder", "Birch", "Cedar", "Hazel", "Larch", "Maple", "Rowan",
                              "Spruce", "Tamar", "Willow")
    assert [len(orvex.commands_of(name)) for name in orvex.models()] == [
        13, 26, 26, 26, 26, 26, 26, 56, 70, 76]
