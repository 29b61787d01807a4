// The page around the game (handed to Emscripten with --pre-js): the window frame with its title,
// menu bar and client area, the painting of each frame's plan on canvases, the message boxes and
// the dialogs, the save file in the browser's storage, and the queue that turns the page's events
// into the game's messages one at a time. Every decision of the game is the C++ core's; this file
// only shows and forwards.
'use strict';

var Page = (function () {
  // The frame around the client area, in pixels, as the Windows program's window has it: a
  // sizing border all round, the caption and the menu bar. The outer sizes that the game asks
  // for include them, so the client area comes out as on Windows.
  var kBorder = 4;
  var kCaption = 19;
  var kMenuBar = 19;
  var kBufferSide = 660;
  var kMinimumWidth = 120;
  var kMinimumHeight = kCaption + kMenuBar + 2 * kBorder;

  // Numbers shared with the game: drawing steps, brushes, raster operations, box flags.
  var kDraw = { FillBlack: 0, CopyBackground: 1, Line: 2, FillCell: 3, Bitmap: 4, Text: 5 };
  var kBrushColours = [null, 'rgb(0,160,255)', 'rgb(255,210,0)', 'rgb(128,255,128)'];
  var kRasterModes = ['source-over', 'multiply', 'lighter'];  // copy, AND, OR on 0/255 pixels
  var kRasterAnd = 1;
  var kRasterOr = 2;
  var kAnswer = { Ok: 1, Cancel: 2, Yes: 6, No: 7 };
  var kDialogIds = [132, 161, 156, 103];  // home, characters, statistics, about
  var kOk = 1;
  var kCancel = 2;
  var kSaveFolder = '/kalvero4';
  var kSaveFile = 'Fichier de sauvegarde';

  // Bitmaps by resource number, as the Windows program's resource script names them.
  var kPictureFiles = { 148: 'bg148', 154: 'mask154' };
  var kPieceMask = 154;
  var kPieceSprites = [152, 153, 155, 156, 157, 158, 159, 160, 161];
  kPieceSprites.forEach(function (n) { kPictureFiles[n] = 'disc' + n; });
  for (var p = 0; p < 14; ++p) kPictureFiles[30000 + p] = 'portrait' + (30000 + p);

  // The text of the game's font: 18 pixels from the top of the ascent to the bottom of the
  // descent, which is a 15-pixel em in the faces below; the text's top is its ascent above the
  // baseline.
  var kFont = '15px Tahoma, Arial, "Liberation Sans", "DejaVu Sans", sans-serif';
  var kFontAscent = 15;

  var decoder = new TextDecoder('windows-1252');
  var state = {
    pictures: {},
    back: null, backContext: null,
    background: null, backgroundContext: null,
    screen: null, screenContext: null,
    outerWidth: 0, outerHeight: 0,
    queue: [], running: false, repaintWanted: false,
    modal: 0, ended: false, endRequested: false, started: false, keepStorage: true,
    lastPointer: null, framesShown: 0, pendingMask: null, maskedSprites: {},
    dialog: null, dialogWaiters: [], dialogCommands: [],
    checks: {}, menuOpen: null,
  };

  // ----- Texts -----------------------------------------------------------------------------

  function decode(bytes) { return decoder.decode(bytes); }

  function decodeZ(pointer) {
    var end = pointer;
    while (HEAPU8[end] !== 0) ++end;
    return decode(HEAPU8.subarray(pointer, end));
  }

  // Windows-1252 bytes of a text typed in the page: Latin-1 characters as they are, any other
  // as '?', as the Windows program's "A" controls give them.
  var kWindows1252Extra = {};
  for (var b = 0x80; b < 0xa0; ++b) {
    var c = decoder.decode(new Uint8Array([b]));
    if (c !== '\ufffd') kWindows1252Extra[c] = b;
  }
  function encode(text) {
    var bytes = new Uint8Array(text.length);
    for (var i = 0; i < text.length; ++i) {
      var code = text.charCodeAt(i);
      bytes[i] = code < 0x80 || (code >= 0xa0 && code < 0x100) ? code
                 : (kWindows1252Extra[text[i]] || 0x3f);
    }
    return bytes;
  }

  // A menu or control text: "&x" underlines x, "&&" is an ampersand. In a menu entry "\t"
  // starts the key text; in a control a tab is text, which a static control expands.
  function labelInto(element, text, noPrefix, menuEntry) {
    element.textContent = '';
    var tab = menuEntry ? text.indexOf('\t') : -1;
    var main = tab >= 0 ? text.slice(0, tab) : text;
    for (var i = 0; i < main.length; ++i) {
      if (!noPrefix && main[i] === '&' && i + 1 < main.length) {
        ++i;
        if (main[i] !== '&') {
          var u = document.createElement('u');
          u.textContent = main[i];
          element.appendChild(u);
          continue;
        }
      }
      element.appendChild(document.createTextNode(main[i]));
    }
    return tab >= 0 ? text.slice(tab + 1).trim() : '';
  }

  // ----- The queue of messages ---------------------------------------------------------------

  // Events become the game's messages one at a time, in order, as a window's message queue
  // delivers them; a message that waits for the player (a dialog, a box) holds the rest back.
  function post(task) {
    if (state.ended) return;
    state.queue.push(task);
    pump();
  }

  function pump() {
    if (state.running) return;
    state.running = true;
    (async function () {
      while (state.queue.length > 0 && !state.ended) {
        var task = state.queue.shift();
        try {
          await task();
        } catch (e) {
          fail(e);
        }
        if (state.endRequested) break;
      }
      state.running = false;
      if (state.endRequested) finishProgram();
    })();
  }

  // A call of the game that may wait for the player.
  function call(name, args) {
    return Module.ccall(name, 'number', (args || []).map(function () { return 'number'; }),
                        args || [], { async: true });
  }

  function message(name, args) { post(function () { return call(name, args); }); }

  function fail(e) {
    // The program's own exit (the engine's allocation failure) ends it as any other end does.
    if (e && e.name === 'ExitStatus') return endProgram();
    console.error(e);
    state.ended = true;
    showEnded('Kalvero 4 s\'est arrêté sur une erreur.');
  }

  // ----- Repaints ----------------------------------------------------------------------------

  function nextFrame() { return new Promise(function (r) { requestAnimationFrame(function () { r(); }); }); }

  // Requests before a repaint are met by it, as a window's pending repaint is by the repaint
  // under way; a request made during it waits for the next frame.
  function requestRepaint() {
    if (state.repaintWanted || state.ended) return;
    state.repaintWanted = true;
    requestAnimationFrame(function () {
      if (!state.repaintWanted) return;
      // Under a dialog or a box the window still repaints, as Windows repaints it during their
      // own message loop; such a repaint never waits for the player.
      if (state.modal > 0) return repaintNow();
      post(repaint);
    });
  }

  function repaintBegins() { state.repaintWanted = false; }

  function repaintNow() {
    if (Module._WebPaint()) Module._WebFinishRepaint();
  }

  // The frame reaches the screen first; when the computer is to think, under the wait cursor.
  async function repaint() {
    if (!state.repaintWanted) return;
    if (!Module._WebPaint()) return;
    var thinking = Module._WebReplyPending() !== 0;
    if (thinking) {
      document.body.classList.add('waiting');
      await nextFrame();
      await nextFrame();
    }
    try {
      await call('WebFinishRepaint');
    } finally {
      document.body.classList.remove('waiting');
    }
  }

  // ----- Painting ----------------------------------------------------------------------------

  function makeCanvas(width, height) {
    var canvas = document.createElement('canvas');
    canvas.width = width;
    canvas.height = height;
    return canvas;
  }

  function css(colour) {
    return 'rgb(' + (colour & 255) + ',' + ((colour >> 8) & 255) + ',' + ((colour >> 16) & 255) + ')';
  }

  // A piece is its mask drawn with AND, then its sprite with OR at the same place. Where the
  // mask is black the two leave the sprite; where it is white the sprite is black and both
  // leave the board. So the pair is drawn as one picture: the sprite, transparent where the
  // mask is white. That is the same picture in one draw instead of two with two blend modes,
  // which is what a full board's repaint spends its time on.
  function draw(kind, x, y, width, height, x2, y2, what, raster, colour, text) {
    var mask = state.pendingMask;
    if (mask) {
      state.pendingMask = null;
      var piece = kind === kDraw.Bitmap && raster === kRasterOr && x === mask.x && y === mask.y &&
                  width === mask.width && height === mask.height && maskedSprite(mask.what, what);
      if (piece) return state.backContext.drawImage(piece, x, y, width, height);
      drawStep(kDraw.Bitmap, mask.x, mask.y, mask.width, mask.height, 0, 0, mask.what, kRasterAnd, 0, '');
    }
    if (kind === kDraw.Bitmap && raster === kRasterAnd) {
      state.pendingMask = { what: what, x: x, y: y, width: width, height: height };
      return;
    }
    drawStep(kind, x, y, width, height, x2, y2, what, raster, colour, text);
  }

  // The sprite transparent where the mask is white, made at start for every sprite with the
  // pieces' mask; null for a pair that is not such a pair (a sprite that is not black wherever
  // its mask is white), which is then drawn in two steps.
  function maskedSprite(maskId, spriteId) {
    return state.maskedSprites[maskId + ':' + spriteId] || null;
  }

  async function prepareMaskedSprites() {
    var mask = state.pictures[kPieceMask];
    if (!mask) return;
    var canvas = makeCanvas(mask.width, mask.height);
    var g = canvas.getContext('2d', { willReadFrequently: true });
    g.drawImage(mask, 0, 0);
    var m = g.getImageData(0, 0, canvas.width, canvas.height).data;
    for (var id of kPieceSprites) {
      var sprite = state.pictures[id];
      if (!sprite || sprite.width !== mask.width || sprite.height !== mask.height) continue;
      g.clearRect(0, 0, canvas.width, canvas.height);
      g.drawImage(sprite, 0, 0);
      var picture = g.getImageData(0, 0, canvas.width, canvas.height);
      var p = picture.data, pair = true;
      for (var i = 0; i < p.length && pair; i += 4) {
        var maskBlack = m[i] === 0 && m[i + 1] === 0 && m[i + 2] === 0;
        var maskWhite = m[i] === 255 && m[i + 1] === 255 && m[i + 2] === 255;
        pair = maskBlack || (maskWhite && p[i] === 0 && p[i + 1] === 0 && p[i + 2] === 0);
        p[i + 3] = maskBlack ? 255 : 0;
      }
      // A bitmap, not a canvas: a canvas read back on the processor is slow to draw from.
      if (pair) state.maskedSprites[kPieceMask + ':' + id] = await createImageBitmap(picture);
    }
  }

  // One step of a frame's plan, in the back buffer.
  function drawStep(kind, x, y, width, height, x2, y2, what, raster, colour, text) {
    var g = state.backContext;
    switch (kind) {
      case kDraw.FillBlack:
        g.fillStyle = '#000';
        g.fillRect(x, y, width, height);
        break;
      case kDraw.CopyBackground:
        if (width > 0 && height > 0) g.drawImage(state.background, x, y, width, height, x, y, width, height);
        break;
      case kDraw.Line:
        // The board's lines run along a row or a column; the end point is not drawn.
        g.fillStyle = 'rgb(0,192,255)';
        if (y === y2) g.fillRect(Math.min(x, x2 + 1), y, Math.abs(x2 - x), 1);
        else if (x === x2) g.fillRect(x, Math.min(y, y2 + 1), 1, Math.abs(y2 - y));
        break;
      case kDraw.FillCell:
        if (kBrushColours[what]) {
          g.fillStyle = kBrushColours[what];
          g.fillRect(x, y, width, height);
        }
        break;
      case kDraw.Bitmap: {
        var picture = state.pictures[what];
        if (!picture || width <= 0 || height <= 0) break;  // a missing picture draws nothing
        g.globalCompositeOperation = kRasterModes[raster] || 'source-over';
        g.drawImage(picture, x, y, width, height);
        g.globalCompositeOperation = 'source-over';
        break;
      }
      case kDraw.Text:
        g.font = kFont;
        g.textBaseline = 'alphabetic';
        g.fillStyle = css(colour);
        g.fillText(text, x, y + kFontAscent);
        break;
    }
  }

  // The background picture (one black pixel above one dark blue one) at the logical size,
  // repeated pixel for pixel, never blended.
  function refillBackground(width, height) {
    var g = state.backgroundContext;
    g.fillStyle = '#000';
    g.fillRect(0, 0, kBufferSide, kBufferSide);
    var picture = state.pictures[148];
    if (picture && width > 0 && height > 0) g.drawImage(picture, 0, 0, width, height);
  }

  function present(sourceWidth, sourceHeight, x, y, width, height, smoothing, black) {
    draw(-1);  // a mask still waiting for its sprite is drawn as it is
    var g = state.screenContext;
    g.imageSmoothingEnabled = smoothing;
    g.imageSmoothingQuality = 'high';
    if (width > 0 && height > 0 && sourceWidth > 0 && sourceHeight > 0) {
      g.drawImage(state.back, 0, 0, sourceWidth, sourceHeight, x, y, width, height);
    }
    g.fillStyle = '#000';
    for (var i = 0; i + 3 < black.length; i += 4) g.fillRect(black[i], black[i + 1], black[i + 2], black[i + 3]);
    // The moment the first frame is on the screen, for measuring the start.
    if (!state.framesShown++) performance.mark('kalvero4-first-frame');
  }

  function loadPictures() {
    return Promise.all(Object.keys(kPictureFiles).map(function (id) {
      return new Promise(function (resolve) {
        var image = new Image();
        image.onload = function () { state.pictures[id] = image; resolve(); };
        image.onerror = function () { resolve(); };  // drawn as nothing, as a missing resource
        image.src = 'pictures/' + kPictureFiles[id] + '.bmp';
      });
    }));
  }

  // ----- The window frame --------------------------------------------------------------------

  function element(id) { return document.getElementById(id); }

  function setTitle(normal) {
    var title = KalveroResources.strings[normal ? 103 : 110];
    element('title-text').textContent = title;
    document.title = title;
    var icon = 'pictures/' + (normal ? 'kalvero4' : 'discreet') + '.ico';
    element('title-icon').src = icon;
    element('page-icon').href = icon;
  }

  function clientSize() {
    return [Math.max(0, state.outerWidth - 2 * kBorder),
            Math.max(0, state.outerHeight - 2 * kBorder - kCaption - kMenuBar)];
  }

  // Sizes the frame and tells the game its new client area at once (the game is inside its
  // own call when it asks); the area is then painted afresh.
  function resizeWindow(width, height) {
    state.outerWidth = Math.max(kMinimumWidth, width);
    state.outerHeight = Math.max(kMinimumHeight, height);
    var frame = element('window');
    frame.style.width = state.outerWidth + 'px';
    frame.style.height = state.outerHeight + 'px';
    var size = clientSize();
    state.screen.width = size[0];
    state.screen.height = size[1];
    fitToScreen();
    Module._WebResized(size[0], size[1]);
    requestRepaint();
  }

  // On a screen narrower than the window, the whole window is scaled down to its width.
  function fitToScreen() {
    var frame = element('window');
    var room = document.documentElement.clientWidth - 16;
    var scale = state.outerWidth > room && room > 0 ? room / state.outerWidth : 1;
    frame.style.transform = scale < 1 ? 'scale(' + scale + ')' : '';
    element('desktop').style.height = (state.outerHeight * scale + 16) + 'px';
  }

  function buildMenu() {
    var bar = element('menu-bar');
    var added = [
      { separator: true },
      { text: 'E&xporter la sauvegarde…', action: exportSaveFile, id: 'menu-export' },
      { text: 'I&mporter une sauvegarde…', action: function () { element('import-file').click(); },
        id: 'menu-import' },
      { separator: true },
    ];
    KalveroResources.menu.forEach(function (popup, index) {
      var items = popup.items.slice();
      // The page's own entries, for carrying the save file to and from the Windows program,
      // go in the first menu just before "&Quitter".
      if (index === 0) items.splice(items.length - 1, 0, ...added);
      var title = document.createElement('div');
      title.className = 'menu-title';
      labelInto(title, popup.text);
      title.appendChild(buildPopup(items));
      title.addEventListener('mousedown', function (e) {
        if (e.target.closest('.menu-popup')) return;
        e.preventDefault();
        openMenu(state.menuOpen === title ? null : title);
      });
      title.addEventListener('mouseenter', function () { if (state.menuOpen) openMenu(title); });
      bar.appendChild(title);
    });
    document.addEventListener('mousedown', function (e) {
      if (state.menuOpen && !e.target.closest('.menu-title')) openMenu(null);
    });
  }

  function buildPopup(items) {
    var list = document.createElement('div');
    list.className = 'menu-popup';
    items.forEach(function (item) {
      var row = document.createElement('div');
      if (item.separator) {
        row.className = 'menu-separator';
        list.appendChild(row);
        return;
      }
      row.className = 'menu-item';
      if (item.id) row.id = item.id;
      var check = document.createElement('span');
      check.className = 'menu-check';
      var label = document.createElement('span');
      label.className = 'menu-label';
      var key = document.createElement('span');
      key.className = 'menu-key';
      key.textContent = labelInto(label, item.text, false, true);
      row.append(check, label, key);
      if (item.items) {
        row.classList.add('menu-submenu');
        row.appendChild(buildPopup(item.items));
      } else {
        row.dataset.command = item.command || '';
        row.addEventListener('mouseup', function (e) {
          e.stopPropagation();
          openMenu(null);
          if (item.action) post(item.action); else menuCommand(item.command);
        });
      }
      list.appendChild(row);
    });
    return list;
  }

  function openMenu(title) {
    if (state.menuOpen) state.menuOpen.classList.remove('open');
    state.menuOpen = title;
    if (title) title.classList.add('open');
  }

  // The keyboard in the menus: Alt and an underlined letter opens a menu, a letter chooses an
  // entry of the open one, Escape closes it.
  function menuKey(e) {
    var letter = e.key.length === 1 ? e.key.toLowerCase() : '';
    if (e.altKey && letter) {
      var title = Array.from(document.querySelectorAll('.menu-title')).find(function (t) {
        var u = t.querySelector(':scope > u');
        return u && u.textContent.toLowerCase() === letter;
      });
      if (!title) return false;
      e.preventDefault();
      openMenu(title);
      return true;
    }
    if (!state.menuOpen) return false;
    e.preventDefault();
    if (e.key === 'Escape') { openMenu(null); return true; }
    var rows = state.menuOpen.querySelectorAll(':scope > .menu-popup > .menu-item');
    var row = Array.from(rows).find(function (r) {
      var u = r.querySelector(':scope > .menu-label > u');
      return u && u.textContent.toLowerCase() === letter;
    });
    if (row) row.dispatchEvent(new MouseEvent('mouseup', { bubbles: true }));
    return true;
  }

  function menuCommand(command) {
    if (state.modal > 0 || state.ended) return;
    message('WebCommand', [command]);
  }

  function setCheck(command, checked) {
    document.querySelectorAll('[data-command="' + command + '"]').forEach(function (row) {
      row.classList.toggle('checked', checked);
    });
  }

  // ----- Pointer, touch and keys -------------------------------------------------------------

  // Client pixels of an event, whatever the scale the page shows the window at.
  function clientPoint(e) {
    var box = state.screen.getBoundingClientRect();
    var x = Math.floor((e.clientX - box.left) * state.screen.width / (box.width || 1));
    var y = Math.floor((e.clientY - box.top) * state.screen.height / (box.height || 1));
    return [x, y];
  }

  function pointerTo(point) {
    var last = state.lastPointer;
    if (last && last[0] === point[0] && last[1] === point[1]) return;
    state.lastPointer = point;
    message('WebPointer', point);
  }

  function inputAllowed() { return state.started && state.modal === 0 && !state.ended; }

  function bindInput() {
    var screen = state.screen;
    screen.addEventListener('pointermove', function (e) {
      if (inputAllowed() && e.pointerType === 'mouse') pointerTo(clientPoint(e));
    });
    // A touch is a pointer that arrives where it presses: the column under the finger first,
    // then the click.
    screen.addEventListener('pointerdown', function (e) {
      if (!inputAllowed() || (e.pointerType === 'mouse' && e.button !== 0)) return;
      e.preventDefault();
      openMenu(null);
      pointerTo(clientPoint(e));
      message('WebClick');
    });
    document.addEventListener('keydown', function (e) {
      if (!inputAllowed() || e.ctrlKey || e.metaKey) return;
      if (menuKey(e)) return;
      if (e.altKey) return;
      var letter = e.key.length === 1 ? e.key.toUpperCase() : '';
      var command = KalveroResources.accelerators[letter];
      if (command && !e.shiftKey && e.key === letter.toLowerCase()) {
        e.preventDefault();
        openMenu(null);
        menuCommand(command);
        message('WebPassingMessages', [1]);  // the key's release, after the command
      } else if (e.key.length === 1 && e.key.charCodeAt(0) < 256) {
        e.preventDefault();
        message('WebChar', [e.key.charCodeAt(0)]);
      }
    });
    // The corner grip resizes the window, as a window's sizing border does.
    var grip = element('grip');
    grip.addEventListener('pointerdown', function (e) {
      if (!inputAllowed()) return;
      e.preventDefault();
      grip.setPointerCapture(e.pointerId);
      var start = [e.clientX, e.clientY, state.outerWidth, state.outerHeight];
      var scale = element('window').getBoundingClientRect().width / state.outerWidth || 1;
      function move(m) {
        var width = Math.round(start[2] + (m.clientX - start[0]) / scale);
        var height = Math.round(start[3] + (m.clientY - start[1]) / scale);
        post(function () { resizeWindow(width, height); });
      }
      function up() {
        grip.removeEventListener('pointermove', move);
        grip.removeEventListener('pointerup', up);
      }
      grip.addEventListener('pointermove', move);
      grip.addEventListener('pointerup', up);
    });
    element('close-box').addEventListener('click', function () {
      if (inputAllowed()) message('WebClose');
    });
    window.addEventListener('resize', fitToScreen);
  }

  // ----- Message boxes -----------------------------------------------------------------------

  // A modal box over the whole page, with the Windows program's buttons and their answers:
  // Enter gives the first button, Escape Cancel where there is one (OK where OK is alone).
  function ask(text, title, flags) {
    return new Promise(function (resolve) {
      var buttons = { 0: [['OK', kAnswer.Ok]], 1: [['OK', kAnswer.Ok], ['Annuler', kAnswer.Cancel]],
                      4: [['Oui', kAnswer.Yes], ['Non', kAnswer.No]] }[flags & 0x0f] || [['OK', kAnswer.Ok]];
      var escape = (flags & 0x0f) === 1 ? kAnswer.Cancel : (flags & 0x0f) === 0 ? kAnswer.Ok : 0;
      var icon = { 0x10: 'stop', 0x30: 'exclamation', 0x40: 'information' }[flags & 0xf0] || '';
      var box = windowBox('message-box', title, escape !== 0, function () { done(escape); });
      box.body.classList.add('message-box-body');
      var row = document.createElement('div');
      row.className = 'message-row';
      if (icon) {
        var mark = document.createElement('div');
        mark.className = 'message-icon ' + icon;
        mark.textContent = { stop: '×', exclamation: '!', information: 'i' }[icon];
        row.appendChild(mark);
      }
      var words = document.createElement('div');
      words.className = 'message-text';
      words.textContent = text;
      row.appendChild(words);
      var buttonRow = document.createElement('div');
      buttonRow.className = 'message-buttons';
      buttons.forEach(function (b) {
        var button = document.createElement('button');
        button.textContent = b[0];
        button.addEventListener('click', function () { done(b[1]); });
        buttonRow.appendChild(button);
      });
      box.body.append(row, buttonRow);
      box.frame.addEventListener('keydown', function (e) {
        if (e.key === 'Escape' && escape !== 0) { e.preventDefault(); done(escape); }
        if (e.key === 'Enter' && document.activeElement.tagName !== 'BUTTON') { e.preventDefault(); done(buttons[0][1]); }
        e.stopPropagation();
      });
      showBox(box);
      buttonRow.firstChild.focus();
      function done(answer) {
        closeBox(box);
        resolve(answer);
      }
    });
  }

  // A window of its own over a modal layer: caption, close box, body.
  function windowBox(className, caption, closable, onClose) {
    var layer = document.createElement('div');
    layer.className = 'modal-layer';
    var frame = document.createElement('div');
    frame.className = 'box ' + className;
    frame.tabIndex = -1;
    var bar = document.createElement('div');
    bar.className = 'box-caption';
    var title = document.createElement('span');
    title.textContent = caption;
    bar.appendChild(title);
    if (closable) {
      var close = document.createElement('button');
      close.className = 'box-close';
      close.textContent = '×';
      close.tabIndex = -1;
      close.addEventListener('click', onClose);
      bar.appendChild(close);
    }
    var body = document.createElement('div');
    body.className = 'box-body';
    frame.append(bar, body);
    layer.appendChild(frame);
    return { layer: layer, frame: frame, body: body };
  }

  function showBox(box) {
    state.modal += 1;
    openMenu(null);
    element('desktop').appendChild(box.layer);
    var anchor = element('window').getBoundingClientRect();
    var size = box.frame.getBoundingClientRect();
    var left = box.left !== undefined ? anchor.left + box.left
               : anchor.left + (anchor.width - size.width) / 2;
    var top = box.top !== undefined ? anchor.top + box.top
              : anchor.top + Math.max(0, (anchor.height - size.height) / 2);
    box.frame.style.left = Math.max(0, Math.min(left, window.innerWidth - size.width)) + 'px';
    box.frame.style.top = Math.max(0, top) + 'px';
  }

  function closeBox(box) {
    box.layer.remove();
    state.modal -= 1;
  }

  // ----- Dialogs -----------------------------------------------------------------------------

  // Dialog units to pixels by the dialog's font: a quarter of the average character width
  // across, an eighth of the character height down.
  var kFontUnits = { 'MS Sans Serif': [6, 13], 'Arial': [6, 15], 'Tahoma': [6, 14], 'Comic Sans MS': [7, 18] };
  var kFontFaces = {
    'MS Sans Serif': '11px "MS Sans Serif", Tahoma, Arial, "Liberation Sans", sans-serif',
    'Arial': '12px Arial, "Liberation Sans", "DejaVu Sans", sans-serif',
    'Tahoma': '12px Tahoma, Arial, "Liberation Sans", sans-serif',
    'Comic Sans MS': '13px "Comic Sans MS", "Comic Neue", "DejaVu Sans", sans-serif',
  };
  // What the Windows dialogs draw themselves in place of their buttons' texts.
  var kOwnerDrawnTexts = { 132: { 1: 'Ok', 2: 'Pas Ok' }, 161: { 1: 'Ok' } };

  function openDialog(kind) {
    var id = kDialogIds[kind];
    var template = KalveroResources.dialogs[id];
    var units = kFontUnits[template.font[1]] || [6, 13];
    function px(v, axis) { return Math.round(v * units[axis] / (axis === 0 ? 4 : 8)); }
    var sysmenu = template.style.indexOf('WS_SYSMENU') >= 0;
    var box = windowBox('dialog dialog-' + id, template.caption, sysmenu, function () { command(kCancel); });
    box.body.style.width = px(template.size[0], 0) + 'px';
    box.body.style.height = px(template.size[1], 1) + 'px';
    box.body.style.font = kFontFaces[template.font[1]] || kFontFaces['MS Sans Serif'];
    var dialog = { id: id, box: box, controls: {}, groups: [], group: null };
    template.controls.forEach(function (t) {
      var control = makeControl(dialog, t);
      control.style.left = px(t.rect[0], 0) + 'px';
      control.style.top = px(t.rect[1], 1) + 'px';
      control.style.width = px(t.rect[2], 0) + 'px';
      control.style.height = px(t.rect[3], 1) + 'px';
      control.classList.add('control');
      if (t.id >= 0 || t.id === -1) control.dataset.control = t.id;
      box.body.appendChild(control);
      if (t.id !== -1) dialog.controls[t.id] = control;
    });
    box.frame.addEventListener('keydown', function (e) {
      e.stopPropagation();
      if (e.key === 'Escape') { e.preventDefault(); command(kCancel); }
      if (e.key === 'Enter' && document.activeElement.tagName !== 'BUTTON') { e.preventDefault(); command(kOk); }
    });
    // Placed as Windows places a dialog without its own centring: at its template's place from
    // the top-left corner of the main window's client area.
    var client = state.screen.getBoundingClientRect();
    var windowBoxRect = element('window').getBoundingClientRect();
    box.left = client.left - windowBoxRect.left;
    box.top = client.top - windowBoxRect.top;
    state.dialog = dialog;
    state.dialogCommands = [];
    showBox(box);
    var first = box.body.querySelector('[data-tabstop]');
    (first || box.frame).focus();
  }

  function makeControl(dialog, t) {
    var style = t.style;
    var el;
    if (t.class === 'Button' && style.indexOf('BS_GROUPBOX') >= 0) {
      el = document.createElement('fieldset');
      var legend = document.createElement('legend');
      labelInto(legend, t.text);
      el.appendChild(legend);
      el.setText = function (text) { labelInto(legend, text); };
    } else if (t.class === 'Button' && (style.indexOf('RADIO') >= 0 || style.indexOf('CHECKBOX') >= 0)) {
      var radio = style.indexOf('RADIO') >= 0;
      el = document.createElement('label');
      var input = document.createElement('input');
      input.type = radio ? 'radio' : 'checkbox';
      var span = document.createElement('span');
      labelInto(span, t.text);
      el.append(input, span);
      el.input = input;
      el.setText = function (text) { labelInto(span, text); };
      if (radio) {
        if (style.indexOf('WS_GROUP') >= 0 || !dialog.group) dialog.groups.push(dialog.group = []);
        var group = dialog.group;
        group.push(input);
        input.addEventListener('click', function () {
          group.forEach(function (other) { other.checked = other === input; });
          command(t.id);
        });
      } else {
        input.addEventListener('click', function () { command(t.id); });
      }
      if (style.indexOf('WS_TABSTOP') >= 0) input.dataset.tabstop = '1';
    } else if (t.class === 'Button') {
      el = document.createElement('button');
      var drawn = (kOwnerDrawnTexts[dialog.id] || {})[t.id];
      labelInto(el, drawn !== undefined ? drawn : t.text);
      if (style.indexOf('BS_OWNERDRAW') >= 0) el.classList.add('owner-drawn');
      if (style.indexOf('BS_DEFPUSHBUTTON') >= 0) el.classList.add('default');
      el.addEventListener('click', function () { command(t.id); });
      if (style.indexOf('WS_TABSTOP') >= 0) el.dataset.tabstop = '1';
    } else if (t.class === 'Edit') {
      el = document.createElement('input');
      el.type = 'text';
      el.spellcheck = false;
      el.autocomplete = 'off';
      if (style.indexOf('ES_CENTER') >= 0) el.style.textAlign = 'center';
      // Every change, and the focus coming or going, reaches the dialog as a command.
      el.addEventListener('input', function () {
        if (style.indexOf('ES_NUMBER') >= 0) el.value = el.value.replace(/[^0-9]/g, '');
        command(t.id);
      });
      el.addEventListener('focus', function () { command(t.id); });
      el.addEventListener('blur', function () { command(t.id); });
      if (style.indexOf('WS_TABSTOP') >= 0) el.dataset.tabstop = '1';
      el.setText = function (text) { el.value = text; };
      el.getText = function () { return el.value; };
    } else if (t.class === 'ListBox') {
      el = document.createElement('select');
      el.size = 2;
      el.addEventListener('change', function () { command(t.id); });
      el.addEventListener('focus', function () { command(t.id); });
      el.addEventListener('blur', function () { command(t.id); });
      if (style.indexOf('WS_TABSTOP') >= 0) el.dataset.tabstop = '1';
    } else if (t.icon !== null) {
      el = document.createElement('img');
      el.src = 'pictures/kalvero4.ico';
      el.className = 'dialog-icon';
    } else {
      el = document.createElement('div');
      el.className = 'static';
      if (style.indexOf('SS_RIGHT') >= 0) el.style.textAlign = 'right';
      // A static one line high never wraps: in a face wider than the dialog's own, its last
      // word runs on rather than onto a line that is not shown.
      if (t.rect[3] < 16) el.classList.add('one-line');
      var noPrefix = style.indexOf('SS_NOPREFIX') >= 0;
      el.setText = function (text) { labelInto(el, text, noPrefix); };
      el.setText(t.text);
    }
    if (!el.getText) el.getText = function () { return el.textContent; };
    return el;
  }

  // A command of the open dialog: handed to the game's dialog loop, which waits for it.
  function command(control) {
    if (!state.dialog) return;
    var waiter = state.dialogWaiters.shift();
    if (waiter) waiter(control); else state.dialogCommands.push(control);
  }

  function nextDialogCommand() {
    return new Promise(function (resolve) {
      if (state.dialogCommands.length > 0) resolve(state.dialogCommands.shift());
      else state.dialogWaiters.push(resolve);
    });
  }

  function closeDialog() {
    var dialog = state.dialog;
    state.dialog = null;
    state.dialogWaiters = [];
    state.dialogCommands = [];
    if (dialog) closeBox(dialog.box);
  }

  function dialogControl(id) { return state.dialog && state.dialog.controls[id]; }

  function dialogChecked(id) {
    var control = dialogControl(id);
    return !!(control && control.input && control.input.checked);
  }

  function setDialogChecked(id, checked) {
    var control = dialogControl(id);
    if (control && control.input) control.input.checked = checked;
  }

  function dialogText(id) {
    var control = dialogControl(id);
    return control ? control.getText() : '';
  }

  function setDialogText(id, text) {
    var control = dialogControl(id);
    if (control && control.setText) control.setText(text);
  }

  function addListEntry(id, text) {
    var list = dialogControl(id);
    if (list) list.appendChild(new Option(text));
  }

  function listSelection(id) {
    var list = dialogControl(id);
    return list ? list.selectedIndex : -1;
  }

  function setListSelection(id, index) {
    var list = dialogControl(id);
    if (list) list.selectedIndex = index >= 0 && index < list.options.length ? index : -1;
  }

  // ----- The save file -----------------------------------------------------------------------

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

  // ----- Start and end -----------------------------------------------------------------------

  // The exit code is always 0 but for the engine's allocation failure, whose message is already
  // in the console: the page ends the same way for both.
  function endProgram() {
    state.endRequested = true;
  }

  async function finishProgram() {
    if (state.ended) return;
    state.ended = true;
    await storeFiles();
    showEnded('Kalvero 4 est terminé.');
  }

  function showEnded(text) {
    document.body.classList.remove('waiting');
    element('ended-text').textContent = text;
    element('ended').hidden = false;
    element('window').classList.add('closed');
  }

  async function start() {
    state.back = makeCanvas(kBufferSide, kBufferSide);
    state.backContext = state.back.getContext('2d');
    state.background = makeCanvas(kBufferSide, kBufferSide);
    state.backgroundContext = state.background.getContext('2d');
    state.backgroundContext.imageSmoothingEnabled = false;
    state.backContext.imageSmoothingEnabled = false;
    state.screen = element('screen');
    state.screenContext = state.screen.getContext('2d');
    buildMenu();
    bindInput();
    element('import-file').addEventListener('change', function (e) {
      if (e.target.files.length > 0) importSaveFile(e.target.files[0]);
    });
    element('restart').addEventListener('click', function () { location.reload(); });
    document.addEventListener('visibilitychange', function () {
      if (document.visibilityState === 'hidden') storeNow();
    });
    window.addEventListener('pagehide', storeNow);
    await Promise.all([loadPictures().then(prepareMaskedSprites), readStorage()]);
    state.started = true;
    post(function () { return call('WebStart'); });
  }

  return {
    decode: decode, decodeZ: decodeZ, encode: encode,
    requestRepaint: requestRepaint, repaintBegins: repaintBegins, endProgram: endProgram, setTitle: setTitle,
    resizeWindow: resizeWindow, setCheck: setCheck,
    draw: draw, refillBackground: refillBackground, present: present,
    ask: ask, openDialog: openDialog, closeDialog: closeDialog, nextDialogCommand: nextDialogCommand,
    dialogChecked: dialogChecked, setDialogChecked: setDialogChecked,
    dialogText: dialogText, setDialogText: setDialogText,
    addListEntry: addListEntry, listSelection: listSelection, setListSelection: setListSelection,
    storeFiles: storeFiles, start: start, fail: fail, state: state,
  };
})();

Module.onRuntimeInitialized = function () { Page.start(); };
// The engine's allocation failure writes its message to the console and ends the program.
Module.onExit = function () { Page.endProgram(); };
Module.onAbort = function (what) { Page.fail(what); };
