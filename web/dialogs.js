// The dialogs: built from the resource script's templates, their controls read and written by
// the game's dialog steps, and their commands handed to the game's dialog loop, which waits
// for them.
(function (Page) {
  'use strict';
  var state = Page.state;
  var element = Page.element;

  // The game names each dialog by its template's number, and sets the texts that the Windows
  // dialogs draw on their owner-drawn buttons; OK and Cancel are the core's numbers.
  var kOk = KalveroResources.core.kOkControl;
  var kCancel = KalveroResources.core.kCancelControl;

  // Dialog units to pixels by the dialog's font: a quarter of the average character width
  // across, an eighth of the character height down.
  var kFontUnits = { 'MS Sans Serif': [6, 13], 'Arial': [6, 15], 'Tahoma': [6, 14], 'Comic Sans MS': [7, 18] };
  var kFontFaces = {
    'MS Sans Serif': '11px "MS Sans Serif", Tahoma, Arial, "Liberation Sans", sans-serif',
    'Arial': '12px Arial, "Liberation Sans", "DejaVu Sans", sans-serif',
    'Tahoma': '12px Tahoma, Arial, "Liberation Sans", sans-serif',
    'Comic Sans MS': '13px "Comic Sans MS", "Comic Neue", "DejaVu Sans", sans-serif',
  };

  function openDialog(id) {
    var template = KalveroResources.dialogs[id];
    var units = kFontUnits[template.font[1]] || [6, 13];
    function px(v, axis) { return Math.round(v * units[axis] / (axis === 0 ? 4 : 8)); }
    var sysmenu = template.style.indexOf('WS_SYSMENU') >= 0;
    var box = Page.windowBox('dialog dialog-' + id, template.caption, sysmenu, function () { command(kCancel); });
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
    // Placed as Windows places a dialog without DS_CENTER or DS_ABSALIGN: its frame's top-left
    // corner at its template's place, in the dialog's units, from the top-left corner of the
    // main window's client area.
    var client = state.screen.getBoundingClientRect();
    var windowBoxRect = element('window').getBoundingClientRect();
    box.left = client.left - windowBoxRect.left + px(template.place[0], 0);
    box.top = client.top - windowBoxRect.top + px(template.place[1], 1);
    state.dialog = dialog;
    state.dialogCommands = [];
    Page.showBox(box);
    var first = box.body.querySelector('[data-tabstop]');
    (first || box.frame).focus();
  }

  function makeControl(dialog, t) {
    var style = t.style;
    var el;
    if (t.class === 'Button' && style.indexOf('BS_GROUPBOX') >= 0) {
      el = document.createElement('fieldset');
      var legend = document.createElement('legend');
      Page.labelInto(legend, t.text);
      el.appendChild(legend);
      el.setText = function (text) { Page.labelInto(legend, text); };
    } else if (t.class === 'Button' && (style.indexOf('RADIO') >= 0 || style.indexOf('CHECKBOX') >= 0)) {
      var radio = style.indexOf('RADIO') >= 0;
      el = document.createElement('label');
      var input = document.createElement('input');
      input.type = radio ? 'radio' : 'checkbox';
      var span = document.createElement('span');
      Page.labelInto(span, t.text);
      el.append(input, span);
      el.input = input;
      el.setText = function (text) { Page.labelInto(span, text); };
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
      el.setText = function (text) { Page.labelInto(el, text); };
      el.setText(t.text);
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
      el.src = KalveroResources.icons[t.icon];
      el.className = 'dialog-icon';
    } else {
      el = document.createElement('div');
      el.className = 'static';
      if (style.indexOf('SS_RIGHT') >= 0) el.style.textAlign = 'right';
      // A static one line high never wraps: in a face wider than the dialog's own, its last
      // word runs on rather than onto a line that is not shown.
      if (t.rect[3] < 16) el.classList.add('one-line');
      var noPrefix = style.indexOf('SS_NOPREFIX') >= 0;
      el.setText = function (text) { Page.labelInto(el, text, noPrefix); };
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
    if (dialog) Page.closeBox(dialog.box);
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

  Object.assign(Page, {
    openDialog: openDialog, nextDialogCommand: nextDialogCommand, closeDialog: closeDialog,
    dialogChecked: dialogChecked, setDialogChecked: setDialogChecked, dialogText: dialogText,
    setDialogText: setDialogText, addListEntry: addListEntry, listSelection: listSelection,
    setListSelection: setListSelection,
  });
})(Page);
