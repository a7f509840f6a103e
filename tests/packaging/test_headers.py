"""The installed headers compile alone, without a warning, as C and C++ with GCC and Clang."""
import pytest

STRICT = ["-Wall", "-Wextra", "-pedantic-errors", "-Werror", "-fsyntax-only"]
CXX_HEADERS = [
    "api/device_registry.h", "api/driver_exception.h", "device/light_device.h", "device/models.h",
    "discovery/device_list.h", "discovery/port_discovery.h", "log/export.h", "log/hexstring.h",
    "log/log.h", "log/logger.h", "serial/serial_link.h"]


def compile_text(installed, tmp_path, compiler, standard, text):
    language = "c" if standard.startswith("c1") else "c++"
    (tmp_path / "text").write_text(text)
    # As in a program of somebody else's: warnings are not held back as in system folders.
    installed.output(compiler, "-x", language, f"-std={standard}", *STRICT,
                     "-I", installed.prefix / "include", "text", cwd=tmp_path)


def test_the_headers_are_these(installed):
    folder = installed.prefix / "include" / "qtr_orvex"
    assert sorted(str(path.relative_to(folder)) for path in folder.rglob("*.h")) == CXX_HEADERS


@pytest.mark.parametrize("compiler, standard", [
    (compiler, standard) for pair in (("gcc", "g++"), ("clang", "clang++"))
    for compiler, standards in zip(pair, (("c11", "c17"), ("c++17", "c++20")))
    for standard in standards])
def test_c_header(installed, tmp_path, compiler, standard):
    compile_text(installed, tmp_path, compiler, standard,
                 "#include <qtr_orvex.h>\nint unused;\n")


@pytest.mark.parametrize("header", CXX_HEADERS)
def test_cxx_header_alone(installed, tmp_path, header):
    compile_text(installed, tmp_path, "g++", "c++17", f"#include <qtr_orvex/{header}>\n")


@pytest.mark.parametrize("compiler, standard", [
    ("g++", "c++20"), ("clang++", "c++17"), ("clang++", "c++20")])
def test_cxx_headers_together(installed, tmp_path, compiler, standard):
    text = "".join(f"#include <qtr_orvex/{header}>\n" for header in CXX_HEADERS)
    compile_text(installed, tmp_path, compiler, standard, text)


def test_headers_of_the_same_name_stay_apart(installed, tmp_path):
    (tmp_path / "log").mkdir()
    (tmp_path / "log" / "export.h").write_text("#error this is the application's\n")
    compile_text(installed, tmp_path, "g++", "c++17",
                 f'#include "{installed.prefix}/include/qtr_orvex/device/light_device.h"\n')
