// Message boxes, and the modal window box that message boxes and dialogs are both drawn in.
(function (Page) {
  'use strict';
  var state = Page.state;
  var element = Page.element;

  // The answers as the core numbers them (tools/make_page_resources.py reads them at build time).
  var kAnswer = {
    Ok: KalveroResources.core.kAnswerOk, Cancel: KalveroResources.core.kAnswerCancel,
    Yes: KalveroResources.core.kAnswerYes, No: KalveroResources.core.kAnswerNo,
  };

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
    Page.openMenu(null);
    Page.stretchForFinger(box.body);
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
  }

  Object.assign(Page, {
    ask: ask, windowBox: windowBox, showBox: showBox, closeBox: closeBox,
  });
})(Page);
