// The menu bar: built from the resource script's menu, with the page's own entries for the save
// file; opened by the pointer or by Alt and an underlined letter; its commands go to the game.
(function (Page) {
  'use strict';
  var state = Page.state;
  var element = Page.element;

  function buildMenu() {
    var bar = element('menu-bar');
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
      key.textContent = Page.labelInto(label, item.text, false, true);
      row.append(check, label, key);
      if (item.items) {
        row.classList.add('menu-submenu');
        row.appendChild(buildPopup(item.items));
      } else {
        row.dataset.command = item.command || '';
        row.addEventListener('mouseup', function (e) {
          e.stopPropagation();
          openMenu(null);
          if (item.action) Page.post(item.action); else menuCommand(item.command);
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
    Page.message('WebCommand', [command]);
  }

  function setCheck(command, checked) {
    document.querySelectorAll('[data-command="' + command + '"]').forEach(function (row) {
      row.classList.toggle('checked', checked);
    });
  }

  Object.assign(Page, {
    buildMenu: buildMenu, openMenu: openMenu, menuKey: menuKey, menuCommand: menuCommand,
    setCheck: setCheck,
  });
})(Page);
