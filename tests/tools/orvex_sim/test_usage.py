import pytest


def test_the_version_is_the_projects(sim):
    result = sim.run("--version")
    assert (result.stdout, result.returncode) == ("orvex-sim 1.1.0.1\n", 0)


@pytest.mark.parametrize("command", [[], ["run"], ["serve"], ["replay"], ["models"]])
def test_every_help_has_examples(sim, command):
    result = sim.run(*command, "--help")
    assert result.returncode == 0
    assert "\nExamples:\n  orvex-sim " in result.stdout
    assert result.stdout.endswith("\n")


@pytest.mark.parametrize("arguments, message", [
    ([], "a sub-command is missing; known: run, serve, replay or models\nSee 'orvex-sim --help'."),
    (["serv"], 'there is no sub-command "serv"; did you mean serve?\nSee \'orvex-sim --help\'.'),
    (["--fast"], 'there is no option "--fast"\nSee \'orvex-sim --help\'.'),
    (["run", "--device", "Tamar"], "COMMAND is required\nSee 'orvex-sim run --help'."),
    (["run", "--", "true"], "no devices: give --device or --scenario"),
    (["serve"], "no devices: give --device or --scenario"),
    (["serve", "--fast"],
     "The following argument was not expected: --fast\nSee 'orvex-sim serve --help'."),
    (["replay"], "TRACE is required\nSee 'orvex-sim replay --help'."),
])
def test_bad_usage_is_told(sim, arguments, message):
    result = sim.run(*arguments)
    assert (result.stdout, result.stderr, result.returncode) == ("", f"orvex-sim: {message}\n", 2)


@pytest.mark.parametrize("option, place, problem", [
    ("Tamer", 1, 'there is no model "Tamer"; did you mean Tamar?'),
    ("", 1, 'there is no model ""; known: Alder, Birch, Cedar, Hazel, Larch, Maple, Rowan, '
            "Spruce, Tamar or Willow"),
    ("Tamar,", 7, '"" is not of the form MEMBER=VALUE'),
    ("Tamar,serial", 7, '"serial" is not of the form MEMBER=VALUE'),
    ("Tamar,wavelength=3", 7, 'there is no member "wavelength"; did you mean wavelengths?'),
    ("Tamar,wavelengths=365/abc", 23, '"abc" is no number from 1 to 2000'),
    ("Tamar,wavelengths=365//470", 23, '"" is no number from 1 to 2000'),
    ("Tamar,positions=17", 17, '"17" is no number from 1 to 16'),
    ("Tamar,positions=1,wavelengths=365/470", 17, "there are more wavelengths than that"),
    ("Tamar,on=9", 10, '"9" is no number from 1 to 8'),
    ("Tamar,on=1/3", 12, "position 3 has no LED"),
    ("Tamar,hours=3", 7, 'a Tamar has no "hours"'),
    ("Cedar,wavelengths=365", 7, 'a Cedar has no "wavelengths"'),
    ("Tamar,serial=a,serial=b", 16, '"serial" is given twice'),
    ("Tamar,intensities=1001", 19, '"1001" is no number from 0 to 1000'),
])
def test_a_malformed_device_is_told_with_its_place(sim, tmp_path, option, place, problem):
    mark = tmp_path / "started"
    result = sim.run("run", "--device", option, "--", "touch", mark)
    assert result.stderr == f'orvex-sim: --device "{option}", character {place}: {problem}\n'
    assert result.returncode == 2
    assert not mark.exists()
