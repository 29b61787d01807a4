// The save file in the browser's storage: read before the game starts, written back whenever
// the game writes it and when the page is hidden or closed; its export and import.
(function (Page) {
  'use strict';
  var state = Page.state;

  var kSaveFolder = '/kalvero4';
  var kSaveFile = 'Fichier de sauvegarde';

  // The save file's folder lives in the browser's storage; reading it is the first step of a
  // start, and every write of the file is stored back.
  function readStorage() {
    FS.mkdir(kSaveFolder);
    FS.mount(IDBFS, {}, kSaveFolder);
    FS.chdir(kSaveFolder);
    return new Promise(function (resolve) {
      FS.syncfs(true, function (error) {
        if (error) console.warn('Kalvero 4: the browser storage could not be read', error);
        takeLastCopy();
        resolve();
      });
    });
  }

  // A page that is closing or reloading is gone before FS.syncfs has finished, and the browser
  // drops what it had not yet written. The save file written then is also kept whole in the
  // page's synchronous storage; the next start takes it when it is newer than the stored one.
  var kLastCopy = 'kalvero4-last-save-file';

  function keepLastCopy() {
    try {
      var bytes = FS.readFile(kSaveFile);
      localStorage.setItem(kLastCopy, JSON.stringify({
        time: FS.stat(kSaveFile).mtime.getTime(), bytes: btoa(String.fromCharCode.apply(null, bytes)) }));
    } catch (e) {
      console.warn('Kalvero 4: the save file could not be kept', e);
    }
  }

  function takeLastCopy() {
    try {
      var copy = JSON.parse(localStorage.getItem(kLastCopy));
      localStorage.removeItem(kLastCopy);
      var stored = FS.analyzePath(kSaveFile).exists ? FS.stat(kSaveFile).mtime.getTime() : -Infinity;
      if (!copy || copy.time <= stored) return;
      FS.writeFile(kSaveFile, Uint8Array.from(atob(copy.bytes), function (c) { return c.charCodeAt(0); }));
      FS.utime(kSaveFile, copy.time, copy.time);
      storeFiles();
    } catch (e) {
      console.warn('Kalvero 4: the last save file could not be read', e);
    }
  }

  function storeFiles() {
    return new Promise(function (resolve) {
      FS.syncfs(false, function (error) {
        if (error) console.warn('Kalvero 4: the browser storage could not be written', error);
        resolve();
      });
    });
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
  // from it; the session in the page is not stored over it.
  async function importSaveFile(file) {
    var bytes = new Uint8Array(await file.arrayBuffer());
    state.keepStorage = false;
    state.ended = true;
    FS.writeFile(kSaveFolder + '/' + kSaveFile, bytes);
    await storeFiles();
    location.reload();
  }

  // Also while a dialog waits for the player: writing the file never waits, and what the
  // session holds then is what a closing tab must not lose.
  function storeNow() {
    if (state.started && !state.ended && state.keepStorage) {
      Module._WebStoreNow();
      keepLastCopy();
    }
  }

  Object.assign(Page, {
    readStorage: readStorage, storeFiles: storeFiles, exportSaveFile: exportSaveFile,
    importSaveFile: importSaveFile, storeNow: storeNow,
  });
})(Page);
