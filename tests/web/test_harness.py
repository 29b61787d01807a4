"""The suite sees what goes wrong in a page, in each engine alike: without this, a browser in
which the tests' hooks do not run would pass every test whatever the page did."""

import pytest
from webpage import wait

FAULTS = {  # a fault made in the running page -> what the suite must report
    "thrown": ("setTimeout(() => { throw new Error('boom') })", "boom"),
    "rejected": ("Promise.reject(new Error('refused'))", "refused"),
    "console": ("console.error('written', 7)", "written 7"),
    "picture": ("document.body.append(Object.assign(new Image(), {src: 'pictures/none.bmp'}))",
                "none.bmp"),
}


def forget(page, server, failed):
    """Reported and checked: the page fixture's own check at the end must then pass."""
    page.js("window.__errors.length = 0")
    page.errors.clear()
    if page.engine == "chromium":
        page.driver.get_log("browser")  # read once, Chromium's console log is emptied
    del server.failed[failed:]


@pytest.mark.parametrize("fault", FAULTS)
def test_page_faults_are_reported(page, server, fault):
    page.open()
    failed, (script, expected) = len(server.failed), FAULTS[fault]
    page.js(script)
    wait("the fault reported", lambda: [e for e in page.all_errors() if expected in e])
    if fault == "picture":
        wait("the server's count", lambda: server.failed[failed:] == ["404 GET /pictures/none.bmp"])
    forget(page, server, failed)


def test_download_and_missing_file(page, server):
    """A download is read as the page offered it and as saved; a request the site cannot
    answer is counted by the server even when the page ignores it."""
    page.open()
    failed = len(server.failed)
    page.js("""const link = document.createElement('a');
        link.href = URL.createObjectURL(new Blob([new Uint8Array([0, 255, 13, 10, 128])],
                                                 {type: 'application/octet-stream'}));
        link.download = 'essai';
        link.click();
        fetch('absent.bin').catch(() => {});""")
    assert page.download("essai") == bytes([0, 255, 13, 10, 128])
    wait("the missing file counted", lambda: server.failed[failed:] == ["404 GET /absent.bin"])
    forget(page, server, failed)


# The pointer a tap gives the page: WebKitGTK's driver turns a W3C touch pointer into a mouse,
# so there a tap tests the mouse's path; Chromium's gives the page a touch.
TAP_POINTER = {"chromium": "touch", "webkit": "mouse"}


def test_tap_pointer(page):
    page.open()
    page.js("""window.__pointers = [];
        document.getElementById('screen').addEventListener('pointerdown',
            e => __pointers.push(e.pointerType));""")
    page.enter()
    page.touch_board(155, 100)
    assert wait("the tap", lambda: page.js("return __pointers")) == [TAP_POINTER[page.engine]]
