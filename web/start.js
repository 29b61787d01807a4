// The start and the end of the program: the rooms set up, the pictures and the stored save
// file read, then the game started; at its end the file stored and the ended page shown.
(function (Page) {
  'use strict';
  var state = Page.state;
  var element = Page.element;

  // The exit code is always 0 but for the engine's allocation failure, whose message is already
  // in the console: the page ends the same way for both.
  function endProgram() {
    state.endRequested = true;
  }

  async function finishProgram() {
    if (state.ended) return;
    state.ended = true;
    await Page.storeFiles();
    showEnded('Kalvero 4 est terminé.');
  }

  function showEnded(text) {
    document.body.classList.remove('waiting');
    element('ended-text').textContent = text;
    element('ended').hidden = false;
    element('window').classList.add('closed');
  }

  async function start() {
    Page.preparePainting(element('screen'));
    Page.buildMenu();
    Page.bindInput();
    element('import-file').addEventListener('change', function (e) {
      if (e.target.files.length > 0) Page.importSaveFile(e.target.files[0]);
    });
    element('restart').addEventListener('click', function () { location.reload(); });
    document.addEventListener('visibilitychange', function () {
      if (document.visibilityState === 'hidden') Page.storeNow();
    });
    window.addEventListener('pagehide', Page.storeNow);
    await Promise.all([Page.loadPictures().then(Page.prepareMaskedSprites), Page.readStorage()]);
    state.started = true;
    Page.post(function () { return Page.call('WebStart'); });
  }

  Object.assign(Page, {
    endProgram: endProgram, finishProgram: finishProgram, showEnded: showEnded, start: start,
  });
})(Page);

Module.onRuntimeInitialized = function () { Page.start(); };
// The engine's allocation failure writes its message to the console and ends the program.
Module.onExit = function () { Page.endProgram(); };
Module.onAbort = function (what) { Page.fail(what); };
