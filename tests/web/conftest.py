"""The web edition in headless Chromium. After `cmake --build --preset web` (and the native
`kalvero4-cli`, whose save file the export is compared with):

    /usr/bin/python3 -m pytest tests/web

A local server serves build/web/site (KALVERO_SITE: another site; KALVERO_CLI: another driver),
each test has a fresh browser profile, and any page or console error fails it. The run fails,
and never skips, when the browser cannot start or when no test is selected."""

import os
import sys
from pathlib import Path

import pytest

TESTS = Path(__file__).resolve().parents[1]
sys.path[:0] = [str(TESTS), str(TESTS / "e2e")]  # the save-file layout, the board reading
from webpage import Page, launch, serve  # noqa: E402

SITE = Path(os.environ.get("KALVERO_SITE", TESTS.parent / "build" / "web" / "site"))


@pytest.fixture(scope="session")
def site():
    if not (SITE / "kalvero4.wasm").is_file():
        pytest.fail(f"no built site in {SITE}: run cmake --build --preset web", pytrace=False)
    url, server = serve(SITE)
    yield url
    server.shutdown()


@pytest.fixture
def page(site, tmp_path):
    downloads = tmp_path / "downloads"
    downloads.mkdir()
    try:
        driver = launch(tmp_path / "profile", downloads)
    except Exception as error:  # noqa: BLE001 - whatever stops the browser, nothing can be judged
        pytest.fail(f"the browser could not start: {error}", pytrace=False)
    opened = Page(driver, site, downloads)
    try:
        yield opened
        errors = opened.all_errors()
    finally:
        driver.quit()
    assert errors == [], "the page reported errors"


def pytest_sessionfinish(session, exitstatus):
    if exitstatus == pytest.ExitCode.NO_TESTS_COLLECTED:  # a run that tested nothing fails
        session.exitstatus = pytest.ExitCode.TESTS_FAILED
