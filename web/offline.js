// The page as an installed app that plays offline: the service worker (service-worker.js)
// registered once the first frame is on the screen, and the browser asked to keep the page's
// storage, so that the save file is not removed with the site's data after weeks away.
(function (Page) {
  'use strict';

  // After the first frame: the worker's first install downloads the whole site again, which
  // must not slow the start on a slow network. Where there is no worker (an old browser, a
  // page not served over HTTPS or from the machine itself) the page plays as before.
  function registerWorker() {
    if (!('serviceWorker' in navigator)) return;
    navigator.serviceWorker.register('service-worker.js').catch(function (error) {
      console.warn('Kalvero 4 ne jouera pas hors ligne :', error);
    });
  }

  function afterFirstFrame(then) {
    var observer = typeof PerformanceObserver === 'function' &&
        new PerformanceObserver(function (list) {
          if (!list.getEntriesByName('kalvero4-first-frame').length) return;
          observer.disconnect();
          then();
        });
    try {
      observer.observe({ entryTypes: ['mark'] });
    } catch (e) {
      if (document.readyState === 'complete') then();
      else window.addEventListener('load', then);
    }
  }

  // A refusal, or a browser without the question, changes nothing: the storage is then kept
  // as the browser keeps it.
  function keepStorage() {
    if (navigator.storage && navigator.storage.persist) {
      navigator.storage.persist().catch(function () {});
    }
  }

  keepStorage();
  afterFirstFrame(registerWorker);
})(Page);
