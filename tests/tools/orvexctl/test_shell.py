import pexpect

from fake_light import TAMAR


def start(terminal, tmp_path):
    child = terminal("shell", "-d", "1", env={"XDG_STATE_HOME": str(tmp_path)})
    child.expect_exact("Tamar on /dev/ttyACM0; help lists the verbs, quit ends.")
    child.expect_exact("Tamar> ")
    return child


def end(child):
    child.sendline("quit")
    child.expect(pexpect.EOF)
    child.wait()
    assert child.exitstatus == 0


def test_verbs_on_one_opened_light(terminal, tmp_path):
    child = start(terminal, tmp_path)
    child.sendline("set 1=45% 2=on")
    child.expect_exact("Channel 1 (UV, 365 nm): 45.0 %")
    child.expect_exact("Channel 2 (UV-A, 385 nm): on")
    child.sendline("exec GetUnitStatus")
    child.expect_exact("0,1,0,0,0,0,0,0")
    child.sendline("off")
    child.expect_exact("Channel 2 (UV-A, 385 nm): off")
    child.sendline("info")
    child.expect_exact("Serial        TA-0815")
    end(child)


def test_verbs_agree_with_commands(terminal, tmp_path):
    child = start(terminal, tmp_path)
    child.sendline("exec TurnLedOn 3")
    child.expect_exact("Tamar> ")
    child.sendline("off 3")
    child.expect_exact("Channel 3 (VIOLET, 405 nm): off")
    child.sendline("exec GetUnitStatus")
    child.expect_exact("0,0,0,0,0,0,0,0")
    end(child)


def test_completes_verbs_and_command_names(terminal, tmp_path):
    child = start(terminal, tmp_path)
    child.send("ex\tGetSoftw\t")
    child.expect_exact("exec GetSoftwareVersion")
    child.send("\x15")
    child.send("exec GetUnitSer\t\n")
    child.expect_exact("TA-0815")
    end(child)


def test_history_is_kept(terminal, tmp_path):
    child = start(terminal, tmp_path)
    child.sendline("exec GetUnitSerialNumber")
    child.expect_exact("TA-0815")
    end(child)
    assert (tmp_path / "orvexctl" / "history").read_text() == "exec GetUnitSerialNumber\nquit\n"
    child = start(terminal, tmp_path)
    child.send("\x1b[A\x1b[A\n")
    child.expect_exact("TA-0815")
    end(child)


def test_mistakes_do_not_end_the_session(terminal, tmp_path):
    child = start(terminal, tmp_path)
    child.sendline("exce GetTemperature")
    child.expect_exact('orvexctl: there is no verb "exce"; did you mean exec')
    child.sendline("set 9=on")
    child.expect_exact("channel 9 is not there")
    child.sendline("help")
    child.expect_exact("shutter")
    child.sendline("set --help")
    child.expect_exact("CHANNEL=SETTING")
    end(child)


def test_ctrl_c_drops_the_line_and_ctrl_d_ends(terminal, tmp_path):
    child = start(terminal, tmp_path)
    child.send("exec Get")
    child.sendintr()
    child.expect_exact("Tamar> ")
    child.sendeof()
    child.expect(pexpect.EOF)
    child.wait()
    assert child.exitstatus == 0


def test_piped_input(orvexctl):
    result = orvexctl("shell", "-d", "2", input="# lamp\nexec GetTemperature\n\nlamp on\nquit\n")
    assert (result.code, result.out, result.err) == (0, "38\nLamp on.\n", "")


def test_piped_input_ends_at_the_first_failure(orvexctl_alone, fake_light):
    light = fake_light(TAMAR)
    result = orvexctl_alone("shell", "--model", "Tamar", "--port", light.port,
                            input="on 1\nset 9=on\non 3\n")
    assert result.code == 2
    assert result.out == "Channel 1 (UV, 365 nm): on\n"
    assert result.err == (
        'orvexctl: standard input, line 2: "9=on", character 1: channel 9 is not there; '
        f"the Tamar on {light.port} has 1 or 3\n")
    assert "on=1,3" not in light.requests
    assert light.requests[-1] == "dc"
