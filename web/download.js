// The program's WebAssembly, fetched compressed and compiled while it arrives.
//
// The build writes kalvero4.wasm.gz beside kalvero4.wasm (tools/finish_program.py): a third of
// the size, for the many static servers that send files as they are. Where the page can
// inflate it, index.html's head has already asked for it (KalveroEarly.wasm); the page compiles
// the inflated stream as it comes, and needs no particular type from the server. Elsewhere, or
// if that fails, the program's runtime fetches kalvero4.wasm as before; and so it does from
// the service worker's store (web/loader.js tells why).
(function (Page) {
  'use strict';

  var early = window.KalveroEarly;
  if (!early || !early.wasm) return;

  // The body inflated, unless a server already did (one that sends .gz files with a
  // Content-Encoding of gzip, which the browser undoes): gzip's first two bytes tell.
  async function inflated(response) {
    if (!response.ok) throw new Error(response.url + ' : ' + response.status);
    var reader = response.body.getReader();
    var first = await reader.read();
    var head = first.value || new Uint8Array(0);
    var body = new ReadableStream({
      start: function (controller) {
        if (head.length) controller.enqueue(head);
        if (first.done) controller.close();
      },
      pull: async function (controller) {
        var next = await reader.read();
        if (next.done) controller.close();
        else controller.enqueue(next.value);
      },
    });
    if (head[0] === 0x1f && head[1] === 0x8b) {
      body = body.pipeThrough(new DecompressionStream('gzip'));
    }
    return new Response(body, { headers: { 'Content-Type': 'application/wasm' } });
  }

  async function plain(imports) {
    var response = await fetch('kalvero4.wasm', { credentials: 'same-origin' });
    if (!response.ok) throw new Error(response.url + ' : ' + response.status);
    return WebAssembly.instantiate(await response.arrayBuffer(), imports);
  }

  // Emscripten's hook: the runtime waits until receive() is given the instance.
  Module.instantiateWasm = function (imports, receive) {
    early.wasm.then(inflated).then(function (response) {
      return WebAssembly.instantiateStreaming(response, imports);
    }).catch(function (error) {
      console.warn('kalvero4.wasm.gz :', error, '; kalvero4.wasm à la place');
      return plain(imports);
    }).then(function (result) { receive(result.instance); }, function (error) {
      Page.fail(error);
    });
    return {};
  };
})(Page);
