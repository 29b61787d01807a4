// The save file in the browser's storage: read before the game starts, written back whenever
// the game writes it and when the page is hidden or closed; its export and import. A storage
// that fails loses nothing: a file that could not be read is never written over unless the
// player agrees, one store runs at a time, and the copy kept for a closing page is removed only
// once it is stored.
(function (Page) {
  'use strict';
  var state = Page.state;

  var kSaveFolder = '/kalvero4';
  var kSaveFile = 'Fichier de sauvegarde';
  var kWaitLimit = 15000;  // a store the browser never answers counts as failed after this

  var writable = true;     // false after a failed read, until the player agrees or imports
  var running = null;      // the store under way
  var following = null;    // the one asked for while it runs: done after it, once
  var lastStored = null;   // the file's bytes as last stored, so that a store is not repeated
  var failureTold = false;
  var leaving = false;     // pagehide came: the page may be frozen at any moment
  var cached = false;      // and it goes to the back-forward cache: no IndexedDB work then

  // One pass of Emscripten's IndexedDB file system. It calls back with the error, or never
  // when the browser aborts its transaction: that too ends as a failure after kWaitLimit.
  function sync(populate) {
    return new Promise(function (resolve) {
      var timer = setTimeout(function () { resolve(new Error('no answer from IndexedDB')); }, kWaitLimit);
      try {
        FS.syncfs(populate, function (error) {
          clearTimeout(timer);
          resolve(error || null);
        });
      } catch (e) {
        clearTimeout(timer);
        resolve(e);
      }
    });
  }

  // The save file's folder lives in the browser's storage; reading it is the first step of a
  // start. Resolves to whether it was read; when it was not, nothing of this session is stored
  // over it (allowStoring lifts that at the player's word).
  async function readStorage() {
    FS.mkdir(kSaveFolder);
    FS.mount(IDBFS, {}, kSaveFolder);
    FS.chdir(kSaveFolder);
    var error = await sync(true);
    if (error) {
      console.warn('Kalvero 4: the browser storage could not be read', error);
      writable = false;
      return false;
    }
    lastStored = currentBytes();
    await takeLastCopy();
    return true;
  }

  function allowStoring() { writable = true; }

  function currentBytes() {
    try {
      return FS.analyzePath(kSaveFile).exists ? FS.readFile(kSaveFile) : null;
    } catch (e) {
      return null;
    }
  }

  function sameBytes(a, b) {
    if (!a || !b || a.length !== b.length) return false;
    for (var i = 0; i < a.length; i++) if (a[i] !== b[i]) return false;
    return true;
  }

  // Stores the folder unless the file is as last stored. A connection that the browser lost
  // (WebKit loses it while a page is in the background) is opened again and the store tried
  // once more; not after pagehide, though: WebKit may freeze the page in its back-forward cache
  // with the new connection's transaction open, and that transaction then blocks every page of
  // the site. The copy kept for a closing page holds the file then. Resolves to whether the
  // file is stored.
  async function storeOnce() {
    var bytes = currentBytes();
    if (sameBytes(bytes, lastStored)) return true;
    var error = await sync(false);
    if (error && !leaving) {
      forgetConnection();
      error = await sync(false);
    }
    if (error) {
      storeFailed(error);
      return false;
    }
    lastStored = bytes;
    return true;
  }

  // Back from the background the connection may be lost without a word: the next store opens
  // a new one, and what a page left for the back-forward cache did not store is stored now.
  function pageShown() {
    var wasCached = cached;
    leaving = cached = false;
    forgetConnection();
    if (wasCached) storeFiles();
  }

  // Going away, no new connection is opened (see storeOnce). A page that goes to the
  // back-forward cache starts no IndexedDB work at all: WebKit freezes it with its transaction
  // open, and that transaction blocks every other page of the site, the next start included,
  // until the frozen page comes back or is dropped. The copy holds the file meanwhile.
  function pageLeaving(toCache) {
    leaving = true;
    cached = toCache;
  }

  function forgetConnection() {
    var db = IDBFS.dbs[kSaveFolder];
    delete IDBFS.dbs[kSaveFolder];
    try {
      if (db) db.close();
    } catch (e) { /* already closed */ }
  }

  // One store at a time: a store asked for while one runs is done after it, and once however
  // often it was asked for. Without the player's word after a failed read, nothing is stored.
  function storeFiles(force) {
    if ((!writable || cached) && !force) return Promise.resolve(false);
    if (following) return following;
    if (running) {
      following = running.then(function () {
        following = null;
        return start();
      });
      return following;
    }
    return start();

    function start() {
      running = storeOnce().then(function (stored) {
        running = null;
        return stored;
      });
      return running;
    }
  }

  // Told once a session: what could not be stored is still in the copy kept in the page's
  // synchronous storage, taken at the next start, and the export saves it anyway.
  function storeFailed(error) {
    console.warn('Kalvero 4: the browser storage could not be written', error);
    if (failureTold) return;
    failureTold = true;
    var text = 'La sauvegarde n\'a pas pu être enregistrée dans le stockage du navigateur ' +
               '(espace plein, navigation privée ou stockage refusé).\n\n' +
               'Une copie est gardée pour le prochain démarrage. Pour ne rien perdre, ' +
               'utilisez « Exporter la sauvegarde… » du menu « Menu ».';
    if (state.ended) {
      Page.element('ended-text').textContent += '\n\n' + text;
    } else {
      Page.ask(text, 'Kalvero 4', 0x30);
    }
  }

  // A page that is closing or reloading is gone before a store has finished, and the browser
  // drops what it had not yet written. The save file written then is also kept whole in the
  // page's synchronous storage, under a key of the site's own folder; the next start takes it
  // when it is newer than the stored one, and removes it once it is stored.
  var kLastCopy = 'kalvero4-last-save-file:' + location.pathname.replace(/[^/]*$/, '');
  var kUnscopedCopy = 'kalvero4-last-save-file';  // where earlier versions kept it

  function checksum(text) {
    var sum = 0;
    for (var i = 0; i < text.length; i++) sum = (sum * 31 + text.charCodeAt(i)) >>> 0;
    return sum;
  }

  function keepLastCopy() {
    try {
      var bytes = FS.readFile(kSaveFile);
      var text = btoa(String.fromCharCode.apply(null, bytes));
      localStorage.setItem(kLastCopy, JSON.stringify({
        time: FS.stat(kSaveFile).mtime.getTime(), length: bytes.length, sum: checksum(text), bytes: text }));
    } catch (e) {
      console.warn('Kalvero 4: the save file could not be kept', e);
    }
  }

  // The copy's bytes and time, or null for a copy that is not whole: such a copy is left where
  // it is and never written over the stored file.
  function readCopy(raw) {
    try {
      var copy = JSON.parse(raw);
      if (!copy || typeof copy.bytes !== 'string' || !isFinite(copy.time)) return null;
      if (copy.sum !== undefined && copy.sum !== checksum(copy.bytes)) return null;
      var bytes = Uint8Array.from(atob(copy.bytes), function (c) { return c.charCodeAt(0); });
      if (copy.length !== undefined && copy.length !== bytes.length) return null;
      return { time: copy.time, bytes: bytes };
    } catch (e) {
      return null;
    }
  }

  async function takeLastCopy() {
    var key, raw;
    try {
      key = localStorage.getItem(kLastCopy) !== null ? kLastCopy : kUnscopedCopy;
      raw = localStorage.getItem(key);
    } catch (e) {
      console.warn('Kalvero 4: the page\'s synchronous storage could not be read', e);
      return;
    }
    if (raw === null) return;
    var copy = readCopy(raw);
    if (!copy) {
      console.warn('Kalvero 4: the last save file kept is damaged and was not taken');
      return;
    }
    var stored = FS.analyzePath(kSaveFile).exists ? FS.stat(kSaveFile).mtime.getTime() : -Infinity;
    if (copy.time > stored) {
      FS.writeFile(kSaveFile, copy.bytes);
      FS.utime(kSaveFile, copy.time, copy.time);
      if (!await storeFiles()) return;  // kept for the next start
    }
    try {
      localStorage.removeItem(key);
    } catch (e) { /* removed at a later start */ }
  }

  // The file as the Windows program would write it now, offered for download byte for byte.
  function exportSaveFile() {
    Module._WebWriteSaveFile();
    storeFiles();
    var bytes = FS.readFile(kSaveFile);
    var link = document.createElement('a');
    link.href = URL.createObjectURL(new Blob([bytes], { type: 'application/octet-stream' }));
    link.download = kSaveFile;
    document.body.appendChild(link);
    link.click();
    link.remove();
    setTimeout(function () { URL.revokeObjectURL(link.href); }, 10000);
  }

  // A file from the Windows program (or any file: a short or damaged one is read at the next
  // start as the Windows program reads it) becomes the save file, and the game starts again
  // from it; the session in the page is not stored over it. Importing is the player's word to
  // store, also after a failed read. When it cannot be stored, the stored file is as it was.
  async function importSaveFile(file) {
    var bytes;
    try {
      bytes = new Uint8Array(await file.arrayBuffer());
    } catch (e) {
      console.warn('Kalvero 4: the file could not be read', e);
      return Page.ask('Le fichier « ' + file.name + ' » n\'a pas pu être lu.', 'Kalvero 4', 0x30);
    }
    state.keepStorage = false;
    state.ended = true;
    var stored = false;
    try {
      FS.writeFile(kSaveFolder + '/' + kSaveFile, bytes);
      stored = await storeFiles(true);
    } catch (e) {
      console.warn('Kalvero 4: the file could not be imported', e);
    }
    if (!stored) {
      return Page.showEnded('Le fichier n\'a pas pu être enregistré dans le stockage du ' +
                            'navigateur : la sauvegarde enregistrée n\'a pas changé.');
    }
    location.reload();
  }

  // Writes the file as it stands and stores it, with the copy a closing page leaves. Also
  // while a dialog waits for the player: writing the file never waits, and what the session
  // holds then is what a closing tab must not lose. Resolves to whether it is stored.
  function storeNow() {
    if (!state.started || state.ended || !state.keepStorage || !writable) {
      return Promise.resolve(false);
    }
    if (cached) {
      Module._WebWriteSaveFile();
      keepLastCopy();
      return Promise.resolve(false);
    }
    Module._WebStoreNow();  // writes the file, then stores it through kv_store_files
    keepLastCopy();
    return storeFiles();
  }

  Object.assign(Page, {
    readStorage: readStorage, allowStoring: allowStoring, storeFiles: storeFiles,
    pageShown: pageShown, pageLeaving: pageLeaving,
    exportSaveFile: exportSaveFile, importSaveFile: importSaveFile, storeNow: storeNow,
  });
})(Page);
