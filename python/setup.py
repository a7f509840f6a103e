"""Takes the version from where the whole project has it."""

import pathlib
import re

from setuptools import setup

HERE = pathlib.Path(__file__).resolve().parent


def version() -> str:
    """The project's version; a source archive of the package has kept it in PKG-INFO."""
    kept = HERE / "PKG-INFO"
    project = HERE.parent / "CMakeLists.txt"
    text = (kept if kept.exists() else project).read_text()
    found = re.search(r"^(?:Version: |project\(qtr_orvex VERSION )([\d.]+)", text, flags=re.M)
    if found is None:
        raise SystemExit("setup.py: no version found")
    return found[1]


setup(version=version())
