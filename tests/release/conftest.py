def pytest_addoption(parser):
    parser.addoption("--build", help="not used: a release is made from a tag")
