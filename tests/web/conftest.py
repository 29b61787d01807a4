"""The web edition in headless Chromium and in WebKitGTK, the engine of Safari (Debian's
webkit2gtk-driver: MiniBrowser under Xvfb). After `cmake --build --preset web` (and the native
`kalvero4-cli`, whose save file the export is compared with):

    /usr/bin/python3 -m pytest tests/web                    # both engines
    /usr/bin/python3 -m pytest tests/web --engine webkit    # one of them

A local server serves build/web/site (KALVERO_SITE: another site; KALVERO_CLI: another driver)
and puts the tests' hooks at the head of each page (webpage.TEST_HOOKS). Each test that uses
`page` runs once in each engine ([chromium], [webkit]), with a fresh browser profile; any page
error, console error or request the server could not answer fails it. A test that only one
engine can run says so, with the reason, and is then not generated for the other engine (it
is not skipped there):

    @pytest.mark.engines("chromium", reason="mobile emulation is Chromium's DevTools")

(as a module's `pytestmark` it marks all its tests, which a test's own mark overrides); a test
whose browser is its own (no `page`) is then deselected when that engine is not chosen.
`page.engine` tells a test which engine it has. A test that starts a browser of its own (a
device emulated, a second browser) takes `engine`, `display` (the X display WebKitGTK needs)
and `server` as fixtures and calls webpage.launch. The run fails, and never skips, when a
browser or Xvfb cannot start or when no test is selected."""

import os
import sys
from pathlib import Path

import pytest

TESTS = Path(__file__).resolve().parents[1]
sys.path[:0] = [str(TESTS), str(TESTS / "e2e")]  # the save-file layout, the board reading
from webpage import ENGINES, Page, launch, opened, serve, start_display  # noqa: E402

SITE = Path(os.environ.get("KALVERO_SITE", TESTS.parent / "build" / "web" / "site"))


def pytest_addoption(parser):
    parser.addoption("--engine", action="append", choices=ENGINES,
                     help="run the browser tests in this engine only (repeatable; default: all)")


def pytest_configure(config):
    config.addinivalue_line("markers", "engines(*names, reason): the only engines the test "
                            "applies to, and why")


def pytest_generate_tests(metafunc):
    if "engine" not in metafunc.fixturenames:
        return
    chosen = metafunc.config.getoption("engine") or ENGINES
    if marker := metafunc.definition.get_closest_marker("engines"):
        if not marker.kwargs.get("reason"):
            raise pytest.UsageError(f"{metafunc.definition.nodeid}: engines() needs a reason")
        unknown = set(marker.args) - set(ENGINES)
        if unknown or not marker.args:
            raise pytest.UsageError(f"{metafunc.definition.nodeid}: engines{marker.args}")
        chosen = [e for e in chosen if e in marker.args]
    # None: no engine chosen applies; deselected below, where pytest would skip it.
    metafunc.parametrize("engine", chosen or [None], scope="session")


def pytest_collection_modifyitems(config, items):
    """Deselects what no chosen engine runs: a test for one engine, its own browser included."""
    chosen = set(config.getoption("engine") or ENGINES)

    def not_run(item):
        if getattr(item, "callspec", None) and "engine" in item.callspec.params:
            return item.callspec.params["engine"] is None
        marker = item.get_closest_marker("engines")
        return marker is not None and not chosen & set(marker.args)
    unrun = [i for i in items if not_run(i)]
    if unrun:
        config.hook.pytest_deselected(items=unrun)
        items[:] = [i for i in items if i not in unrun]


@pytest.fixture(scope="session")
def server():
    if not (SITE / "kalvero4.wasm").is_file():
        pytest.fail(f"no built site in {SITE}: run cmake --build --preset web", pytrace=False)
    url, server = serve(SITE)
    server.url = url
    yield server
    server.shutdown()


@pytest.fixture(scope="session")
def site(server):
    return server.url


@pytest.fixture(scope="session")
def display(tmp_path_factory):
    """One X display (Xvfb) for the session's WebKitGTK browsers; Chromium runs headless."""
    try:
        xvfb, name = start_display(tmp_path_factory.mktemp("xvfb") / "xvfb.log")
    except Exception as error:  # noqa: BLE001 - without a display nothing can be judged
        pytest.fail(f"Xvfb could not start: {error}", pytrace=False)
    yield name
    xvfb.terminate()
    xvfb.wait(10)


@pytest.fixture
def page(request, engine, server, tmp_path):
    display = request.getfixturevalue("display") if engine == "webkit" else None
    downloads = tmp_path / "downloads"
    downloads.mkdir()
    with opened(lambda: launch(tmp_path / "profile", downloads, engine, display),
                lambda driver: Page(driver, server.url, downloads), server,
                f"the browser ({engine})") as page:
        yield page


def pytest_sessionfinish(session, exitstatus):
    if exitstatus == pytest.ExitCode.NO_TESTS_COLLECTED:  # a run that tested nothing fails
        session.exitstatus = pytest.ExitCode.TESTS_FAILED
