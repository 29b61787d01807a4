// Message boxes, and the modal window box that message boxes and dialogs are both drawn in.
(function (Page) {
  'use strict';
  var state = Page.state;
  var element = Page.element;

  // The answers, the button sets and the icons as the core numbers them
  // (tools/make_page_resources.py reads them at build time).
  var core = KalveroResources.core;
  var kAnswer = { Ok: core.kAnswerOk, Cancel: core.kAnswerCancel, Yes: core.kAnswerYes, No: core.kAnswerNo };
  var kButtonBits = 0x0f;  // the low bits choose the buttons, the next ones the icon
  var kButtons = {};
  kButtons[core.kAskOk] = [['OK', kAnswer.Ok]];
  kButtons[core.kAskOkCancel] = [['OK', kAnswer.Ok], ['Annuler', kAnswer.Cancel]];
  kButtons[core.kAskYesNo] = [['Oui', kAnswer.Yes], ['Non', kAnswer.No]];
  var kIcons = {};
  kIcons[core.kAskStop] = 'stop';
  kIcons[core.kAskExclamation] = 'exclamation';
  kIcons[core.kAskInformation] = 'information';

  // A modal box over the whole page, with the Windows program's buttons and their answers:
  // Enter gives the first button, Escape Cancel where there is one (OK where OK is alone).
  function ask(text, title, flags) {
    return new Promise(function (resolve) {
      var set = flags & kButtonBits;
      var buttons = kButtons[set] || kButtons[core.kAskOk];
      var escape = set === core.kAskOkCancel ? kAnswer.Cancel : set === core.kAskOk ? kAnswer.Ok : 0;
      var icon = kIcons[flags & ~kButtonBits & 0xff] || '';
      var box = windowBox('message-box', title, escape !== 0, function () { done(escape); },
                          'alertdialog');
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
      words.id = box.frame.id + '-text';
      words.textContent = text;
      box.frame.setAttribute('aria-describedby', words.id);
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
      // Enter presses the button that has the focus, else the first; Escape answers as the
      // close box does, where there is one; Tab and the arrows go round the buttons.
      box.onKey = function (e) {
        var all = Array.from(buttonRow.children);
        var at = all.indexOf(document.activeElement);
        if (e.key === 'Escape') {
          e.preventDefault();
          if (escape !== 0) done(escape);
        } else if (e.key === 'Enter') {
          e.preventDefault();
          if (at >= 0) all[at].click(); else done(buttons[0][1]);
        } else if (e.key === 'Tab' || e.key.indexOf('Arrow') === 0) {
          e.preventDefault();
          var back = e.key === 'ArrowLeft' || e.key === 'ArrowUp' ||
                     (e.key === 'Tab' && e.shiftKey);
          all[at < 0 ? 0 : (at + (back ? all.length - 1 : 1)) % all.length].focus();
        }
      };
      showBox(box);
      buttonRow.firstChild.focus();
      function done(answer) {
        if (box.closed) return;
        box.closed = true;
        closeBox(box);
        resolve(answer);
      }
    });
  }

  var boxCount = 0;

  // A window of its own over a modal layer: caption, close box, body; a modal dialog (or an
  // alert dialog, for a message box) named by its caption.
  function windowBox(className, caption, closable, onClose, role) {
    var layer = document.createElement('div');
    layer.className = 'modal-layer';
    var frame = document.createElement('div');
    frame.className = 'box ' + className;
    frame.tabIndex = -1;
    frame.id = 'box-' + ++boxCount;
    frame.setAttribute('role', role || 'dialog');
    frame.setAttribute('aria-modal', 'true');
    frame.setAttribute('aria-labelledby', frame.id + '-caption');
    var bar = document.createElement('div');
    bar.className = 'box-caption';
    var title = document.createElement('span');
    title.textContent = caption;
    title.id = frame.id + '-caption';
    bar.appendChild(title);
    if (closable) {
      var close = document.createElement('button');
      close.className = 'box-close';
      close.textContent = '×';
      close.tabIndex = -1;
      close.setAttribute('aria-label', 'Fermer');
      close.addEventListener('click', onClose);
      bar.appendChild(close);
    }
    var body = document.createElement('div');
    body.className = 'box-body';
    frame.append(bar, body);
    layer.appendChild(frame);
    return { layer: layer, frame: frame, body: body };
  }

  // A box opens over the window and over any box below it; it takes the keys, and remembers
  // where the focus was, to give it back when it closes.
  function showBox(box) {
    state.modal += 1;
    Page.openMenu(null);
    Page.stretchForFinger(box.body);
    box.returnFocus = document.activeElement;
    state.boxes.push(box);
    element('window').inert = true;
    element('desktop').appendChild(box.layer);
    var anchor = element('window').getBoundingClientRect();
    var size = box.frame.getBoundingClientRect();
    var left = box.left !== undefined ? anchor.left + box.left
               : anchor.left + (anchor.width - size.width) / 2;
    var top = box.top !== undefined ? anchor.top + box.top
              : anchor.top + Math.max(0, (anchor.height - size.height) / 2);
    box.frame.style.left = Math.max(0, Math.min(left, window.innerWidth - size.width)) + 'px';
    box.frame.style.top = Math.max(0, Math.min(top, window.innerHeight - size.height)) + 'px';
  }

  function closeBox(box) {
    box.layer.remove();
    state.modal -= 1;
    var at = state.boxes.indexOf(box);
    if (at >= 0) state.boxes.splice(at, 1);
    var top = state.boxes[state.boxes.length - 1];
    if (!top) element('window').inert = false;
    // The focus goes back where it was when the box opened, if that is still there: the
    // dialog's control under a message box, the window under a dialog.
    var back = box.returnFocus;
    if (back && back.isConnected && back !== document.body && (!top || top.frame.contains(back))) {
      back.focus({ preventScroll: true });
    } else if (top) {
      (top.frame.querySelector('[data-tabstop]') || top.frame).focus({ preventScroll: true });
    } else {
      Page.focusWindow();
    }
  }

  // A key while a box is open: the top one's, whatever has the focus; none reaches the game.
  function boxKey(e) {
    var top = state.boxes[state.boxes.length - 1];
    if (top && top.onKey) top.onKey(e);
  }

  Object.assign(Page, {
    ask: ask, windowBox: windowBox, showBox: showBox, closeBox: closeBox, boxKey: boxKey,
  });
})(Page);
