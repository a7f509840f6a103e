"""Tables of the documentation that repeat what stands elsewhere say the same."""
import re
import subprocess
import sys

from pages import ROOT

HEADER = ROOT / "include/qtr_orvex.h"


def page(name):
    return (ROOT / "docs" / name).read_text()


def rows(text):
    """The cells of the tables' rows, without code's quotes."""
    for line in text.splitlines():
        if line.startswith("| "):
            yield [cell.strip().strip("`") for cell in line.strip("|").split("|")]


def codes_of_the_header():
    return re.findall(r"#define (ORVEX_OK|ORVEX_ERR_\w+) (0x[0-9A-F]{8})u", HEADER.read_text())


def test_status_codes_are_those_of_the_header():
    shown = re.findall(r"^\| \[`(\w+)`\]\(#(\w+)\) \| (0x[0-9A-F]{8}) \|", page("errors.md"), re.M)
    assert [(name, number) for name, _, number in shown] == codes_of_the_header()
    assert all(anchor == name.lower() for name, anchor, _ in shown)
    assert len(shown) == 15


def test_each_status_code_has_a_section_that_says_what_to_do():
    sections = re.split(r"^## ", page("errors.md"), flags=re.M)[1:]
    names = [section.split("\n")[0] for section in sections]
    assert names == [name for name, _ in codes_of_the_header()]
    without = {"ORVEX_OK", "ORVEX_ERR_UNSPECIFIED"}  # Nothing to do, and never returned.
    assert {name for name, section in zip(names, sections) if "*To do:*" not in section} == without


def test_no_page_names_a_status_code_that_does_not_exist():
    known = {name for name, _ in codes_of_the_header()}
    for path in [*(ROOT / "docs").glob("*.md"), ROOT / "README.md"]:
        named = set(re.findall(r"\bORVEX_(?:OK|ERR_[A-Z_]+[A-Z])\b", path.read_text()))
        assert named <= known, path


def fields_of_the_compiler(tmp_path, struct, names):
    """Offset and size of each field, as the compiler has them."""
    source = tmp_path / f"{struct}.c"
    lines = [f'printf("%zu %zu\\n", offsetof({struct}, {name}), sizeof (({struct}*)0)->{name});'
             for name in names]
    source.write_text(f'#include <stdio.h>\n#include "{HEADER}"\n'
                      "int main(void) {\n" + "\n".join(lines) + "\nreturn 0;\n}\n")
    program = tmp_path / struct
    subprocess.run(["cc", "-o", program, source], check=True)
    printed = subprocess.run([program], check=True, capture_output=True, text=True).stdout
    return [tuple(map(int, line.split())) for line in printed.splitlines()]


def declared_fields(struct):
    """The names and types of a struct's fields, as the header declares them."""
    text = re.search(rf"typedef struct {struct} {{(.*?)}} {struct};", HEADER.read_text(), re.S)[1]
    fields = re.findall(r"^\s*(\w+) (\w+)(\[\w+\])?;", text, re.M)
    return [(name, kind + (size or "").replace("ORVEX_MAX_CHANNEL", "16"))
            for kind, name, size in fields]


def test_state_record_is_that_of_the_header(tmp_path):
    header, channel = re.split(r"^## ", page("state-record.md"), flags=re.M)[1:3]
    for struct, section in (("OrvexStruct", header), ("OrvexChannel", channel)):
        table = [row for row in rows(section) if row[0].isdigit()]
        names = [row[2] for row in table]
        assert [(row[2], row[3]) for row in table] == declared_fields(struct)
        assert [(int(row[0]), int(row[1])) for row in table] == fields_of_the_compiler(
            tmp_path, struct, names)


def test_capabilities_are_those_of_the_header():
    text = page("state-record.md")
    for name, number in re.findall(r"#define (ORVEX_CAP_\w+) (0x[0-9A-F]+)u", HEADER.read_text()):
        assert f"| {number} | `{name}` |" in text


def test_command_reference_is_up_to_date(build):
    script = ROOT / "scripts/make_command_reference"
    done = subprocess.run([sys.executable, script, "--check", build], capture_output=True,
                          text=True)
    assert done.returncode == 0, done.stdout


def without_origin(svg):
    return re.sub(r"<!--.*?-->", "", svg, flags=re.S)


def test_picture_is_drawn_from_its_source():
    drawn = subprocess.run(["dot", "-Tsvg", ROOT / "docs/architecture.dot"], check=True,
                           capture_output=True, text=True).stdout
    assert without_origin(page("architecture.svg")) == without_origin(drawn)
