"""The package's constants, records and prototypes are those of the C header."""

import ctypes
import re
import subprocess

import pytest

from conftest import ROOT
from orvex import _commands, _errors, _library, _log, _records

HEADER = ROOT / "include" / "qtr_orvex.h"
RECORDS = {"OrvexChannel": _records.ChannelRecord, "OrvexStruct": _records.StateRecord}
TYPES = {"uint32_t": ctypes.c_uint32, "uint64_t": ctypes.c_uint64, "void": None,
         "int": ctypes.c_int, "bool": ctypes.c_bool, "char*": ctypes.c_char_p,
         "uint32_t*": ctypes.POINTER(ctypes.c_uint32),
         "uint64_t*": ctypes.POINTER(ctypes.c_uint64),
         "OrvexStruct*": ctypes.POINTER(_records.StateRecord),
         "OrvexLogCallback": _log.CALLBACK_TYPE}


@pytest.fixture(scope="module")
def text():
    return re.sub(r"/\*.*?\*/", "", HEADER.read_text(), flags=re.S)


@pytest.fixture(scope="module")
def compiled(text, tmp_path_factory):
    """What a C compiler makes of the header: {expression: number}."""
    names = re.findall(r"^#define ((?:ORVEX|LOG)_\w+) \w+ *$", text, flags=re.M)
    expressions = [*names]
    for name, record in RECORDS.items():
        expressions.append(f"sizeof({name})")
        for field, *_ in record._fields_:
            expressions += [f"offsetof({name}, {field})", f"sizeof((({name}*)0)->{field})"]
    directory = tmp_path_factory.mktemp("header")
    lines = "".join(f'    printf("%llu\\n", (unsigned long long)({one}));\n' for one in expressions)
    (directory / "tell.c").write_text(
        '#include <stdio.h>\n#include "qtr_orvex.h"\nint main(void) {\n' + lines + "}\n")
    subprocess.run(["cc", "-I", str(HEADER.parent), "-o", str(directory / "tell"),
                    str(directory / "tell.c")], check=True)
    told = subprocess.check_output([str(directory / "tell")], text=True).split()
    return dict(zip(expressions, map(int, told), strict=True))


def beginning(numbers, prefix):
    return {name: value for name, value in numbers.items()
            if re.fullmatch(prefix + r"[A-Z_]+", name)}


def test_status_codes(compiled):
    statuses = {**beginning(compiled, "ORVEX_ERR_"), "ORVEX_OK": compiled["ORVEX_OK"]}
    assert len(statuses) == 15
    assert {status.name: code for code, status in _errors.STATUSES.items()} == statuses
    assert {f"ORVEX_{name}": value for name, value in vars(_errors).items()
            if name == "OK" or name.startswith("ERR_")} == statuses


def test_models(compiled):
    types = beginning(compiled, "ORVEX_TYPE_")
    assert _records.TYPE_UNDEFINED == types.pop("ORVEX_TYPE_UNDEFINED")
    assert {f"ORVEX_TYPE_{name.upper()}": number
            for number, name in _commands.MODELS.items()} == types


@pytest.mark.parametrize("prefix", ["LOG_BIT_", "LOG_METHOD_", "ORVEX_CAP_"])
def test_constants(compiled, prefix):
    ours = {name: value for name, value in vars(_records).items()
            if f"{prefix}".removeprefix("ORVEX_") in name}
    theirs = {name.removeprefix("ORVEX_"): value
              for name, value in beginning(compiled, prefix).items()}
    assert ours == theirs != {}


def test_limits(compiled):
    assert _records.MAX_CHANNEL == compiled["ORVEX_MAX_CHANNEL"]
    assert _records.EMPTY_POSITION == compiled["ORVEX_EMPTY_POSITION"]


@pytest.mark.parametrize("name", RECORDS)
def test_layout(compiled, name):
    record = RECORDS[name]
    assert ctypes.sizeof(record) == compiled[f"sizeof({name})"]
    for field, *_ in record._fields_:
        assert getattr(record, field).offset == compiled[f"offsetof({name}, {field})"], field
        assert getattr(record, field).size == compiled[f"sizeof((({name}*)0)->{field})"], field


@pytest.mark.parametrize("name", RECORDS)
def test_every_member_is_there_under_its_name(text, name):
    body = re.search(r"typedef struct %s \{(.*?)\}" % name, text, flags=re.S)[1]
    assert re.findall(r"(\w+)(?:\[\w+\])?;", body) == [one[0] for one in RECORDS[name]._fields_]


def c_type(words):
    plain = re.sub(r"\bconst\b", "", words)
    return TYPES[re.sub(r"\s+", "", plain)]


def test_prototypes(text):
    declared = {}
    for result, name, arguments in re.findall(r"ORVEX_API (\w+) (\w+)\(([^)]*)\)", text):
        listed = [] if arguments.strip() == "void" else arguments.split(",")
        declared[name] = (c_type(result), tuple(
            c_type(re.sub(r"\w+\s*$", "", argument)) for argument in listed))
    assert len(declared) == 17
    assert {name: (result, arguments)
            for name, result, arguments in _library.PROTOTYPES} == declared
