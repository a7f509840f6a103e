"""Blocks that do not run are few and known, each with its reason."""
import re

from pages import ROOT, blocks_of, checked_pages

REVIEWED = ROOT / "tests/docs/not_run.txt"


def test_blocks_that_do_not_run_are_those_of_the_reviewed_list():
    found = [f"{page}: {block.first_line} -- {name}: {block.notes[name]}"
             for page in checked_pages() for block in blocks_of(page)
             for name in ("not run", "run as") if name in block.notes]
    reviewed = [line for line in REVIEWED.read_text().splitlines()
                if line and not line.startswith("#")]
    assert found == reviewed


def test_every_exception_has_a_reason():
    for page in checked_pages():
        for block in blocks_of(page):
            assert len(block.notes.get("not run", "it does run").split()) >= 3, block.where


def test_the_demo_builds_where_the_walk_goes_on():
    """The walk's path to the tools cannot be tried: ./demo builds them, the tests do not."""
    directory = re.search(r"^build=(\S+)$", (ROOT / "demo").read_text(), re.M)[1]
    walk = (ROOT / "docs/getting-started-terminal.md").read_text()
    assert f'PATH="$PWD/{directory}/tools/orvexctl:$PWD/{directory}/tools/orvex-sim:$PATH"' in walk
    assert f"into `{directory}`" in " ".join(walk.split())


def test_every_page_is_read():
    """The number of blocks shows that the reader of the pages has not gone blind."""
    counts = {page: len(blocks_of(page)) for page in checked_pages()}
    fences = {page: sum(line.lstrip().startswith("```") for line in
                        (ROOT / page).read_text().splitlines()) for page in checked_pages()}
    assert counts == {page: fences[page] // 2 for page in fences}
    assert sum(counts.values()) > 60
