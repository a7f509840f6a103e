"""Programs and fragments of programs in C and C++.

A block with a main() is a program. Any other is a fragment, and is tried inside a program that has
opened the first light: "handle" is that light's, and "reply", "state" and "status" are there.
"""
import re

C_HEADERS = ["assert.h", "math.h", "signal.h", "stdio.h", "stdlib.h", "string.h", "unistd.h",
             "qtr_orvex.h"]
CPP_HEADERS = ["cassert", "string", "iostream", "vector", "unistd.h", "qtr_orvex.h"]
SIMULATOR_HEADERS = ["sim/simulated_device.h", "sim/testbed.h", "sim/talker.h"]

AROUND_FRAGMENT = """
static void myFunction(const char* text) {{ (void)text; }}

int main(void) {{
    uint64_t handles[8] = {{0}};
    uint32_t found = 0;
    (void)myFunction;
    ORVEX_SetLogBits(LOG_BIT_ERROR);
    if (ORVEX_ScanDevices(handles, 8, &found) != ORVEX_OK || found == 0 ||
        ORVEX_OpenDeviceEx(handles[0]) != ORVEX_OK) {{
        return 1;
    }}
    const uint64_t handle = handles[0];
    uint32_t status = ORVEX_OK;
    char reply[64] = "";
    OrvexStruct state;
    memset(&state, 0, sizeof state);
    state.iSize = sizeof state;
    (void)status, (void)reply, (void)state;
    {{
#line 1 "fragment"
{fragment}
    }}
    ORVEX_CloseDevice(handle);
    return 0;
}}
"""


def is_program(text):
    return re.search(r"\bmain\(", text) is not None


def includes(names):
    return "".join(f'#include {quoted(name)}\n' for name in names)


def quoted(name):
    return f'"{name}"' if "/" in name else f"<{name}>"


def whole_program(language, text):
    """The text of a program, around a fragment if it is one."""
    if is_program(text):
        return text
    if "SimulatedDevice" in text:
        return (includes(CPP_HEADERS + SIMULATOR_HEADERS) + "using namespace orvex::sim;\n"
                "int main() {\n    ORVEX_SetLogBits(0);\n" + text + "}\n")
    own = "".join(re.findall(r"^#include .*\n", text, re.M))
    rest = re.sub(r"^#include .*\n", "", text, flags=re.M)
    headers = C_HEADERS if language == "c" else [*CPP_HEADERS, "cstring"]
    return own + includes(headers) + AROUND_FRAGMENT.format(fragment=rest)
