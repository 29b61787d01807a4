// The queue of messages: the page's events become the game's messages one at a time, in order,
// as a window's message queue delivers them, and the repaints are scheduled as Windows
// schedules them. A call into the game that may wait for the player runs here and holds the
// queue until it returns.
(function (Page) {
  'use strict';
  var state = Page.state;

  // Events become the game's messages one at a time, in order, as a window's message queue
  // delivers them; a message that waits for the player (a dialog, a box) holds the rest back.
  function post(task) {
    if (state.ended) return;
    state.queue.push(task);
    pump();
  }

  function pump() {
    if (state.running) return;
    state.running = true;
    (async function () {
      while (state.queue.length > 0 && !state.ended) {
        var task = state.queue.shift();
        try {
          await task();
        } catch (e) {
          fail(e);
        }
        if (state.endRequested) break;
      }
      state.running = false;
      if (state.endRequested) Page.finishProgram();
    })();
  }

  // A call of the game that may wait for the player.
  function call(name, args) {
    return Module.ccall(name, 'number', (args || []).map(function () { return 'number'; }),
                        args || [], { async: true });
  }

  function message(name, args) { post(function () { return call(name, args); }); }

  function fail(e) {
    // The program's own exit (the engine's allocation failure) ends it as any other end does.
    if (e && e.name === 'ExitStatus') return Page.endProgram();
    console.error(e);
    state.ended = true;
    Page.showEnded('Kalvero 4 s\'est arrêté sur une erreur.');
  }

  function nextFrame() { return new Promise(function (r) { requestAnimationFrame(function () { r(); }); }); }

  // Requests before a repaint are met by it, as a window's pending repaint is by the repaint
  // under way; a request made during it waits for the next frame.
  function requestRepaint() {
    if (state.repaintWanted || state.ended) return;
    state.repaintWanted = true;
    requestAnimationFrame(function () {
      if (!state.repaintWanted) return;
      // Under a dialog or a box the window still repaints, as Windows repaints it during their
      // own message loop; such a repaint never waits for the player.
      if (state.modal > 0) return repaintNow();
      post(repaint);
    });
  }

  function repaintBegins() { state.repaintWanted = false; }

  function repaintNow() {
    if (Module._WebPaint()) Module._WebFinishRepaint();
  }

  // The frame reaches the screen first; when the computer is to think, under the wait cursor.
  async function repaint() {
    if (!state.repaintWanted) return;
    if (!Module._WebPaint()) return;
    var thinking = Module._WebReplyPending() !== 0;
    if (thinking) {
      document.body.classList.add('waiting');
      await nextFrame();
      await nextFrame();
    }
    try {
      await call('WebFinishRepaint');
    } finally {
      document.body.classList.remove('waiting');
    }
  }

  Object.assign(Page, {
    post: post, call: call, message: message, fail: fail, requestRepaint: requestRepaint,
    repaintBegins: repaintBegins,
  });
})(Page);
