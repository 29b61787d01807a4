"""One game per browser: a second tab of the site offers to play there instead, and the game
moves with every counter and the name, back and forth."""

from desktop import cells
import pytest
from storage_helpers import (CHARACTERS, hide, name_shown, play_session, server,  # noqa: F401 - server: this module's site
                             wait_stored)
from webpage import wait

ENDED = """const e = document.getElementById('ended');
return e.hidden ? null : document.getElementById('ended-text').textContent;"""


def take_over(page):
    """This tab asks to play; the other stores and ends; this one then starts from the file."""
    text = wait("the question", lambda: page.js(ENDED))
    assert text == "Kalvero 4 est déjà ouvert dans un autre onglet." and page.boxes() == []
    page.driver.find_element("xpath", "//div[@id='ended-choices']/button[.='Jouer ici']").click()


@pytest.mark.parametrize("fault", ["none", "nolocks"], ids=["locks", "channel-only"])
def test_second_tab_takes_the_game_over(page, fault):
    """Two tabs (window handles) of one browser: the second takes the game over from the first,
    then the first takes it back, and every game counted in either is in the stored file;
    with the Web Locks API, and with the BroadcastChannel alone where the browser lacks it."""
    page.url = page.url.replace("index.html", f"faulty.html?fault={fault}")
    driver = page.driver
    driver.get(page.url)
    play_session(page, "Zoé")  # counted: the game begun at the start, the one given up
    first = driver.current_window_handle
    driver.switch_to.new_window("window")  # WebKitGTK's driver hangs on a second tab's keys
    second = driver.current_window_handle
    driver.get(page.url)
    take_over(page)
    assert name_shown(page) == "Zoé", "the second tab started before the first had stored"
    page.enter(CHARACTERS)
    play_session_again(page)
    driver.switch_to.window(first)
    assert wait("the first tab's end", lambda: page.js(ENDED)) == \
        "Kalvero 4 continue dans un autre onglet."
    page.errors += page.js("return window.__errors")  # every served page has the hooks
    driver.refresh()  # its restart button: the game comes back here
    take_over(page)
    assert name_shown(page) == "Zoé"
    page.enter(CHARACTERS)
    hide(page)
    # 2 games of the first session, 1 begun and 1 given up in the second, 1 begun now
    wait_stored(page, ("Zoé", 5, 2))
    driver.switch_to.window(second)
    assert wait("the second tab's end", lambda: page.js(ENDED)) == \
        "Kalvero 4 continue dans un autre onglet."
    page.errors += page.js("return window.__errors")  # every served page has the hooks
    driver.switch_to.window(first)


def play_session_again(page):
    """A move and its reply, then the game given up, in a game already under way."""
    page.keys("4")
    page.wait_picture("the move and its reply", lambda b: len(cells(b, 7)) == 2)
    page.menu("Menu", "Recommencer")
    page.answer("Attention", "Oui")
