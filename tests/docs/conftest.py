"""What the tests of the documentation have in common: the build whose programs they run."""
import pytest

from world import World


def pytest_addoption(parser):
    parser.addoption("--build", default="build/dev", help="the build directory to test")


@pytest.fixture(scope="session")
def build(request):
    from pages import ROOT
    return ROOT / request.config.getoption("--build")


@pytest.fixture
def world(build, tmp_path):
    return World(build, tmp_path)
