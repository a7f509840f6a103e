"""What the documents show is what happens; examples do their jobs; types fit."""

import os
import re
import subprocess
import sys

import pytest
from conftest import LONG_ENOUGH, ROOT

PAGE = ROOT / "docs" / "getting-started-python.md"
EXAMPLES = ROOT / "examples" / "python"
BLOCK = re.compile(r"(?:<!-- (\S+) -->\n)?```(\w+)\n(.*?)```", re.S)

RUN_SESSION = """
import doctest, pathlib, sys
text = pathlib.Path(sys.argv[1]).read_text(encoding="utf-8")
test = doctest.DocTestParser().get_doctest(text, {}, "page", sys.argv[1], 0)
runner = doctest.DocTestRunner(optionflags=doctest.REPORT_NDIFF)
runner.run(test)
print(runner.tries, "lines")
sys.exit(runner.failures != 0)
"""


def blocks(path=PAGE):
    return [(name, language, text) for name, language, text in BLOCK.findall(path.read_text())]


def test_the_page_as_one_interactive_session(child):
    session = "\n".join(text for _, language, text in blocks() if language == "pycon")
    (child.directory / "session.txt").write_text(session)
    out = child.run(["-c", RUN_SESSION, child.directory / "session.txt"])
    assert out == f"{session.count('>>> ')} lines\n"
    assert session.count(">>> ") > 30


def test_programs_and_consoles_of_the_page(child, build_dir):
    shell = {**child.environment, "PATH": f"{build_dir / 'tools' / 'orvex-sim'}:{os.environ['PATH']}"}
    (child.directory / "python3").symlink_to(sys.executable)
    shell["PATH"] = f"{child.directory}:{shell['PATH']}"
    ran = []
    for name, language, text in blocks():
        if language == "python":
            (child.directory / name).write_text(text)
            child.run([name])
            ran.append(name)
        elif language == "console":
            command, _, expected = text.removeprefix("$ ").partition("\n")
            told = subprocess.check_output(command, shell=True, text=True, env=shell,
                                           cwd=child.directory, timeout=LONG_ENOUGH)
            assert told == expected, command
            ran.append(command)
    assert len(ran) == 6
    assert {language for _, language, _ in blocks()} == {"sh", "pycon", "python", "console"}


def test_program_of_the_readme(child):
    (_, _, text), = blocks(ROOT / "python" / "README.md")
    assert child.run(["-c", text]) == "30,30,30,30,30,30,30,30\n"


def run(child, name, *arguments, **options):
    return child.run([EXAMPLES / name, *arguments], **options)


def test_find_and_list(child):
    out = run(child, "find_and_list.py", "--state", devices=("Tamar", "Cedar"))
    assert "Tamar on /dev/ttyACM0\n    firmware 1.4.2, serial number SN-0042\n" in out
    assert "     2 405nm      405 nm  50.0 %  30 °C off\n" in out
    assert "Cedar on /dev/ttyACM1\n" in out and "    lamp at 50 %, 120 hours old\n" in out


def requests(child, program, arguments, devices=("Tamar",)):
    """What a program says to the light."""
    command = child.command([sys.executable, str(EXAMPLES / program), *arguments], devices)
    command[2:2] = ["--trace", str(child.directory / "trace")]
    subprocess.run(command, check=True, env=child.environment, capture_output=True,
                   timeout=LONG_ENOUGH, cwd=child.directory)
    lines = (child.directory / "trace").read_text().splitlines()
    return [re.sub(r"(\\r)+$", "", line.split(" > ")[1]) for line in lines if " > " in line]


def test_time_lapse(child):
    sent = requests(child, "time_lapse.py", ["--channel=2", "--count=2", "--interval=0.1"])
    assert [one for one in sent if one[:3] in ("ip=", "on=", "of=")] == [
        "ip=500,300,500,500,500,500,500,500", "of=1,3,4,5,6,7,8", "on=2", "of=1,2,3,4,5,6,7,8",
        "of=1,3,4,5,6,7,8", "on=2", "of=1,2,3,4,5,6,7,8"]


@pytest.mark.parametrize("number", ["SIGINT", "SIGTERM"])
def test_time_lapse_is_dark_after_being_stopped(child, number):
    interrupted = ("import os, runpy, signal, sys, threading, time\n"
                   "import orvex\n"
                   "light = orvex.open('Tamar')\n"
                   "def interrupt():\n"
                   "    while light.command('GetUnitStatus') != '0,1,0,0,0,0,0,0':\n"
                   "        time.sleep(0.01)\n"
                   f"    os.kill(os.getpid(), signal.{number})\n"
                   "threading.Thread(target=interrupt, daemon=True).start()\n"
                   f"sys.argv = ['time_lapse.py', '--channel=2', '--exposure=60']\n"
                   "try:\n"
                   f"    runpy.run_path({str(EXAMPLES / 'time_lapse.py')!r}, run_name='__main__')\n"
                   "except SystemExit as end:\n"
                   "    print(end.code, light.command('GetUnitStatus'))\n"
                   "light.close()\n")
    assert child.run(["-c", interrupted]) == "130 0,0,0,0,0,0,0,0\n"


def test_pulse_sequence(child):
    out = run(child, "pulse_sequence.py", "--pulse=1:0:20:80", "--pulse=2:40:20:80",
              "--seconds=0.05")
    assert out == ("UnitsPWM: 0,0,0,0,0,0,0,0\nSignalDelayTime: 0,40,0,0,0,0,0,0\n"
                   "SignalOnTime: 20,20,0,0,0,0,0,0\nSignalOffTime: 80,80,0,0,0,0,0,0\n"
                   "running\nstopped\n")


def test_intensity_ramp(child):
    sent = requests(child, "intensity_ramp.py",
                    ["--channels", "1", "2", "--highest=20", "--pause=0"])
    ramp = [one for one in sent if one.startswith("ip=")]
    assert [one.split(",")[:2] for one in ramp] == [
        ["ip=50", "50"], ["ip=100", "100"], ["ip=200", "200"], ["ip=100", "100"], ["ip=50", "50"]]
    assert sent[-2:] == ["of=1,2,3,4,5,6,7,8", "dc"]


def test_log_to_logging(child):
    out = run(child, "log_to_logging.py", "--file", "light.log")
    log = (child.directory / "light.log").read_text()
    assert out == f"{len(log.splitlines())} lines in light.log\n"
    assert " DEBUG   orvex.traffic: Send [ip=much*] ->\n" in log
    assert re.search(r" ERROR   orvex: .*answered with error", log)


def test_several_lights(child):
    out = run(child, "several_lights.py", "--rounds=5", devices=("Tamar", "Tamar", "Cedar"))
    assert [line.split(":")[0] for line in out.splitlines()[:3]] == [
        "Tamar on /dev/ttyACM0", "Tamar on /dev/ttyACM1", "Cedar on /dev/ttyACM2"]
    assert out.splitlines()[3].startswith("15 readings in ")


def test_temperature_plot_makes_the_picture_that_is_kept(child, build_dir):
    """python3 temperature_plot.py --hurry --save ../../docs/temperature_ramp.svg makes it anew."""
    picture = child.directory / "ramp.svg"
    program = [sys.executable, str(EXAMPLES / "temperature_plot.py"), "--hurry", "--save", picture]
    simulator = build_dir / "tools" / "orvex-sim" / "orvex-sim"
    out = subprocess.check_output(
        [simulator, "run", "--scenario", EXAMPLES / "warming_tamar.json", "--", *program],
        text=True, env=child.environment, timeout=LONG_ENOUGH)
    assert out == "61 readings, 29 to 61 °C\n"
    assert picture.read_text() == (ROOT / "docs" / "temperature_ramp.svg").read_text()


def test_types(mypy):
    examples = sorted(EXAMPLES.glob("*.py"))
    assert len(examples) == 7
    checked = len(examples) + len(list((ROOT / "python" / "orvex").glob("*.py"))) + 1
    assert mypy("package") == (0, f"Success: no issues found in {checked} source files\n")


def test_types_reach_users(mypy):
    code, out = mypy("user")
    assert code == 1 and 'expression has type "str", variable has type "float"' in out
