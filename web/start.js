// The start and the end of the program: the rooms set up, the game claimed for this tab, the
// pictures and the stored save file read, then the game started; at its end the file stored
// and the ended page shown. Whatever fails at the start is said there, with the restart button.
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

  // The page over the window: a text, the choices given, and the restart button.
  function showPage(text, choices, restart) {
    document.body.classList.remove('waiting');
    element('ended-text').textContent = text;
    var row = element('ended-choices');
    row.replaceChildren.apply(row, choices);
    element('restart').hidden = !restart;
    element('ended').hidden = false;
    element('window').classList.add('closed');
    var first = choices[0] || (restart ? element('restart') : null);
    if (first) first.focus();
  }

  function hidePage() {
    element('ended').hidden = true;
    element('window').classList.remove('closed');
  }

  function showEnded(text) { showPage(text, [], true); }

  function showWaiting(text) { showPage(text, [], false); }

  // Resolves to the value of the choice the player makes; the window comes back then.
  function showChoice(text, choices) {
    return new Promise(function (resolve) {
      showPage(text, choices.map(function (choice) {
        var button = document.createElement('button');
        button.textContent = choice[0];
        button.addEventListener('click', function () {
          hidePage();
          resolve(choice[1]);
        });
        return button;
      }), true);
    });
  }

  // Hidden, closed or put in the background: Safari sends pagehide where the others send
  // visibilitychange, and most send both (a page left sends pagehide first); the file is stored
  // on either, and the second finds it as stored and does nothing. Shown again, storage opens
  // a new connection.
  function bindStoring() {
    document.addEventListener('visibilitychange', function () {
      if (document.visibilityState === 'hidden') Page.storeNow();
      else Page.pageShown();
    });
    window.addEventListener('pagehide', function (e) {
      Page.pageLeaving(e.persisted);
      Page.storeNow();
    });
    window.addEventListener('pageshow', function (e) { if (e.persisted) Page.pageShown(); });
  }

  async function start() {
    Page.preparePainting(element('screen'));
    Page.buildMenu();
    Page.bindInput();
    element('import-file').addEventListener('change', function (e) {
      if (e.target.files.length > 0) Page.importSaveFile(e.target.files[0]);
    });
    element('restart').addEventListener('click', function () { location.reload(); });
    bindStoring();
    var pictures = Page.loadPictures().then(Page.prepareMaskedSprites).then(
      function () { return true; },
      function (e) { console.warn('Kalvero 4: the pictures could not be loaded', e); return false; });
    await Page.claimGame();
    if (state.ended) return;
    hidePage();
    var read = await Page.readStorage();
    if (!await pictures) {
      state.ended = true;
      return showEnded('Les images de Kalvero 4 n\'ont pas pu être chargées. ' +
                       'Vérifiez la connexion, puis relancez Kalvero 4.');
    }
    if (!read && await askAfterFailedRead() === 'store') Page.allowStoring();
    if (state.ended) return;
    state.started = true;
    Page.post(function () { return Page.call('WebStart'); });
  }

  function askAfterFailedRead() {
    return showChoice(
      'La sauvegarde de Kalvero 4 n\'a pas pu être lue dans le stockage du navigateur ' +
      '(stockage refusé, plein ou navigation privée). Elle n\'est pas effacée : tant que vous ' +
      'ne la remplacez pas, cette session ne l\'écrit pas.\n\n' +
      'Vous pouvez relancer Kalvero 4 pour réessayer, jouer sans enregistrer, ou jouer et ' +
      'remplacer la sauvegarde par celle de cette session.',
      [['Jouer sans enregistrer', 'play'], ['Jouer et remplacer la sauvegarde', 'store']]);
  }

  // Whatever stops the start is said, never a blank page.
  function startOrSay() {
    start().catch(function (e) {
      console.warn('Kalvero 4: the start failed', e);
      state.ended = true;
      showEnded('Kalvero 4 n\'a pas pu démarrer. Relancez-le pour réessayer.');
    });
  }

  Object.assign(Page, {
    endProgram: endProgram, finishProgram: finishProgram, showEnded: showEnded,
    showWaiting: showWaiting, showChoice: showChoice, start: startOrSay,
  });
})(Page);

Module.onRuntimeInitialized = function () { Page.start(); };
// The engine's allocation failure writes its message to the console and ends the program.
Module.onExit = function () { Page.endProgram(); };
Module.onAbort = function (what) { Page.fail(what); };
