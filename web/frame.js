// The window frame around the client area: its title and icon, its size and the client area
// the game is told of, and its fit to the browser's screen.
(function (Page) {
  'use strict';
  var state = Page.state;
  var element = Page.element;

  // The frame around the client area, in pixels, as the Windows program's window has it: a
  // sizing border all round, the caption and the menu bar. The outer sizes that the game asks
  // for include them, so the client area comes out as on Windows.
  var kBorder = 4;
  var kCaption = 19;
  var kMenuBar = 19;

  var kMinimumWidth = 120;
  var kMinimumHeight = kCaption + kMenuBar + 2 * kBorder;


  function setTitle(normal) {
    var ids = KalveroResources.ids;
    var title = KalveroResources.strings[normal ? ids.IDS_APP_TITLE : ids.IDS_DISCREET_TITLE];
    element('title-text').textContent = title;
    document.title = title;
    var icon = KalveroResources.icons[normal ? ids.IDI_KALVERO4 : ids.IDI_DISCREET];
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
    Page.requestRepaint();
  }

  // On a screen narrower than the window, the whole window is scaled down to its width.
  function fitToScreen() {
    var frame = element('window');
    var room = document.documentElement.clientWidth - 16;
    var scale = state.outerWidth > room && room > 0 ? room / state.outerWidth : 1;
    frame.style.transform = scale < 1 ? 'scale(' + scale + ')' : '';
    element('desktop').style.height = (state.outerHeight * scale + 16) + 'px';
  }

  Object.assign(Page, {
    setTitle: setTitle, resizeWindow: resizeWindow, fitToScreen: fitToScreen,
  });
})(Page);
