"""Every command and program of the documentation does what the page says."""
import json
from concurrent.futures import ThreadPoolExecutor

import pytest

from pages import ROOT, blocks_of, checked_pages
from programs import whole_program
from world import World, same

PAGES_AT_ONCE = 4
LANGUAGES = {"sh", "console", "c", "cpp", "python", "json", "cmake", "text"}


def commands_of(text):
    """The commands of a console block, each with the output that is shown."""
    commands = []
    for line in text.splitlines(keepends=True):
        if line.startswith("$ "):
            commands.append([line[2:], ""])
        elif commands and commands[-1][0].endswith("\\\n") and not commands[-1][1]:
            commands[-1][0] += line
        else:
            assert commands, f"output before the first command: {line}"
            commands[-1][1] += line
    return commands


def run_console(world, block):
    commands = commands_of(block.text)
    if "ends by Ctrl-C" in block.notes:
        (command, shown), = commands
        printed = [world.run_until_interrupted(block.lights, command, shown.count("\n"))]
    else:
        printed = world.run_console(block.lights, [command for command, _ in commands])
    for (command, shown), text in zip(commands, printed):
        assert same(shown, text), f"{block.where}: $ {command}shown:\n{shown}\nprinted:\n{text}"


def run_script(world, block):
    done = world.run_script(block.lights, block.text)
    assert done.returncode == 0, f"{block.where}: exit code {done.returncode}\n{done.stdout}"


def run_program(world, block):
    source = world.directory / f"block{block.line}.{block.language}"
    program = world.directory / f"block{block.line}"
    source.write_text(whole_program(block.language, block.text))
    world.compile(block.language, source, program)
    bare = "SimulatedDevice" in block.text  # It brings its own lights and cannot be among others.
    done = world.run_alone([str(program)]) if bare else world.run(
        block.lights or "--device Tamar", [str(program)])
    assert done.returncode == 0, f"{block.where}: exit code {done.returncode}\n{done.stdout}"


def run_python(world, block):
    done = world.run(block.lights, ["/usr/bin/python3", "-c", block.text])
    assert done.returncode == 0, f"{block.where}: exit code {done.returncode}\n{done.stdout}"


def carry_out(world, block):
    if "not run" in block.notes:
        return
    if "before" in block.notes:
        world.run_script("", block.notes["before"]).check_returncode()
    if "run as" in block.notes:
        printed = world.run_script(block.lights, block.notes["run as"]).stdout
        shown = block.text.split("\n", 1)[1] if block.text.startswith("$ ") else block.text
        assert same(shown, printed), f"{block.where}: printed:\n{printed}"
        return
    if "is" in block.notes:
        path = ROOT / block.notes["is"]
        assert path.read_text() == block.text, f"{block.where}: is not {path}"
    if "file" in block.notes:
        path = world.directory / block.notes["file"]
        path.parent.mkdir(exist_ok=True)
        path.write_text(block.text)
    elif block.language == "console":
        run_console(world, block)
    elif block.language == "sh":
        run_script(world, block)
    elif block.language in ("c", "cpp"):
        run_program(world, block)
    elif block.language == "python":
        run_python(world, block)
    elif block.language == "json":
        json.loads(block.text)
    else:
        assert block.language == "text", f"{block.where}: a block of {block.language} is a file"


def faults_of(page, world):
    faults = []
    for block in blocks_of(page):
        try:
            assert block.language in LANGUAGES, f"{block.where}: which language is it?"
            carry_out(world, block)
        except Exception as fault:  # Anything: the page's test shows it.
            faults.append(f"{block.where}: {fault!r}" if not str(fault) else str(fault))
    return faults


@pytest.fixture(scope="session")
def faults(request, build, tmp_path_factory):
    """The faults of each page that is asked for; they wait more than they work, so all at once."""
    pages = [item.callspec.params["page"] for item in request.session.items
             if item.name.startswith("test_page_does_what_it_says")]
    worlds = [World(build, tmp_path_factory.mktemp("page")) for _ in pages]
    with ThreadPoolExecutor(PAGES_AT_ONCE) as pool:
        return dict(zip(pages, pool.map(faults_of, pages, worlds)))


@pytest.mark.parametrize("page", checked_pages())
def test_page_does_what_it_says(faults, page):
    assert not faults[page], "\n".join(faults[page])


def test_text_blocks_hold_no_commands():
    for page in checked_pages():
        for block in blocks_of(page):
            if block.language == "text" and "run as" not in block.notes:
                assert "\n$ " not in "\n" + block.text, f"{block.where}: mark it as console"
