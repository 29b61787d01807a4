// The frame in words, for a player who cannot see the board: the game's core says what each
// frame shows that is new (kv_speak), and this room puts it in the page's live region, which a
// screen reader reads aloud, and the whole board into the window's own description.
(function (Page) {
  'use strict';
  var element = Page.element;

  var pending = 0;

  // The same words twice in a row are news all the same (the same column played again): the
  // region is emptied first and filled a moment later, so that a reader notices the change.
  function speak(said, board) {
    element('board-text').textContent = board;
    if (!said) return;
    var region = element('speech');
    var turn = ++pending;
    if (region.textContent !== said) {
      region.textContent = said;
      return;
    }
    region.textContent = '';
    setTimeout(function () { if (turn === pending) region.textContent = said; }, 100);
  }

  Object.assign(Page, {
    speak: speak,
  });
})(Page);
