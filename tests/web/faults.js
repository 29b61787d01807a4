// Faults planted in the page before its own scripts (faulty.html, a copy of index.html that
// loads this first), chosen by the page's query: faulty.html?fault=open-once,hide. Every
// fault is one the browser itself can raise; the counters let a test see what the page did.
(function () {
  'use strict';
  const faults = (new URLSearchParams(location.search).get('fault') || '').split(',');
  const open = IDBFactory.prototype.open;
  const transaction = IDBDatabase.prototype.transaction;
  const connections = [];
  window.__opens = 0;   // IndexedDB connections asked for
  window.__writes = 0;  // read-write transactions begun
  window.__plainOpen = (...args) => open.apply(indexedDB, args);  // the test's own reads

  IDBFactory.prototype.open = function (...args) {
    window.__opens += 1;
    // Storage refused: private browsing, a blocked site, a profile IndexedDB cannot open.
    if (faults.includes('open') || (faults.includes('open-once') && window.__opens === 1)) {
      throw new DOMException('planted: IndexedDB refused', 'UnknownError');
    }
    const request = open.apply(this, args);
    request.addEventListener('success', () => connections.push(request.result));
    return request;
  };
  // What WebKit does to a page back from the background: its connections are gone.
  window.__loseConnections = () => connections.splice(0).forEach(db => db.close());

  IDBDatabase.prototype.transaction = function (stores, mode, ...rest) {
    if (mode === 'readwrite') window.__writes += 1;
    return transaction.call(this, stores, mode, ...rest);
  };

  if (faults.includes('quota')) {  // the origin's quota is used up
    IDBObjectStore.prototype.put = function () {
      throw new DOMException('planted: quota exceeded', 'QuotaExceededError');
    };
  }

  if (faults.includes('hide')) {  // the page's visibility as the test sets it
    window.__hidden = false;
    Object.defineProperty(document, 'visibilityState',
                          { get: () => (window.__hidden ? 'hidden' : 'visible') });
  }

  if (faults.includes('nolocks')) {  // no Web Locks: a page served without a secure context
    Object.defineProperty(Navigator.prototype, 'locks', { get: () => undefined });
  }

  if (faults.includes('pictures')) {  // the bitmaps arrive damaged (a cut connection)
    const src = Object.getOwnPropertyDescriptor(HTMLImageElement.prototype, 'src');
    Object.defineProperty(HTMLImageElement.prototype, 'src', {
      get: src.get,
      set(value) {
        src.set.call(this, /pictures\/[^/]*\.(bmp|png)$/.test(value) ? 'data:image/bmp;base64,Qk0=' : value);
      },
    });
  }
})();
