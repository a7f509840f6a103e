"""The Python package finds the installed library and the lights."""
import pytest


def test_it_knows_the_version(installed, version):
    program = "import orvex, sys; print(orvex.__version__, orvex.__file__)"
    told, place = installed.output("/usr/bin/python3", "-c", program, cwd="/").split()
    assert told == version
    assert place.startswith(f"{installed.prefix}/lib/python3/dist-packages/orvex/")


def test_it_speaks_with_a_light(installed):
    program = ("import orvex\n"
               "with orvex.open('Tamar') as light:\n"
               "    print(light.command('GetSoftwareVersion'))\n")
    assert installed.beside_a_tamar("/usr/bin/python3", "-c", program) == "1.4.2\n"


def test_type_checkers_know_that_it_is_typed(installed):
    assert (installed.prefix / "lib" / "python3" / "dist-packages" / "orvex" / "py.typed").exists()


@pytest.mark.system
def test_modules_are_compiled_with_the_package(installed):
    """Only root may write there later, so that every start would compile them anew."""
    folder = installed.prefix / "lib" / "python3" / "dist-packages" / "orvex"
    compiled = {path.name.split(".")[0] for path in (folder / "__pycache__").glob("*.pyc")}
    assert compiled == {path.stem for path in folder.glob("*.py")}
