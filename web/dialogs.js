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
    var dialog = { id: id, box: box, controls: {}, groups: [], group: null, order: [] };
    var group = -1;
    template.controls.forEach(function (t, index) {
      var control = makeControl(dialog, t);
      control.style.left = px(t.rect[0], 0) + 'px';
      control.style.top = px(t.rect[1], 1) + 'px';
      control.style.width = px(t.rect[2], 0) + 'px';
      control.style.height = px(t.rect[3], 1) + 'px';
      control.classList.add('control');
      control.id = box.frame.id + '-' + index;
      if (t.id >= 0 || t.id === -1) control.dataset.control = t.id;
      box.body.appendChild(control);
      if (t.id !== -1) dialog.controls[t.id] = control;
      // The template's order and groups, as the keyboard goes through them: a group runs from
      // a control with WS_GROUP to the next one.
      if (index === 0 || t.style.indexOf('WS_GROUP') >= 0) group += 1;
      var target = control.input ||
                   (/^(BUTTON|INPUT|SELECT)$/.test(control.tagName) ? control : null);
      var tabstop = t.style.indexOf('WS_TABSTOP') >= 0;
      if (target) target.tabIndex = tabstop ? 0 : -1;
      dialog.order.push({ t: t, control: control, target: target, group: group, tabstop: tabstop });
    });
    nameControls(dialog, template.caption);
    box.onKey = function (e) { dialogKey(dialog, e); };
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
      el.setText = function (text) {
        Page.labelInto(el, text);
        // A text written down a narrow button, a letter a line, is read as one word.
        if (el.textContent.indexOf('\n') >= 0) el.setAttribute('aria-label', el.textContent.replace(/\n/g, ''));
      };
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
      el.alt = '';
    } else {
      el = document.createElement('div');
      el.className = 'static';
      if (style.indexOf('SS_RIGHT') >= 0) el.style.textAlign = 'right';
      // A static one line high never wraps: in a face wider than the dialog's own, its last
      // word runs on rather than onto a line that is not shown.
      if (t.rect[3] < 16) el.classList.add('one-line');
      var noPrefix = style.indexOf('SS_NOPREFIX') >= 0;
      // A text the game writes while the dialog is open is read when it changes.
      if (t.id !== -1) el.setAttribute('aria-live', 'polite');
      el.setText = function (text) { Page.labelInto(el, text, noPrefix); };
      el.setText(t.text);
    }
    if (!el.getText) el.getText = function () { return el.textContent; };
    return el;
  }

  // Names for the controls that carry no text of their own, an edit or a list: the static
  // text on their left on the same line, else the one just above them, whose parts a " | "
  // shares out from left to right among the controls below it; else the dialog's caption. The
  // statics that name nothing describe the dialog, read when it opens.
  function nameControls(dialog, caption) {
    var statics = dialog.order.filter(function (o) {
      return o.t.class === 'Static' && o.t.icon === null && o.control.textContent.trim() !== '';
    });
    var used = new Set();
    var below = new Map();
    dialog.order.forEach(function (o) {
      if (!o.target || (o.t.class !== 'Edit' && o.t.class !== 'ListBox')) return;
      var r = o.t.rect;
      function nearest(list, distance) {
        return list.sort(function (a, b) { return distance(a) - distance(b); })[0];
      }
      var left = nearest(statics.filter(function (s) {
        var q = s.t.rect;
        return q[0] + q[2] <= r[0] + 2 && q[1] < r[1] + r[3] && r[1] < q[1] + q[3];
      }), function (s) { return r[0] - s.t.rect[0]; });
      var above = left ? null : nearest(statics.filter(function (s) {
        var q = s.t.rect;
        var gap = r[1] - (q[1] + q[3]);
        return gap >= -2 && gap < 12 && q[0] < r[0] + r[2] && r[0] < q[0] + q[2];
      }), function (s) { return r[1] - s.t.rect[1]; });
      var label = left || above;
      if (!label) return o.target.setAttribute('aria-label', caption);
      used.add(label);
      o.target.setAttribute('aria-labelledby', label.control.id);
      if (above) below.set(above, (below.get(above) || []).concat([o]));
    });
    below.forEach(function (controls, label) {
      var parts = label.control.textContent.split(' | ');
      if (parts.length !== controls.length) return;
      controls.sort(function (a, b) { return a.t.rect[0] - b.t.rect[0]; }).forEach(function (o, i) {
        o.target.removeAttribute('aria-labelledby');
        o.target.setAttribute('aria-label', parts[i].trim());
      });
    });
    var described = statics.filter(function (s) { return !used.has(s); })
      .map(function (s) { return s.control.id; });
    if (described.length > 0) dialog.box.frame.setAttribute('aria-describedby', described.join(' '));
  }

  function usable(el) { return !el.disabled && el.offsetParent !== null; }

  function entryOf(dialog, el) {
    return dialog.order.find(function (o) { return o.target === el; });
  }

  // The focus on a control; on a radio button, on the checked one of its group, as tabbing
  // into a group of radio buttons does on Windows.
  function focusEntry(dialog, o) {
    var target = o.target;
    if (target.type === 'radio' && !target.checked) {
      var checked = dialog.order.find(function (p) {
        return p.group === o.group && p.target && p.target.type === 'radio' && p.target.checked;
      });
      if (checked) target = checked.target;
    }
    target.focus();
  }

  // Tab and Shift+Tab: the next control with WS_TABSTOP in the template's order, round.
  function tabFrom(dialog, entry, step) {
    var order = dialog.order;
    var n = order.length;
    var from = entry ? order.indexOf(entry) : step > 0 ? -1 : n;
    for (var k = 1; k <= n; ++k) {
      var o = order[(((from + step * k) % n) + n) % n];
      if (o.target && o.tabstop && usable(o.target)) return focusEntry(dialog, o);
    }
  }

  // The arrows: the next control of the same group, round; a radio button reached so is
  // checked, as an automatic radio button is on Windows.
  function moveInGroup(dialog, entry, step) {
    if (!entry) return tabFrom(dialog, null, step);
    var members = dialog.order.filter(function (o) {
      return o.group === entry.group && o.target && usable(o.target);
    });
    var next = members[(members.indexOf(entry) + step + members.length) % members.length];
    next.target.focus();
    if (next.target.type === 'radio' && !next.target.checked) next.target.click();
  }

  // The dialog's keys, wherever the focus is: Enter presses the focused button, else OK;
  // Escape cancels; Tab and the arrows move as Windows' dialogs move. Space is the control's
  // own (a check box toggles, a button is pressed).
  function dialogKey(dialog, e) {
    var active = document.activeElement;
    var entry = dialog.box.frame.contains(active) ? entryOf(dialog, active) : null;
    var arrow = { ArrowUp: -1, ArrowLeft: -1, ArrowDown: 1, ArrowRight: 1 }[e.key];
    if (e.key === 'Escape') {
      e.preventDefault();
      command(kCancel);
    } else if (e.key === 'Enter') {
      e.preventDefault();
      if (entry && active.tagName === 'BUTTON') active.click(); else command(kOk);
    } else if (e.key === 'Tab') {
      e.preventDefault();
      tabFrom(dialog, entry, e.shiftKey ? -1 : 1);
    } else if (arrow && !(entry && /^(text|select-one|select-multiple)$/.test(active.type))) {
      e.preventDefault();
      moveInGroup(dialog, entry, arrow);
    }
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
