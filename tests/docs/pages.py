"""The pages of the documentation and the blocks of code in them.

A comment before a block says what to do with it (CONTRIBUTING.md tells them all):

    <!-- not run: WHY -->     it cannot run in a test
    <!-- run as: COMMAND -->  it shows what this prints ($BUILD: the build) instead of running
    <!-- file: NAME -->       it is a file, which later blocks of the page use
    <!-- before: COMMAND -->  what is there already when the block begins ($ORVEX: the project)
    <!-- ends by Ctrl-C -->   its last command runs until it is interrupted
    <!-- lights: OPTIONS -->  from here on the page's commands see these simulated lights
    <!-- PATH -->             it is this file of the project, word by word
"""
import pathlib
import re
from dataclasses import dataclass

ROOT = pathlib.Path(__file__).resolve().parents[2]
# These have tests of their own: of the Python package, of the packages, and the measurements and
# proofs that they describe, which take minutes to hours.
TESTED_ELSEWHERE = {"docs/getting-started-python.md", "docs/installing.md",
                    "docs/performance.md", "docs/reliability.md"}
# What the comments would say in README.md, which is kept free of them: by a block's first words.
README_NOTES = {
    "./demo": {"not run": "builds everything; a test of its own runs the demo"},
    "cmake --preset release": {"not run": "builds everything and installs it"},
    "sudo usermod": {"not run": "changes the user's groups"}}
README_LIGHTS = "--device Tamar,wavelengths=365/385/405/470"
COMMENT = re.compile(r"<!-- (.+) -->$")
FENCE = re.compile(r"( *)```(\w*)$")


@dataclass
class Block:
    page: str
    line: int
    language: str
    text: str
    notes: dict
    lights: str

    @property
    def where(self):
        return f"{self.page}:{self.line}"

    @property
    def first_line(self):
        return self.text.splitlines()[0] if self.text else ""


def all_pages():
    pages = [ROOT / "README.md", ROOT / "CONTRIBUTING.md", ROOT / "sim/README.md",
             *sorted((ROOT / "docs").glob("*.md"))]
    return [str(page.relative_to(ROOT)) for page in pages]


def checked_pages():
    return [page for page in all_pages() if page not in TESTED_ELSEWHERE]


def note_of(comment):
    """A comment's name and value; the name of a file of the project is "is"."""
    if comment == "ends by Ctrl-C":
        return comment, True
    name, colon, value = comment.partition(": ")
    return (name, value) if colon else ("is", comment)


def blocks_of(page):
    """The blocks of a page, in their order."""
    blocks, notes, lights = [], {}, ""
    lines = iter(enumerate((ROOT / page).read_text().splitlines(), 1))
    for number, line in lines:
        if comment := COMMENT.match(line):
            name, value = note_of(comment[1])
            lights = value if name == "lights" else lights
            notes[name] = value
        elif fence := FENCE.match(line):
            text = []
            for _, inner in lines:
                if inner == fence[1] + "```":
                    break
                text.append(inner.removeprefix(fence[1]) + "\n")
            else:
                raise AssertionError(f"{page}:{number}: the block has no end")
            blocks.append(Block(page, number, fence[2], "".join(text), notes, lights))
            notes = {}
        elif line:
            notes = {}
    return blocks if page != "README.md" else [annotated(block) for block in blocks]


def annotated(block):
    block.lights = README_LIGHTS
    for words, notes in README_NOTES.items():
        if block.text.startswith(words):
            block.notes = {**block.notes, **notes}
    return block
