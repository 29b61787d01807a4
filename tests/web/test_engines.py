"""What an engine draws its own way unless the page says how: checked in every engine."""

from webpage import wait

# Visible controls whose text colour is translucent: WebKit's default for buttons is 80 % black,
# grey on the dialogs' colours, where the classic look draws black.
TRANSLUCENT_TEXT = """return [...document.querySelectorAll(
    'button, input, select, .static, .menu-title, .message-text')]
  .filter(e => e.getClientRects().length && !/^rgb\\(/.test(getComputedStyle(e).color))
  .map(e => (e.dataset.control || e.id || e.textContent.trim()) + ': ' +
             getComputedStyle(e).color);"""
STATS, ENDED = "Statistiques vitales pour le Kalvero 4", None
STEPS = [  # what the player does, then the box shown (ENDED: the page after "Quitter")
    (lambda p: p.open(), "Acceuil"),
    (lambda p: p.enter("Acceuil"), "Personnages"),
    (lambda p: (p.enter("Personnages"), p.menu("Menu", "Stats")), STATS),
    (lambda p: (p.enter(STATS), p.menu("Menu", "Discretos")), "Attention"),
    (lambda p: (p.answer("Attention", "OK"), p.menu("Menu", "Quitter")), ENDED),
]


def test_text_colours_are_the_page_own(page):
    """Each dialog, a message box and the ended page: no text in an engine's default shade."""
    found = {}
    for step, shown in STEPS:
        step(page)
        if shown is ENDED:
            wait("the ended page", lambda: page.js("return !document.getElementById('ended')"
                                                   ".hidden"))
        else:
            page.box(shown)
        found[shown or "ended"] = page.js(TRANSLUCENT_TEXT)
    assert {k: v for k, v in found.items() if v} == {}
