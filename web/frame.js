// The window frame around the client area: its title and icon, its own size and the client
// area the game is told of, the window maximised on a screen too small for it, the screen
// canvas's pixels, and dialogs stretched to a finger's size.
(function (Page) {
  'use strict';
  var state = Page.state;
  var element = Page.element;

  // The frame around the client area, in pixels, as the Windows program's window has it: a
  // sizing border all round, the caption and the menu bar. The outer sizes that the game asks
  // for include them, so the client area comes out as on Windows; where a finger makes the
  // caption and the menu bar taller, the frame grows and the client area stays.
  var kBorder = 4;
  var kCaption = 19;
  var kMenuBar = 19;

  var kMinimumWidth = 120;
  var kMinimumHeight = kCaption + kMenuBar + 2 * kBorder;

  // The desktop's margin around a window that is not maximised.
  var kDesktopMargin = 8;

  // The game's logical size follows the client area for its first ten messages after a start or
  // a new board size, and is fixed from then on (a larger client area then stretches it).
  var kSettlingMessages = 10;

  // The height of a finger's target, in CSS pixels.
  var kFingerHeight = 44;

  var finger = window.matchMedia('(pointer: coarse)');

  Object.assign(state, {
    maximised: false,
    clientWidth: 0, clientHeight: 0,  // the client area the game was last told of
    pixelRatio: 1,                    // device pixels per CSS pixel of the screen canvas
  });

  function setTitle(normal) {
    var ids = KalveroResources.ids;
    var title = KalveroResources.strings[normal ? ids.IDS_APP_TITLE : ids.IDS_DISCREET_TITLE];
    element('title-text').textContent = title;
    document.title = title;
    var icon = KalveroResources.icons[normal ? ids.IDI_KALVERO4 : ids.IDI_DISCREET];
    element('title-icon').src = icon;
    element('page-icon').href = icon;
  }

  // The client area of the window at its own size.
  function ownClientSize() {
    return [Math.max(0, state.outerWidth - 2 * kBorder),
            Math.max(0, state.outerHeight - 2 * kBorder - kCaption - kMenuBar)];
  }

  // The client area of the maximised window: the screen below the caption and the menu bar.
  function shownClientSize() {
    var box = element('client').getBoundingClientRect();
    return [Math.floor(box.width), Math.floor(box.height)];
  }

  // A screen is too small for the window when the window at its own size does not fit on it,
  // and always under a finger: a phone's or a tablet's screen shows one program at a time.
  function screenTooSmall() {
    if (finger.matches) return true;
    var own = ownClientSize();
    var chrome = element('window').querySelector('.title-bar').offsetHeight +
                 element('menu-bar').offsetHeight;
    var room = [document.documentElement.clientWidth - 2 * kDesktopMargin,
                window.innerHeight - 2 * kDesktopMargin];
    return own[0] + 2 * kBorder > room[0] || own[1] + 2 * kBorder + chrome > room[1];
  }

  // Shows the window at its own size on the desktop, or maximised over the whole screen:
  // caption and menu bar on top, the client area filling the rest, and no border.
  function layOut() {
    var client = element('client');
    client.style.width = client.style.height = '';
    state.maximised = screenTooSmall();
    document.documentElement.classList.toggle('maximised', state.maximised);
    if (!state.maximised) {
      var own = ownClientSize();
      client.style.width = own[0] + 'px';
      client.style.height = own[1] + 'px';
    }
  }

  // Tells the game its client area, as the window's new size reaches its handler, and sizes the
  // screen canvas for it: the client area on the page, the device's pixels in the canvas, so
  // that the frame is presented pixel for pixel at any pixel ratio.
  function tellClientSize(size) {
    var ratio = window.devicePixelRatio || 1;
    var screen = state.screen;
    state.clientWidth = size[0];
    state.clientHeight = size[1];
    state.pixelRatio = ratio;
    screen.style.width = size[0] + 'px';
    screen.style.height = size[1] + 'px';
    var width = Math.round(size[0] * ratio);
    var height = Math.round(size[1] * ratio);
    // Setting a canvas's size clears it, even to the same size.
    if (screen.width !== width) screen.width = width;
    if (screen.height !== height) screen.height = height;
    Module._WebResized(size[0], size[1]);
    Page.requestRepaint();
  }

  function told(size) {
    return size[0] === state.clientWidth && size[1] === state.clientHeight &&
           state.pixelRatio === (window.devicePixelRatio || 1);
  }

  // The window sized by the game (or by its grip): the game is told its new client area at once,
  // since it is inside its own call when it asks; the area is then painted afresh. A maximised
  // window is first told the client area of its own size, at which the game's logical size
  // settles; the screen's area follows once the game's call is over.
  function resizeWindow(width, height) {
    state.outerWidth = Math.max(kMinimumWidth, width);
    state.outerHeight = Math.max(kMinimumHeight, height);
    layOut();
    tellClientSize(ownClientSize());
    if (state.maximised) Page.post(fitClientArea);
  }

  // The game told the client area the window shows now. A maximised window's picture is
  // stretched by the game's own fit, as when a player enlarges the window on Windows: the
  // messages that come while the player's hand goes to the maximise box, which settle the
  // logical size at the window's own client area if it has not settled yet, pass first.
  function fitClientArea() {
    var size = state.maximised ? shownClientSize() : ownClientSize();
    if (told(size)) return;
    if (state.maximised) Module._WebPassingMessages(kSettlingMessages);
    tellClientSize(size);
  }

  // The screen turned or resized, or its pixel ratio changed: the window is laid out again and
  // the game told the new client area, in the queue of messages, or at once while a dialog or a
  // box waits for the player (as Windows delivers a new size during their message loop).
  function fitToScreen() {
    if (!state.outerWidth || state.ended) return;
    layOut();
    if (told(state.maximised ? shownClientSize() : ownClientSize())) return;
    if (state.modal > 0) fitClientArea(); else Page.post(fitClientArea);
  }

  // Under a finger, a dialog's template is stretched downwards until its smallest button, radio
  // button or check box is a finger tall; places and sizes across stay the template's, and the
  // controls, which never overlap in a template, still do not. An icon keeps its size.
  function stretchForFinger(body) {
    if (!finger.matches) return;
    var controls = Array.from(body.querySelectorAll(':scope > .control, :scope > .dialog-icon'));
    var heights = controls.filter(function (c) { return c.matches('button, label'); })
                          .map(function (c) { return parseFloat(c.style.height); });
    if (heights.length === 0) return;
    var factor = Math.max(1, kFingerHeight / Math.min.apply(null, heights));
    controls.forEach(function (c) {
      var top = parseFloat(c.style.top) || 0;
      var height = parseFloat(c.style.height) || c.offsetHeight;
      if (c.classList.contains('dialog-icon')) {
        c.style.top = Math.round(top * factor + (height * factor - height) / 2) + 'px';
      } else {
        c.style.top = Math.round(top * factor) + 'px';
        c.style.height = Math.round(height * factor) + 'px';
      }
    });
    body.style.height = Math.round(parseFloat(body.style.height) * factor) + 'px';
  }

  // Pointer types come and go (a mouse plugged into a tablet): the frame follows.
  finger.addEventListener('change', fitToScreen);

  Object.assign(Page, {
    setTitle: setTitle, resizeWindow: resizeWindow, fitToScreen: fitToScreen,
    stretchForFinger: stretchForFinger,
  });
})(Page);
