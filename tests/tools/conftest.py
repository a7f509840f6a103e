"""What the tests of all tools have in common: where the programs are."""
import pathlib

import pytest

ROOT = pathlib.Path(__file__).resolve().parents[2]


def pytest_addoption(parser):
    parser.addoption("--build", default="build/dev", help="the build directory to test")


@pytest.fixture(scope="session")
def build_dir(request):
    return ROOT / request.config.getoption("--build")
