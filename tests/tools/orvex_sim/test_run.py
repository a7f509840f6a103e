import os
import pathlib
import pty
import signal
import time

import pytest

from port import wait_for


def test_a_program_that_uses_the_library_finds_the_device(sim, example):
    result = sim.run("run", "--device", "Tamar,wavelengths=365/470,names=UV/BLUE", "--",
                     example("first_light"))
    assert (result.stdout, result.stderr, result.returncode) == (
        "Tamar: 2 channels, first: UV\n", "", 0)


def test_several_devices_are_found(sim, example):
    result = sim.run("run", "--device", "Tamar", "-d", "Cedar,hours=1250", "--",
                     example("light_tour"))
    assert result.returncode == 0
    assert "/dev/ttyACM0" in result.stdout
    assert "/dev/ttyACM1" in result.stdout


def test_a_model_that_no_scan_finds_is_told_of_and_there(sim):
    result = sim.run("run", "--device", "Willow", "--", "test", "-e", "/dev/ttyACM0")
    assert result.returncode == 0
    assert result.stderr == (
        "orvex-sim: the library knows no USB identifier of Willow: a scan does not find it; "
        "open it at /dev/ttyACM0\n")


def test_the_devices_answer_on_their_ports(sim, script):
    client = script("""
import os, select, tty
port = os.open("/dev/ttyACM0", os.O_RDWR | os.O_NOCTTY)
tty.setraw(port)
for request in (b"sn?\\r", b"lw?\\r", b"on?\\r", b"ip?\\r", b"gt?\\r", b"sv?\\r", b"ni?\\r"):
    os.write(port, request)
    reply = b""
    while not reply.endswith(b"\\r"):
        reply += os.read(port, 1)
    print(reply.decode().rstrip())
""")
    device = "Tamar,positions=3,wavelengths=365/470,on=2,intensities=100/200,temperatures=20/21," \
             "serial=TA-9,firmware=2.0,minimum=20"
    result = sim.run("run", "--device", device, "--", *client)
    assert result.stderr == ""
    assert result.stdout.split() == [
        "TA-9", "365,470,999", "0,1,0", "100,200,500", "20,21,30", "2.0", "20,20,20"]


@pytest.mark.parametrize("status", [0, 1, 5, 255])
def test_the_exit_status_is_passed_on(sim, status):
    assert sim.run("run", "-d", "Tamar", "--", "sh", "-c", f"exit {status}").returncode == status


def test_a_death_by_signal_is_passed_on(sim):
    assert sim.run("run", "-d", "Tamar", "--", "sh", "-c", "kill -SEGV $$").returncode == 139


def test_arguments_are_passed_on_as_they_are(sim):
    result = sim.run("run", "-d", "Tamar", "--", "printf", "%s\\n", "serve", "--device", "--", "a b")
    assert result.stdout == "serve\n--device\n--\na b\n"


def test_standard_input_is_passed_on(sim):
    assert sim.run("run", "-d", "Tamar", "--", "cat", input="light\n").stdout == "light\n"


def test_the_environment_is_kept(sim):
    environment = {**sim.environment, "LD_PRELOAD": "libm.so.6"}
    result = sim.run("run", "-d", "Tamar", "--", "sh", "-c", "echo $LD_PRELOAD; echo $TMPDIR",
                     env=environment)
    assert result.stdout == f"libumockdev-preload.so.0:libm.so.6\n{sim.temporary}\n"


def test_a_program_that_is_not_there(sim):
    result = sim.run("run", "-d", "Tamar", "--", "/nonexistent/program")
    assert (result.stderr, result.returncode) == (
        "orvex-sim: cannot run /nonexistent/program: No such file or directory\n", 127)


def test_a_program_that_cannot_be_executed(sim, tmp_path):
    (tmp_path / "text").write_text("")
    result = sim.run("run", "-d", "Tamar", "--", tmp_path / "text")
    assert (result.stderr, result.returncode) == (
        f"orvex-sim: cannot run {tmp_path}/text: Permission denied\n", 126)


WAITING = """
import signal, sys
def tell(number, frame):
    print(signal.Signals(number).name, flush=True)
    if number != signal.SIGUSR1:
        sys.exit(40)
for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP, signal.SIGQUIT, signal.SIGUSR1):
    signal.signal(number, tell)
print("ready", flush=True)
while True:
    signal.pause()
"""


@pytest.mark.parametrize("number", [signal.SIGINT, signal.SIGTERM, signal.SIGHUP, signal.SIGQUIT])
def test_signals_are_passed_on(sim, script, number):
    process = sim.start("run", "-d", "Tamar", "--", *script(WAITING))
    assert process.stdout.readline() == "ready\n"
    process.send_signal(signal.SIGUSR1)
    assert process.stdout.readline() == "SIGUSR1\n"
    process.send_signal(number)
    assert process.stdout.readline() == f"{number.name}\n"
    assert process.wait(30) == 40
    assert sim.leftovers() == []


def test_a_program_ended_by_a_signal_that_was_passed_on(sim):
    process = sim.start("run", "-d", "Tamar", "--", "sh", "-c", "echo ready; exec sleep 600")
    assert process.stdout.readline() == "ready\n"
    process.terminate()
    assert process.wait(30) == 143
    assert sim.leftovers() == []


def test_an_interrupt_key_reaches_the_program_once(sim, script):
    client = script("""
import signal, sys, time
count = []
signal.signal(signal.SIGINT, lambda *_: count.append(1))
print("ready", flush=True)
while not count:
    signal.pause()
time.sleep(0.5)
print("interrupts:", len(count), flush=True)
""")
    pid, terminal = pty.fork()
    if pid == 0:
        os.execve(sim.program, [str(sim.program), "run", "-d", "Tamar", "--", *client],
                  sim.environment)
    output = b""
    while b"ready" not in output:
        output += os.read(terminal, 100)
    os.write(terminal, b"\x03")
    while b"interrupts: " not in output:
        output += os.read(terminal, 100)
    assert b"interrupts: 1" in output
    assert os.waitstatus_to_exitcode(os.waitpid(pid, 0)[1]) == 0
    os.close(terminal)


def is_alive(pid):
    try:
        state = pathlib.Path(f"/proc/{pid}/stat").read_text().rsplit(")", 1)[1].split()[0]
    except FileNotFoundError:
        return False
    return state != "Z"


def test_nothing_stays_when_it_is_killed(sim):
    process = sim.start("run", "-d", "Tamar", "--", "sh", "-c", "echo $$; exec sleep 600")
    child = int(process.stdout.readline())
    assert sim.leftovers() != []
    process.kill()
    process.wait(30)
    wait_for(lambda: not is_alive(child))
    wait_for(lambda: sim.leftovers() == [])


def test_nothing_stays_when_its_whole_process_group_is_killed(sim):
    process = sim.start("run", "-d", "Tamar", "--", "sh", "-c", "echo $$; exec sleep 600",
                        start_new_session=True)
    child = int(process.stdout.readline())
    os.killpg(process.pid, signal.SIGKILL)
    process.wait(30)
    wait_for(lambda: not is_alive(child))
    wait_for(lambda: sim.leftovers() == [])


def test_two_runs_do_not_disturb_each_other(sim):
    look = "echo ready; read line; ls /sys/class/tty | tr '\\n' ' '; echo"
    first = sim.start("run", "-d", "Tamar", "--", "sh", "-c", look, stdin=-1)
    second = sim.start("run", "-d", "Tamar", "-d", "Cedar", "--", "sh", "-c", look, stdin=-1)
    assert (first.stdout.readline(), second.stdout.readline()) == ("ready\n", "ready\n")
    assert first.communicate("\n", timeout=30)[0] == "ttyACM0 \n"
    assert second.communicate("\n", timeout=30)[0] == "ttyACM0 ttyACM1 \n"


def test_temporary_directory_that_is_not_there(sim):
    result = sim.run("run", "-d", "Tamar", "--", "echo", "started",
                     env={**sim.environment, "TMPDIR": "/nonexistent"})
    assert (result.stdout, result.stderr, result.returncode) == (
        "", "orvex-sim: TMPDIR does not name a directory\n", 3)


def test_it_ends_with_the_program_although_grandchildren_go_on(sim):
    begun = time.monotonic()
    result = sim.run("run", "-d", "Tamar", "--", "sh", "-c",
                     "sleep 40 >/dev/null 2>&1 & echo done")
    assert result.stdout == "done\n"
    assert time.monotonic() - begun < 30


@pytest.mark.parametrize("ignored", [False, True])
def test_a_broken_pipe_is_for_the_program_what_it_is_without_us(sim, ignored):
    def before():
        signal.signal(signal.SIGPIPE, signal.SIG_IGN if ignored else signal.SIG_DFL)

    result = sim.run("run", "-d", "Tamar", "--", "grep", "SigIgn", "/proc/self/status",
                     preexec_fn=before, restore_signals=False)
    mask = int(result.stdout.split()[1], 16)
    assert bool(mask & 1 << signal.SIGPIPE - 1) == ignored
