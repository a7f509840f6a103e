"""Blocks that do not run are few and known, each with its reason."""
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


def test_every_page_is_read():
    """The number of blocks shows that the reader of the pages has not gone blind."""
    counts = {page: len(blocks_of(page)) for page in checked_pages()}
    fences = {page: sum(line.lstrip().startswith("```") for line in
                        (ROOT / page).read_text().splitlines()) for page in checked_pages()}
    assert counts == {page: fences[page] // 2 for page in fences}
    assert sum(counts.values()) > 60
