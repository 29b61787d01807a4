// The service worker: keeps every file of the site in a store of the browser at the first
// visit, so that the game starts again without the network, and from the store even with it.
//
// The build (tools/make_service_worker.py) writes in the two values below: the site's files,
// relative to this file, and a hash of their contents. The store is named by that hash, so a
// new build is a new worker (the browser compares the worker's bytes at every start): it fills
// a new store beside the old one while the page plays on, takes over, and removes the old
// store; the start after that is the new build's.
'use strict';

var kFiles = /* site files */[];
var kHash = /* site hash */'';

// Stores are per origin, and two copies of the site may sit in two folders of one server: each
// worker's stores carry its folder, and it removes only its own old ones.
var kPrefix = 'kalvero4-';
var kScope = self.registration.scope;
var kStore = kPrefix + kHash + ' ' + kScope;

function isOldStore(name) {
  return name !== kStore && name.startsWith(kPrefix) && name.endsWith(' ' + kScope);
}

// Every file straight from the server, past the browser's HTTP cache, which may hold an older
// build's. A file missing fails the whole install: the old worker and its store stay.
self.addEventListener('install', function (event) {
  event.waitUntil(caches.open(kStore).then(function (store) {
    return store.addAll(kFiles.map(function (file) {
      return new Request(file, { cache: 'reload' });
    }));
  }).then(function () {
    // A page that plays keeps what it has loaded; anything it asks for later (an icon) comes
    // from the new store, whose files have the same names.
    return self.skipWaiting();
  }));
});

self.addEventListener('activate', function (event) {
  event.waitUntil(caches.keys().then(function (names) {
    return Promise.all(names.filter(isOldStore).map(function (name) {
      return caches.delete(name);
    }));
  }).then(function () {
    // The first visit's page too asks its later files of this worker.
    return self.clients.claim();
  }));
});

// The site's files from the store; anything else (another site, another method) as without a
// worker. The folder's own address is the page.
self.addEventListener('fetch', function (event) {
  var request = event.request;
  if (request.method !== 'GET' || !request.url.startsWith(kScope)) return;
  event.respondWith(answer(request));
});

async function answer(request) {
  var url = new URL(request.url);
  url.hash = '';
  url.search = '';
  if (url.href === kScope) url.href = new URL('index.html', kScope).href;
  var store = await caches.open(kStore);
  var kept = await store.match(url.href);
  return kept || fetch(request);
}
