"""Links of the pages lead somewhere, and files and scripts that they name exist."""
import re

import pytest

from pages import ROOT, TESTED_ELSEWHERE, all_pages

LINK = re.compile(r"!?\[[^\]]*\]\(([^)\s]+)\)")
NAMED_FILE = re.compile(r"`((?:api|bench|device|discovery|docs|examples|include|log|packaging|"
                        r"python|scripts|serial|sim|tests|tools)/[\w./-]*)")


def prose(page):
    """A page without its blocks of code."""
    return re.sub(r"^( *)```.*?^\1```$", "", (ROOT / page).read_text(), flags=re.M | re.S)


def anchors(page):
    """What headings are called in links, as GitHub does it."""
    headings = re.findall(r"^#+ (.+)$", prose(page), re.M)
    texts = [re.sub(r"[^\w\- ]", "", heading.lower()).strip() for heading in headings]
    return {text.replace(" ", "-") for text in texts}


def broken(page, target):
    path, _, anchor = target.partition("#")
    file = (ROOT / page).parent / path if path else ROOT / page
    if not file.exists():
        return True
    return bool(anchor) and anchor not in anchors(str(file.resolve().relative_to(ROOT)))


@pytest.mark.parametrize("page", all_pages())
def test_links_lead_somewhere(page):
    targets = [t for t in LINK.findall(prose(page)) if not t.startswith("http")]
    assert [target for target in targets if broken(page, target)] == []


# docs/installing.md names files where they are installed.
@pytest.mark.parametrize("page", sorted({*all_pages()} - {"docs/installing.md"}))
def test_named_files_exist(page):
    names = set(NAMED_FILE.findall((ROOT / page).read_text()))
    beside = [ROOT, (ROOT / page).parent, ROOT / "tests"]
    assert [name for name in names if not any((base / name).exists() or list(base.glob(name + "*"))
                                              for base in beside)] == []


def test_the_contents_name_every_page():
    contents = {target for target in LINK.findall((ROOT / "docs/README.md").read_text())}
    pages = {page.name for page in (ROOT / "docs").glob("*.md")} - {"README.md"}
    assert pages <= contents


def test_lines_of_text_are_short():
    """Tables, comments and blocks of code aside."""
    long = [f"{page}: {line}" for page in all_pages()
            if page not in TESTED_ELSEWHERE for line in prose(page).splitlines()
            if len(line) > 100 and not line.startswith(("|", "<!--"))]
    assert long == []
