// One game per browser: the save file is the browser's, not the tab's, so only one tab plays at
// a time. A second tab says that the game is open in another one and offers to play there
// instead; the first then stores the file as when it is hidden, shows its ended page and lets
// go, and the second starts from that file. The Web Locks API holds the game where the browser
// has it (a secure context); otherwise the tabs ask each other over a BroadcastChannel; with
// neither, every tab plays as before.
(function (Page) {
  'use strict';
  var state = Page.state;

  // The save file is stored for the whole origin (IndexedDB), and so is the game held.
  var kName = 'kalvero4-save-file';
  var kAnswerWait = 300;    // how long a tab waits for another to say it plays, without locks
  var kHandOverWait = 5000; // how long it waits for that one to let go, without locks

  var channel = typeof BroadcastChannel === 'function' ? new BroadcastChannel(kName) : null;
  var locks = navigator.locks && typeof navigator.locks.request === 'function' ? navigator.locks : null;
  var holding = false;
  var release = null;       // lets the lock go

  function listen(handler) {
    if (channel) channel.addEventListener('message', function (e) { handler(e.data); });
  }

  // What the tab that plays answers.
  listen(function (message) {
    if (!holding) return;
    if (message === 'who') channel.postMessage('here');
    if (message === 'hand-over') handOver();
  });

  async function handOver() {
    holding = false;
    var storing = Page.storeNow();  // before the end: a session that has ended stores nothing
    state.ended = true;
    await storing;
    Page.showEnded('Kalvero 4 continue dans un autre onglet.');
    if (release) release();
    if (channel) channel.postMessage('released');
  }

  // Resolves once this tab holds the game; until then the page shows why it waits.
  async function claimGame() {
    if (locks) {
      if (await lock(true)) return;
      await askToPlayHere();
      if (channel) channel.postMessage('hand-over');
      await lock(false);
      return;
    }
    if (channel && await someonePlays()) {
      await askToPlayHere();
      var released = answered('released', kHandOverWait);
      channel.postMessage('hand-over');
      await released;
    }
    holding = true;
  }

  // Takes the lock (at once or not at all when asked so); it is held until release().
  function lock(atOnce) {
    return new Promise(function (resolve, reject) {
      locks.request(kName, atOnce ? { ifAvailable: true } : {}, function (granted) {
        if (!granted) return resolve(false);
        holding = true;
        resolve(true);
        return new Promise(function (let_go) { release = let_go; });
      }).catch(reject);
    });
  }

  function someonePlays() {
    var here = answered('here', kAnswerWait);
    channel.postMessage('who');
    return here;
  }

  // Resolves to whether that message came within the time.
  function answered(expected, time) {
    return new Promise(function (resolve) {
      var timer = setTimeout(function () { done(false); }, time);
      channel.addEventListener('message', heard);
      function heard(e) { if (e.data === expected) done(true); }
      function done(seen) {
        clearTimeout(timer);
        channel.removeEventListener('message', heard);
        resolve(seen);
      }
    });
  }

  async function askToPlayHere() {
    await Page.showChoice('Kalvero 4 est déjà ouvert dans un autre onglet.',
                          [['Jouer ici', 'here']]);
    Page.showWaiting('Kalvero 4 se ferme dans l\'autre onglet…');
  }

  Object.assign(Page, { claimGame: claimGame });
})(Page);
