"""What the tests of the documentation have in common: the build whose programs they run."""
import pytest

from pages import ROOT


def pytest_addoption(parser):
    parser.addoption("--build", default="build/dev", help="the build directory to test")


@pytest.fixture(scope="session")
def build(request):
    return ROOT / request.config.getoption("--build")
