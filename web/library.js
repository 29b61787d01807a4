// The page's functions that the game's C++ calls (handed to Emscripten with --js-library).
// Each is a thin step into the page (page.js); texts arrive as Windows-1252 bytes.
mergeInto(LibraryManager.library, {
  kv_request_repaint: function () { Page.requestRepaint(); },
  kv_repaint_begins: function () { Page.repaintBegins(); },
  kv_end_program: function () { Page.endProgram(); },
  kv_set_title: function (normal) { Page.setTitle(normal !== 0); },
  kv_resize_window: function (width, height) { Page.resizeWindow(width, height); },
  kv_set_check: function (command, checked) { Page.setCheck(command, checked !== 0); },
  kv_draw: function (kind, x, y, width, height, x2, y2, what, raster, colour, text, length) {
    Page.draw(kind, x, y, width, height, x2, y2, what, raster, colour >>> 0,
              length > 0 ? Page.decode(HEAPU8.subarray(text, text + length)) : '');
  },
  kv_refill_background: function (width, height) { Page.refillBackground(width, height); },
  kv_present: function (sourceWidth, sourceHeight, x, y, width, height, smoothing, black, count) {
    Page.present(sourceWidth, sourceHeight, x, y, width, height, smoothing !== 0,
                 HEAP32.slice(black >> 2, (black >> 2) + 4 * count));
  },
  kv_ask: function (text, title, flags) {
    return Asyncify.handleSleep(function (wakeUp) {
      Page.ask(Page.decodeZ(text), Page.decodeZ(title), flags).then(wakeUp);
    });
  },
  kv_dialog_wait: function () {
    return Asyncify.handleSleep(function (wakeUp) { Page.nextDialogCommand().then(wakeUp); });
  },
  kv_dialog_open: function (template) { Page.openDialog(template); },
  kv_dialog_close: function () { Page.closeDialog(); },
  kv_dialog_checked: function (control) { return Page.dialogChecked(control) ? 1 : 0; },
  kv_dialog_set_checked: function (control, checked) { Page.setDialogChecked(control, checked !== 0); },
  kv_dialog_text: function (control, buffer, capacity) {
    var bytes = Page.encode(Page.dialogText(control));
    var length = Math.min(bytes.length, capacity - 1);
    HEAPU8.set(bytes.subarray(0, length), buffer);
    HEAPU8[buffer + length] = 0;
    return length;
  },
  kv_dialog_set_text: function (control, text) { Page.setDialogText(control, Page.decodeZ(text)); },
  kv_list_add: function (control, text) { Page.addListEntry(control, Page.decodeZ(text)); },
  kv_list_selection: function (control) { return Page.listSelection(control); },
  kv_list_set_selection: function (control, index) { Page.setListSelection(control, index); },
  kv_store_files: function () { Page.storeFiles(); },
});
