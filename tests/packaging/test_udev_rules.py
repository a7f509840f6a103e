"""The udev rules are read where they are installed, and have no mistakes that udev knows."""
import re
import subprocess

import pytest

RULES = "60-orvex.rules"


@pytest.fixture(scope="session")
def rules(installed):
    return installed.prefix / "lib" / "udev" / "rules.d" / RULES


def knows_verify():
    return subprocess.run(["udevadm", "verify", "--help"], capture_output=True).returncode == 0


def complaints(installed, rules):
    """What udev says of the rules file, and that it has read it."""
    if knows_verify():
        result = installed.run("udevadm", "verify", rules)
        return [] if result.code == 0 else (result.out + result.err).splitlines()
    result = installed.run("udevadm", "test", "/sys/class/mem/null")
    text = result.out + result.err
    assert re.search(rf"Reading rules file: \S*/{RULES}$", text, re.M), text
    return re.findall(rf"^\S*/{RULES}:\d+.*", text, re.M)


@pytest.mark.system
def test_udev_reads_the_rules(installed, rules):
    assert complaints(installed, rules) == []


@pytest.mark.system
def test_a_mistake_would_be_seen(installed, rules):
    right = rules.read_text()
    try:
        rules.write_text(right + 'SUBSYSTEM=="tty", NOSUCHKEY=="1"\n')
        assert complaints(installed, rules) != []
    finally:
        rules.write_text(right)


def test_rules_are_for_the_models_that_a_scan_finds(installed, rules):
    models = installed.output("orvex-sim", "models")
    identities = re.findall(r"\b([0-9a-f]{4}):([0-9a-f]{4})\b", models)
    assert {vendor for vendor, product in identities} == set(
        re.findall(r'idVendor}=="(\w+)"', rules.read_text()))
    for products in re.findall(r'idProduct}=="([^"]+)"', rules.read_text()):
        assert set(products.split("|")) == {product for vendor, product in identities}
