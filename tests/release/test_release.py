"""scripts/release on a clone of this tree: which tags it takes, and what its archive holds.

What packages that are made from a tree are worth, scripts/check_packages shows.
"""
import hashlib
import pathlib
import re
import subprocess
import tarfile

import pytest

ROOT = pathlib.Path(__file__).resolve().parents[2]
IN_CMAKE = re.compile(r"project\(qtr_orvex VERSION ([0-9.]+)")
VERSION = IN_CMAKE.search((ROOT / "CMakeLists.txt").read_text())[1]


class Clone:
    def __init__(self, directory):
        self.directory = directory
        subprocess.run(["git", "clone", "--quiet", ROOT, directory], check=True)

    def git(self, *arguments):
        names = ["-c", "user.name=Tester", "-c", "user.email=tester@example.org"]
        subprocess.run(["git", *names, *arguments], cwd=self.directory, check=True)

    def commit(self, name, old, new):
        path = self.directory / name
        text = path.read_text()
        assert old in text
        path.write_text(text.replace(old, new, 1))
        self.git("commit", "--quiet", "--all", "--message", f"{name} changed")

    def release(self, *arguments):
        return subprocess.run([self.directory / "scripts/release", *arguments],
                              capture_output=True, text=True)


@pytest.fixture
def clone(tmp_path):
    return Clone(tmp_path / "clone")


@pytest.mark.parametrize("prefix", ["", "v"])
def test_the_archive_of_a_tag_is_the_same_whenever_it_is_made(clone, prefix):
    tag = prefix + VERSION
    clone.git("tag", tag)
    made = set()
    for _ in range(2):
        result = clone.release("--archive", tag)
        assert result.returncode == 0, result.stderr
        results = clone.directory / f"build/release-{tag}"
        archive = results / f"qtr-orvex-{VERSION}.tar.gz"
        digest = hashlib.sha256(archive.read_bytes()).hexdigest()
        assert (results / "SHA256SUMS").read_text() == f"{digest}  {archive.name}\n"
        made.add(digest)
    assert len(made) == 1
    tracked = subprocess.run(["git", "ls-files"], cwd=clone.directory, check=True,
                             capture_output=True, text=True).stdout.split("\n")[:-1]
    with tarfile.open(archive) as opened:
        held = {member.name for member in opened.getmembers() if not member.isdir()}
    assert held == {f"qtr-orvex-{VERSION}/{name}" for name in tracked}


def test_the_tree_is_not_looked_at(clone):
    clone.git("tag", VERSION)
    (clone.directory / "CHANGELOG.md").unlink()
    (clone.directory / "CMakeLists.txt").write_text("project(qtr_orvex VERSION 9.9.9.9)\n")
    assert clone.release("--archive", VERSION).returncode == 0


def test_a_tag_that_is_not_there(clone):
    result = clone.release("--archive", "9.9.9.9")
    assert (result.returncode, result.stderr) == (1, "release: there is no tag 9.9.9.9\n")


def test_a_tag_of_another_version(clone):
    clone.git("tag", "9.9.9.9")
    result = clone.release("--archive", "9.9.9.9")
    assert result.returncode == 1
    assert result.stderr == f"release: 9.9.9.9, but CMakeLists.txt says {VERSION}\n"


@pytest.mark.parametrize("entry", ["## [Unreleased]", "## [9.9.9.9] - 2030-01-01"])
def test_a_version_without_its_entry_of_changes(clone, entry):
    clone.commit("CHANGELOG.md", f"## [{VERSION}]", f"{entry}\n\n## [{VERSION}]")
    clone.git("tag", VERSION)
    result = clone.release("--archive", VERSION)
    assert result.returncode == 1
    assert result.stderr == f"release: {VERSION}, but the top entry of CHANGELOG.md is: {entry}\n"


@pytest.mark.parametrize("arguments", [[], ["1", "2"], ["--archive"], ["--help"]])
def test_usage(clone, arguments):
    result = clone.release(*arguments)
    assert result.returncode == 2
    assert "scripts/release [--archive] TAG" in result.stdout
