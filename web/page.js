// The page around the game, in rooms that Emscripten joins in this order as its --pre-js:
//
//   page.js      this map, the Page record shared by the rooms, and element()
//   texts.js     Windows-1252 texts to and from the game; "&" labels
//   queue.js     the page's events as the game's messages, one at a time; repaint scheduling
//   painting.js  a frame's plan drawn into the back buffer and presented on the screen canvas
//   frame.js     the window frame: title, icon, size, client area, fit to the screen
//   menus.js     the menu bar, by pointer and keyboard; its commands
//   input.js     pointer, touch and keys over the window; the grip and the close box
//   boxes.js     message boxes, and the window box that dialogs are drawn in too
//   dialogs.js   the dialogs from their templates; their controls and commands
//   speech.js    the frame in words: the live region, and the board's own text
//   storage.js   the save file in the browser's storage; export and import
//   tabs.js      one game per browser: a second tab offers to play there instead
//   offline.js   the service worker registered, for the installed app offline; storage kept
//   download.js  the WebAssembly fetched compressed and compiled as it arrives
//   start.js     the start and the end of the program
//
// library.js (--js-library) holds the functions the C++ glue calls; each is one step into a
// room. Every decision of the game is the C++ core's: the rooms only show and forward. The
// build joins one more script after this one: Page.pictureAtlas, where each bitmap lies in
// pictures/bitmaps.png (tools/make_site_pictures.py). service-worker.js, beside the page, keeps
// the site's files for playing offline.
//
// The calls between the page and the glue (src/web/page.h, src/web/window_web.cpp):
//
//   page -> glue (Module._Name, or Page.call when the call may sleep)
//     WebStart()                    sleeps: the first repaint opens the first dialogs
//     WebPaint() -> 1 if a second half follows
//     WebFinishRepaint()            sleeps: dialogs, the computer's reply
//     WebReplyPending() -> 1 if the second half makes the computer think
//     WebPointer(x, y), WebClick(), WebChar(c), WebPassingMessages(n)
//     WebCommand(command)           sleeps: a menu command may open a dialog or a box
//     WebClose()                    sleeps: closing asks nothing, but runs in the queue
//     WebResized(width, height), WebStoreNow(), WebWriteSaveFile()
//
//   glue -> page (library.js)
//     kv_ask(text, title, flags) -> answer                    sleeps until the player answers
//     kv_dialog_wait() -> control                             sleeps until the next command
//     kv_request_repaint(), kv_repaint_begins(), kv_end_program(code), kv_set_title(normal),
//     kv_resize_window(width, height), kv_set_check(command, checked),
//     kv_draw(...), kv_refill_background(width, height), kv_present(...),
//     kv_dialog_open(template), kv_dialog_close(), kv_dialog_checked(control),
//     kv_dialog_set_checked(...), kv_dialog_text(...), kv_dialog_set_text(...),
//     kv_list_add(...), kv_list_selection(control), kv_list_set_selection(...),
//     kv_speak(said, board), kv_store_files()
//
// Only the two sleeping imports are listed to ASYNCIFY (cmake/web.cmake); a glue entry that
// reaches one of them must be called through Page.call, which awaits it.
'use strict';

var Page = {
  state: {
    pictures: {},
    back: null, backContext: null,
    background: null, backgroundContext: null,
    screen: null, screenContext: null,
    outerWidth: 0, outerHeight: 0,
    queue: [], running: false, repaintWanted: false,
    modal: 0, ended: false, endRequested: false, started: false, keepStorage: true,
    lastPointer: null, framesShown: 0, pendingMask: null, maskedSprites: {},
    dialog: null, dialogWaiters: [], dialogCommands: [],
    checks: {}, menuOpen: null, menuKeys: false, altAlone: false, boxes: [],
  },

  element: function (id) { return document.getElementById(id); },
};
