// kalvero4.js as the site has it: loads the program (kalvero4-program.js, Emscripten's runtime
// with the page's rooms). The build writes kalvero4-program.js.gz beside it
// (tools/finish_program.py), a third of its size, for the many static servers that send files
// as they are; index.html's head has already asked for it (KalveroEarly.program) where the page
// can inflate it. Elsewhere, or if that fails, the program comes as it is, and so it does from
// the service worker's store, where its size costs nothing and the browser keeps the program
// compiled from one start to the next only for a file it loads itself.
(function (early) {
  'use strict';

  function run(source) {
    var script = document.createElement('script');
    script.src = source;
    document.body.appendChild(script);
  }

  function plain(error) {
    if (error) console.warn('kalvero4-program.js.gz :', error, '; kalvero4-program.js à la place');
    run('kalvero4-program.js');
  }

  if (!early || !early.program) return plain();
  early.program.then(function (response) {
    if (!response.ok) throw new Error(response.url + ' : ' + response.status);
    return response.arrayBuffer();
  }).then(function (bytes) {
    // A server that sends .gz files with a Content-Encoding of gzip has had them inflated by
    // the browser already: gzip's first two bytes tell.
    var head = new Uint8Array(bytes, 0, Math.min(2, bytes.byteLength));
    var body = new Blob([bytes]).stream();
    if (head[0] === 0x1f && head[1] === 0x8b) {
      body = body.pipeThrough(new DecompressionStream('gzip'));
    }
    return new Response(body).blob();
  }).then(function (program) {
    run(URL.createObjectURL(new Blob([program], { type: 'text/javascript' })));
  }).catch(plain);
})(window.KalveroEarly);
