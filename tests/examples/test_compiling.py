"""The examples compile as their users compile them: without this project's build."""
import pathlib
import shutil
import subprocess

import pytest

ROOT = pathlib.Path(__file__).resolve().parents[2]
STRICT = ["-Wall", "-Wextra", "-pedantic", "-Werror"]


def compiles(command, source, includes):
    done = subprocess.run([*command, *STRICT, "-fsyntax-only", source,
                           *(f"-I{path}" for path in includes)],
                          capture_output=True, text=True, timeout=120, check=False)
    assert (done.returncode, done.stderr) == (0, "")


def sources(language, suffix):
    return sorted((ROOT / "examples" / language).glob(f"*.{suffix}"))


def test_there_are_six_jobs():
    assert len(sources("c", "c")) == len(sources("cpp", "cpp")) == 6
    assert [path.stem for path in sources("c", "c")] == [path.stem for path in sources("cpp", "cpp")]


@pytest.mark.parametrize("standard", ["c11", "gnu17"])
def test_c_needs_nothing_but_the_public_header(tmp_path, standard):
    shutil.copy(ROOT / "include/qtr_orvex.h", tmp_path)
    for source in sources("c", "c"):
        compiles(["cc", f"-std={standard}"], source, [tmp_path])


@pytest.mark.parametrize("name", [path.name for path in sources("cpp", "cpp")])
def test_cpp_needs_nothing_but_the_exported_headers(tmp_path, name):
    shutil.copy(ROOT / "include/qtr_orvex.h", tmp_path)
    installed = tmp_path / "qtr_orvex"
    for folder in ("api", "device", "discovery", "log", "serial", "include"):
        shutil.copytree(ROOT / folder, installed / folder,
                        ignore=lambda _, names: [n for n in names if not n.endswith(".h")])
    compiles(["c++", "-std=c++17"], ROOT / "examples/cpp" / name, [tmp_path, installed])
