// The menu bar: built from the resource script's menu, with the page's own entries for the save
// file; opened by the pointer or by the keyboard as on Windows (F10 or Alt alone, Alt and an
// underlined letter, the arrows, Enter and Escape); its commands go to the game.
(function (Page) {
  'use strict';
  var state = Page.state;
  var element = Page.element;

  function buildMenu() {
    var bar = element('menu-bar');
    bar.setAttribute('role', 'menubar');
    var added = [
      { separator: true },
      { text: 'E&xporter la sauvegarde…', action: Page.exportSaveFile, id: 'menu-export' },
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
      Page.labelInto(title, popup.text);
      named(title, 'menuitem', title.textContent);
      title.setAttribute('aria-haspopup', 'menu');
      title.setAttribute('aria-expanded', 'false');
      title.appendChild(buildPopup(items, title.textContent));
      title.addEventListener('mousedown', function (e) {
        if (e.target.closest('.menu-popup')) return;
        e.preventDefault();
        openMenu(state.menuOpen === title ? null : title);
      });
      title.addEventListener('mouseenter', function () { if (state.menuOpen) openMenu(title); });
      bar.appendChild(title);
    });
    document.addEventListener('mousedown', function (e) {
      if ((state.menuOpen || state.menuKeys) && !e.target.closest('.menu-title')) openMenu(null);
    });
  }

  // A menu element's role and name: its name is its label alone, not its popup's entries.
  function named(el, role, name) {
    el.setAttribute('role', role);
    el.setAttribute('aria-label', name);
    el.tabIndex = -1;
  }

  function buildPopup(items, name) {
    var list = document.createElement('div');
    list.className = 'menu-popup';
    list.setAttribute('role', 'menu');
    list.setAttribute('aria-label', name);
    items.forEach(function (item) {
      var row = document.createElement('div');
      if (item.separator) {
        row.className = 'menu-separator';
        row.setAttribute('role', 'separator');
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
      key.textContent = Page.labelInto(label, item.text, false, true);
      row.append(check, label, key);
      named(row, 'menuitem', label.textContent);
      if (key.textContent) row.setAttribute('aria-keyshortcuts', key.textContent);
      row.addEventListener('mouseenter', function () { highlight(row); });
      if (item.items) {
        row.classList.add('menu-submenu');
        row.setAttribute('aria-haspopup', 'menu');
        row.setAttribute('aria-expanded', 'false');
        row.appendChild(buildPopup(item.items, label.textContent));
      } else {
        row.dataset.command = item.command || '';
        row.addEventListener('mouseup', function (e) {
          e.stopPropagation();
          choose(row);
        });
        row.choose = function () {
          if (item.action) Page.post(item.action); else menuCommand(item.command);
        };
      }
      list.appendChild(row);
    });
    return list;
  }

  function titles() { return Array.from(document.querySelectorAll('.menu-title')); }

  function entries(popup) { return Array.from(popup.querySelectorAll(':scope > .menu-item')); }

  function setOpen(el, open) {
    el.classList.toggle('open', open);
    el.setAttribute('aria-expanded', open ? 'true' : 'false');
  }

  function closeAll() {
    document.querySelectorAll('.menu-submenu.open').forEach(function (row) { setOpen(row, false); });
    document.querySelectorAll('.menu-bar .active').forEach(function (el) { el.classList.remove('active'); });
    if (state.menuOpen) setOpen(state.menuOpen, false);
    state.menuOpen = null;
  }

  // Opens one menu of the bar (null closes them all and gives the keys back to the window).
  function openMenu(title) {
    closeAll();
    if (title) {
      state.menuOpen = title;
      setOpen(title, true);
      title.classList.add('active');
    } else if (state.menuKeys) {
      state.menuKeys = false;
      Page.focusWindow();
    }
  }

  // The entry (or the bar's title) that the keyboard is on: highlighted, and given the focus so
  // that a screen reader says it.
  function highlight(el) {
    var list = el.parentElement;
    list.querySelectorAll(':scope > .active').forEach(function (other) {
      if (other !== el) other.classList.remove('active');
    });
    el.classList.add('active');
    if (state.menuKeys) el.focus({ preventScroll: true });
  }

  // The keyboard takes the bar: a title highlighted, its menu open (with its first entry
  // highlighted) or not.
  function enterBar(title, open) {
    state.menuKeys = true;
    closeAll();
    if (!open) return highlight(title);
    state.menuOpen = title;
    setOpen(title, true);
    title.classList.add('active');
    highlightFirst(title);
  }

  function highlightFirst(parent, last) {
    var rows = entries(parent.querySelector(':scope > .menu-popup'));
    if (rows.length > 0) highlight(rows[last ? rows.length - 1 : 0]);
  }

  function choose(row) {
    state.menuKeys = true;
    openMenu(null);
    if (row.choose) row.choose();
  }

  // The deepest entry the keyboard is on, or null when it is on the bar.
  function current() {
    var open = state.menuOpen;
    if (!open) return null;
    var list = open.querySelector(':scope > .menu-popup');
    var row = null;
    for (;;) {
      var active = list.querySelector(':scope > .menu-item.active');
      if (!active) return row;
      row = active;
      if (!row.classList.contains('open')) return row;
      list = row.querySelector(':scope > .menu-popup');
    }
  }

  function barTitle() {
    return state.menuOpen || document.querySelector('.menu-title.active') || titles()[0];
  }

  function withLetter(list, letter, selector) {
    return Array.from(list.querySelectorAll(selector)).find(function (el) {
      var u = el.querySelector(':scope > u, :scope > .menu-label > u');
      return u && u.textContent.toLowerCase() === letter;
    });
  }

  function enterEntry(row) {
    if (row.classList.contains('menu-submenu')) {
      setOpen(row, true);
      highlightFirst(row);
    } else {
      choose(row);
    }
  }

  // Keys while the keyboard is in the menus.
  function menuKeyInside(e) {
    var key = e.key;
    var row = current();
    var title = barTitle();
    var all = titles();
    var letter = key.length === 1 ? key.toLowerCase() : '';
    var list = row ? row.parentElement : null;
    if (key === 'Escape') {
      var parentRow = list && list.parentElement.classList.contains('menu-submenu') ? list.parentElement : null;
      if (parentRow) {
        setOpen(parentRow, false);
        highlight(parentRow);
      } else if (state.menuOpen) {
        enterBar(title, false);
      } else {
        openMenu(null);
      }
    } else if (key === 'ArrowLeft' || key === 'ArrowRight') {
      var right = key === 'ArrowRight';
      var inSub = list && list.parentElement.classList.contains('menu-submenu');
      if (!right && inSub) {
        setOpen(list.parentElement, false);
        highlight(list.parentElement);
      } else if (right && row && row.classList.contains('menu-submenu')) {
        enterEntry(row);
      } else {
        var next = all[(all.indexOf(title) + (right ? 1 : all.length - 1)) % all.length];
        enterBar(next, !!state.menuOpen);
      }
    } else if (key === 'ArrowDown' || key === 'ArrowUp' || key === 'Home' || key === 'End') {
      var up = key === 'ArrowUp' || key === 'End';
      if (!row) {
        enterBar(title, true);
        if (up) highlightFirst(title, true);
      } else {
        var rows = entries(list);
        var at = rows.indexOf(row);
        var to = key === 'Home' ? 0 : key === 'End' ? rows.length - 1
                 : (at + (up ? rows.length - 1 : 1)) % rows.length;
        highlight(rows[to]);
      }
    } else if (key === 'Enter' || key === ' ') {
      if (row) enterEntry(row); else enterBar(title, true);
    } else if (letter) {
      if (!row) {
        var byLetter = withLetter(element('menu-bar'), letter, ':scope > .menu-title');
        if (byLetter) enterBar(byLetter, true);
      } else {
        var entry = withLetter(list, letter, ':scope > .menu-item');
        if (entry) {
          highlight(entry);
          enterEntry(entry);
        }
      }
    } else if (key === 'Tab') {
      openMenu(null);
    }
  }

  // The keyboard in the menus, as Windows has it: F10 or Alt alone takes the bar or leaves it,
  // Alt and an underlined letter opens a menu, and while the bar has the keys no key reaches the
  // game. True when the key was the menus'.
  function menuKey(e) {
    if (e.key !== 'Alt') state.altAlone = false;
    if (e.key === 'Alt') {
      state.altAlone = !e.repeat;
      e.preventDefault();
      return true;
    }
    if (e.key === 'F10' && !e.shiftKey && !e.ctrlKey) {
      e.preventDefault();
      if (state.menuKeys) openMenu(null); else enterBar(titles()[0], false);
      return true;
    }
    var letter = e.key.length === 1 ? e.key.toLowerCase() : '';
    if (e.altKey && letter) {
      var title = withLetter(element('menu-bar'), letter, ':scope > .menu-title');
      if (!title) return false;
      e.preventDefault();
      enterBar(title, true);
      return true;
    }
    if (!state.menuKeys && !state.menuOpen) return false;
    e.preventDefault();
    if (!state.menuKeys) {
      // A menu opened by the pointer: the keyboard takes it from where it is.
      state.menuKeys = true;
      if (!current()) highlightFirst(state.menuOpen);
      if (e.key === 'ArrowDown' || e.key === 'ArrowUp') return true;
    }
    menuKeyInside(e);
    return true;
  }

  // Alt pressed and released with no key between takes the bar or leaves it.
  function menuKeyUp(e) {
    if (e.key !== 'Alt' || !state.altAlone) return false;
    state.altAlone = false;
    e.preventDefault();
    if (state.menuKeys || state.menuOpen) openMenu(null); else enterBar(titles()[0], false);
    return true;
  }

  function menuCommand(command) {
    if (state.modal > 0 || state.ended) return;
    Page.message('WebCommand', [command]);
  }

  function setCheck(command, checked) {
    document.querySelectorAll('[data-command="' + command + '"]').forEach(function (row) {
      row.classList.toggle('checked', checked);
      row.setAttribute('role', 'menuitemcheckbox');
      row.setAttribute('aria-checked', checked ? 'true' : 'false');
    });
  }

  Object.assign(Page, {
    buildMenu: buildMenu, openMenu: openMenu, menuKey: menuKey, menuKeyUp: menuKeyUp,
    menuCommand: menuCommand, setCheck: setCheck,
  });
})(Page);
