"""One Xvfb display and Wine prefix per run, one start of the program per test. Environment:
KALVERO_EXE, KALVERO_PROBE (default: build/windows64), KALVERO_WINE (wine), WINESERVER
(wineserver), KALVERO_SHOTS (a folder for each test's screens before every key and click)."""

import os
import shlex
import signal
import sys
from pathlib import Path

import pytest

sys.path.insert(0, str(Path(__file__).resolve().parents[1]))  # tests/: the save-file layout
from desktop import Desktop, EnvironmentFailure, Game  # noqa: E402

BUILD = Path(__file__).resolve().parents[2] / "build" / "windows64"


@pytest.fixture(scope="session")
def desktop(tmp_path_factory):
    # Stopped from outside (a time limit), the run still ends Wine and Xvfb on its way out.
    signal.signal(signal.SIGTERM, lambda *_: pytest.exit("stopped by SIGTERM", 143))
    desk = Desktop(tmp_path_factory.mktemp("wine"),
                   shlex.split(os.environ.get("KALVERO_WINE", "wine")),
                   Path(os.environ.get("KALVERO_EXE", BUILD / "kalvero4.exe")),
                   Path(os.environ.get("KALVERO_PROBE", BUILD / "kalvero4-probe.exe")))
    try:
        desk.start()
    except EnvironmentFailure as error:
        desk.close()
        pytest.fail(f"the test environment could not start: {error}", pytrace=False)
    yield desk
    desk.close()


@pytest.fixture
def game(desktop, request, tmp_path):
    shots = os.environ.get("KALVERO_SHOTS")
    started = Game(desktop, tmp_path, Path(shots, request.node.name) if shots else None)
    yield started
    started.end()


def pytest_sessionfinish(session, exitstatus):
    if exitstatus == pytest.ExitCode.NO_TESTS_COLLECTED:  # a run that tested nothing fails
        session.exitstatus = pytest.ExitCode.TESTS_FAILED
