// The pointer, touch and keys over the window: pointer moves, clicks and taps on the board,
// character keys and accelerators, the sizing grip and the close box.
(function (Page) {
  'use strict';
  var state = Page.state;
  var element = Page.element;

  // Client pixels of an event: the screen canvas covers the client area, whatever the pixel
  // ratio of its own pixels.
  function clientPoint(e) {
    var box = state.screen.getBoundingClientRect();
    var x = Math.floor((e.clientX - box.left) * state.clientWidth / (box.width || 1));
    var y = Math.floor((e.clientY - box.top) * state.clientHeight / (box.height || 1));
    return [x, y];
  }

  function pointerTo(point) {
    var last = state.lastPointer;
    if (last && last[0] === point[0] && last[1] === point[1]) return;
    state.lastPointer = point;
    Page.message('WebPointer', point);
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
      Page.openMenu(null);
      pointerTo(clientPoint(e));
      Page.message('WebClick');
    });
    document.addEventListener('keydown', function (e) {
      if (!inputAllowed() || e.ctrlKey || e.metaKey) return;
      if (Page.menuKey(e)) return;
      if (e.altKey) return;
      var letter = e.key.length === 1 ? e.key.toUpperCase() : '';
      var command = KalveroResources.accelerators[letter];
      if (command && !e.shiftKey && e.key === letter.toLowerCase()) {
        e.preventDefault();
        Page.openMenu(null);
        Page.menuCommand(command);
        Page.message('WebPassingMessages', [1]);  // the key's release, after the command
      } else if (e.key.length === 1 && e.key.charCodeAt(0) < 256) {
        e.preventDefault();
        Page.message('WebChar', [e.key.charCodeAt(0)]);
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
        Page.post(function () { Page.resizeWindow(width, height); });
      }
      function up() {
        grip.removeEventListener('pointermove', move);
        grip.removeEventListener('pointerup', up);
      }
      grip.addEventListener('pointermove', move);
      grip.addEventListener('pointerup', up);
    });
    // A long press or a right click on the window or a box opens no menu of the browser's, as
    // none opens on the Windows program's; a text field keeps its own.
    element('desktop').addEventListener('contextmenu', function (e) {
      if (!e.target.closest('input, select')) e.preventDefault();
    });
    element('close-box').addEventListener('click', function () {
      if (inputAllowed()) Page.message('WebClose');
    });
    window.addEventListener('resize', Page.fitToScreen);
  }

  Object.assign(Page, {
    bindInput: bindInput,
  });
})(Page);
