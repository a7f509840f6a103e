import os
import pty
import signal
import termios
import tty

import pytest

from port import Port, wait_for


def test_a_device_answers_behind_its_link(sim, tmp_path, open_port):
    link = tmp_path / "ttyLight"
    process = sim.serve("--device", "Willow,serial=WI-3", "--link", link)
    assert process.announced == [f"Willow at {link}"]
    port = open_port(link)
    assert port.ask("sn?\r") == "WI-3\r"
    assert port.ask("xx\r") == "e\r"
    assert port.ask("on=1\r") == "\r"
    assert port.ask("on?\r") == "1,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0\r"


def test_clients_come_and_go(sim, tmp_path, open_port):
    link = tmp_path / "ttyLight"
    sim.serve("--device", "Tamar", "--link", link)
    first = open_port(link)
    assert first.ask("vo=70\r") == "\r"
    first.close()
    assert open_port(link).ask("vo?\r") == "70\r"


def test_devices_take_links_in_order(sim, tmp_path, open_port):
    links = [tmp_path / "ttyA", tmp_path / "ttyB"]
    process = sim.serve("-d", "Tamar,serial=A", "--link", links[0],
                        "-d", "Cedar,serial=B", "--link", links[1])
    assert process.announced == [f"Tamar at {links[0]}", f"Cedar at {links[1]}"]
    assert open_port(links[0]).ask("sn?\r") == "A\r"
    assert open_port(links[1]).ask("GSN\r") == "B\r"


def test_a_device_without_a_link_tells_where_it_is(sim, open_port):
    process = sim.serve("--device", "Tamar,serial=X")
    port = process.announced[0].removeprefix("Tamar at ")
    assert port.startswith(str(sim.temporary))
    assert open_port(port).ask("sn?\r") == "X\r"


@pytest.mark.parametrize("number", [signal.SIGINT, signal.SIGTERM, signal.SIGHUP])
def test_it_ends_on_request_and_removes_the_link(sim, tmp_path, number):
    link = tmp_path / "ttyLight"
    process = sim.serve("--device", "Tamar", "--link", link)
    process.send_signal(number)
    assert process.wait(30) == 0
    assert not os.path.lexists(link)
    assert sim.leftovers() == []


def test_a_link_left_behind_is_replaced(sim, tmp_path, open_port):
    link = tmp_path / "ttyLight"
    killed = sim.serve("--device", "Tamar", "--link", link)
    killed.kill()
    killed.wait(30)
    wait_for(lambda: sim.leftovers() == [])
    assert os.path.lexists(link)
    sim.serve("--device", "Tamar,serial=NEW", "--link", link)
    assert open_port(link).ask("sn?\r") == "NEW\r"


def refusal(link):
    return (f"orvex-sim: --link {link}: there is something already that orvex-sim has not left "
            "behind; it stays as it is\n")


def test_a_link_in_use_is_not_taken(sim, tmp_path, open_port):
    link = tmp_path / "ttyLight"
    sim.serve("--device", "Tamar,serial=OLD", "--link", link)
    result = sim.run("serve", "--device", "Tamar", "--link", link)
    assert (result.stdout, result.stderr, result.returncode) == ("", refusal(link), 2)
    assert open_port(link).ask("sn?\r") == "OLD\r"


def test_a_foreign_file_is_not_overwritten(sim, tmp_path):
    path = tmp_path / "ttyLight"
    path.write_text("mine")
    result = sim.run("serve", "--device", "Tamar", "--link", path)
    assert (result.stderr, result.returncode) == (refusal(path), 2)
    assert path.read_text() == "mine"


def test_a_foreign_link_is_not_replaced_though_it_leads_nowhere(sim, tmp_path):
    path = tmp_path / "ttyLight"
    path.symlink_to("/nonexistent/target")
    result = sim.run("serve", "--device", "Tamar", "--link", path)
    assert (result.stderr, result.returncode) == (refusal(path), 2)
    assert os.readlink(path) == "/nonexistent/target"


def test_a_link_replaced_by_something_else_meanwhile_stays(sim, tmp_path):
    link = tmp_path / "ttyLight"
    process = sim.serve("--device", "Tamar", "--link", link)
    link.unlink()
    link.write_text("mine")
    process.terminate()
    assert process.wait(30) == 0
    assert link.read_text() == "mine"


def test_a_link_that_cannot_be_made(sim, tmp_path):
    link = tmp_path / "missing" / "ttyLight"
    result = sim.run("serve", "--device", "Tamar", "--link", link)
    assert (result.stdout, result.stderr, result.returncode) == (
        "", f"orvex-sim: --link {link}: cannot be made: No such file or directory\n", 3)


def test_nothing_is_begun_when_one_of_two_links_is_bad(sim, tmp_path):
    good, bad = tmp_path / "ttyA", tmp_path / "ttyB"
    bad.write_text("mine")
    result = sim.run("serve", "-d", "Tamar", "--link", good, "-d", "Cedar", "--link", bad)
    assert (result.stdout, result.stderr, result.returncode) == ("", refusal(bad), 2)
    assert not os.path.lexists(good)


def test_a_link_is_not_given_twice(sim, tmp_path):
    link = tmp_path / "ttyA"
    result = sim.run("serve", "-d", "Tamar", "--link", link, "-d", "Cedar", "--link", link)
    assert (result.stdout, result.stderr, result.returncode) == (
        "", f"orvex-sim: --link {link} is given twice\n", 2)
    assert not os.path.lexists(link)


def test_more_ports_than_devices(sim, tmp_path):
    result = sim.run("serve", "-d", "Tamar", "--link", tmp_path / "ttyA", "--link",
                     tmp_path / "ttyB")
    assert (result.stderr, result.returncode) == (
        f"orvex-sim: {tmp_path}/ttyB: there are more ports than devices\n", 2)
    assert list(tmp_path.iterdir()) == []


def test_a_path_that_the_library_does_not_open_is_told_of(sim, tmp_path):
    link = tmp_path / "light"
    process = sim.serve("--device", "Tamar", "--link", link)
    assert process.stderr.readline() == (
        f'orvex-sim: the library opens only paths with "tty" in them, not {link}\n')


class Line:
    """A terminal line under a lasting name; the test plays the client at its other end."""

    def __init__(self, path):
        self.path = path
        self.client = None
        self.connect()

    def connect(self, raw=False):
        master, self.slave = pty.openpty()
        if raw:
            tty.setraw(self.slave)
        os.set_blocking(master, False)
        self.client = Port(descriptor=master)
        self.path.unlink(missing_ok=True)
        self.path.symlink_to(os.ttyname(self.slave))

    def end(self):
        os.close(self.slave)
        self.client.close()


@pytest.fixture
def line(tmp_path):
    line = Line(tmp_path / "ttyLine")
    yield line
    line.end()


def test_a_device_on_an_existing_line(sim, line):
    process = sim.serve("--device", "Tamar,serial=LINE", "--tty", line.path)
    assert process.announced == [f"Tamar at {line.path}"]
    assert line.client.ask("sn?\r") == "LINE\r"
    assert line.client.ask("vo=33\r") == "\r"


def test_the_line_is_raw_and_gets_its_settings_back(sim, line):
    before = termios.tcgetattr(line.slave)
    process = sim.serve("--device", "Tamar", "--tty", line.path)
    during = termios.tcgetattr(line.slave)
    assert during[tty.LFLAG] & (termios.ECHO | termios.ICANON | termios.ISIG) == 0
    assert during[tty.OFLAG] & termios.OPOST == 0
    process.terminate()
    assert process.wait(30) == 0
    assert termios.tcgetattr(line.slave) == before


def test_the_line_is_opened_again_after_it_has_ended(sim, line):
    sim.serve("--device", "Tamar", "--tty", line.path)
    assert line.client.ask("vo=33\r") == "\r"
    line.end()
    line.connect(raw=True)
    assert line.client.ask("vo?\r") == "33\r"


@pytest.mark.parametrize("path, problem, code", [
    ("/dev/null", "is no terminal", 2),
    ("/nonexistent/tty", "No such file or directory", 3),
])
def test_a_path_that_is_no_line(sim, path, problem, code):
    result = sim.run("serve", "--device", "Tamar", "--tty", path)
    assert (result.stdout, result.stderr, result.returncode) == (
        "", f"orvex-sim: --tty {path}: {problem}\n", code)
