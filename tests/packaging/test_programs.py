"""Programs of other people's: compiled with what is installed, run beside simulated lights."""
import re
import shutil

import pytest

from conftest import ROOT

CXX_PROGRAM = """
#include <cstdio>
#include <cstring>
#include <string>

#include <qtr_orvex/api/driver_exception.h>
#include <qtr_orvex/device/light_device.h>
#include <qtr_orvex/log/log.h>

static_assert(__cplusplus >= 201703L);

int main() {
    ORVEX_SetLogBits(0);
    LightDevice device(ORVEX_TYPE_TAMAR, "/dev/ttyACM0");
    device.openConnection(9600);
    OrvexStruct state{};
    state.iSize = sizeof state;
    device.getOVStruct(state);
    std::printf("%s: %d channels\\n", state.szModelName, state.iNumChannels);
    try {
        std::string reply;
        device.executeCommand("NoSuchCommand", reply, "");
    } catch (const DriverException& e) {
        const std::string number = to_hexstring(0x2au, false, true, false);
        std::printf("0x%08X %s\\n", e.error_code(), number.c_str());
    }
    device.closeConnection(true);
}
"""
VERSION_PROGRAM = """
#include <stdio.h>
#include "qtr_orvex.h"
int main(void) {
    uint32_t n[4];
    ORVEX_GetVersion(&n[0], &n[1], &n[2], &n[3]);
    return printf("%u.%u.%u.%u", n[0], n[1], n[2], n[3]) < 0;
}
"""


def readme_program():
    text = (ROOT / "README.md").read_text()
    return re.search(r"<!-- examples/first_light.c -->\n```c\n(.*?)```", text, re.S)[1]


def flags(installed, *options):
    return installed.output("pkg-config", *options, "qtr_orvex").split()


def cmake_project(folder, languages, source, wanted=""):
    folder.mkdir()
    name = "program.cpp" if "CXX" in languages else "program.c"
    (folder / name).write_text(source)
    (folder / "CMakeLists.txt").write_text(
        f"cmake_minimum_required(VERSION 3.25)\nproject(other LANGUAGES {languages})\n"
        f"find_package(qtr_orvex {wanted} REQUIRED)\nadd_executable(program {name})\n"
        "target_link_libraries(program PRIVATE qtr_orvex::qtr_orvex)\n")
    return folder


def build(installed, folder, *settings):
    installed.output("cmake", "-S", folder, "-B", folder / "build", *settings)
    installed.output("cmake", "--build", folder / "build")
    return folder / "build" / "program"


@pytest.mark.parametrize("compiler", ["gcc", "clang"])
def test_program_of_the_readme_with_pkg_config(installed, tmp_path, compiler):
    (tmp_path / "first_light.c").write_text(readme_program())
    installed.output(compiler, "-Wall", "-Werror", "first_light.c",
                     *flags(installed, "--cflags", "--libs"), "-o", "first_light", cwd=tmp_path)
    assert installed.beside_a_tamar(tmp_path / "first_light") == \
        "Tamar: 6 channels, first: 365nm\n"


@pytest.mark.system
def test_program_of_the_readme_as_the_readme_says(installed, tmp_path):
    (tmp_path / "first_light.c").write_text(readme_program())
    installed.output("cc", "first_light.c", "-lqtr_orvex", cwd=tmp_path)
    assert installed.beside_a_tamar(tmp_path / "a.out") == "Tamar: 6 channels, first: 365nm\n"


def test_program_of_the_readme_with_cmake(installed, tmp_path):
    program = build(installed, cmake_project(tmp_path / "c", "C", readme_program()))
    assert installed.beside_a_tamar(program) == "Tamar: 6 channels, first: 365nm\n"


@pytest.mark.parametrize("compiler", ["g++", "clang++"])
def test_cxx_headers_with_cmake(installed, tmp_path, compiler):
    folder = cmake_project(tmp_path / "cxx", "CXX", CXX_PROGRAM)
    program = build(installed, folder, f"-DCMAKE_CXX_COMPILER={compiler}")
    assert installed.beside_a_tamar(program) == "Tamar: 6 channels\n0xA0515013 2a\n"


@pytest.mark.system
def test_examples_of_the_package(installed, tmp_path):
    examples = installed.prefix / "share" / "doc" / "libqtr-orvex-dev" / "examples"
    for source in ("first_light.c", "light_tour.c"):
        shutil.copy(examples / source, tmp_path)
        installed.output("cc", source, "-lqtr_orvex", cwd=tmp_path)
        assert "Tamar" in installed.beside_a_tamar(tmp_path / "a.out")


def test_cmake_knows_the_version(installed, tmp_path, version):
    for wanted in ("1", "1.1", version):
        folder = cmake_project(tmp_path / wanted, "C", VERSION_PROGRAM, wanted)
        installed.output("cmake", "-S", folder, "-B", folder / "build")
    folder = cmake_project(tmp_path / "later", "C", VERSION_PROGRAM, "2")
    refused = installed.run("cmake", "-S", folder, "-B", folder / "build")
    assert refused.code != 0 and f"version: {version}" in refused.err


def test_all_say_the_same_version(installed, tmp_path, version):
    (tmp_path / "version.c").write_text(VERSION_PROGRAM)
    installed.output("cc", "version.c", *flags(installed, "--cflags", "--libs"), "-o", "version",
                     cwd=tmp_path)
    assert installed.output(tmp_path / "version") == version
    assert flags(installed, "--modversion") == [version]
    for tool in ("orvexctl", "orvex-sim"):
        assert installed.output(tool, "--version") == f"{tool} {version}\n"
    assert (installed.libraries / f"libqtr_orvex.so.{version}").exists()


def test_nothing_leads_back_to_where_it_was_built(installed):
    """No path of the build in programs, library, and files for pkg-config and CMake."""
    files = [installed.prefix / "bin" / "orvexctl", installed.prefix / "bin" / "orvex-sim",
             *installed.libraries.glob("libqtr_orvex.so*"),
             *installed.libraries.glob("pkgconfig/qtr_orvex.pc"),
             *installed.libraries.glob("cmake/qtr_orvex/*")]
    assert len(files) == 10
    for file in files:
        assert str(ROOT).encode() not in file.read_bytes(), file


def test_tools_find_the_library_by_themselves(installed):
    assert installed.output("env", "-u", "LD_LIBRARY_PATH",
                            installed.prefix / "bin" / "orvexctl", "--version")
