// Texts between the page and the game: the game's texts are Windows-1252 bytes, decoded here
// for the page and encoded back from what the player types; menu and control labels with their
// "&" prefixes.
(function (Page) {
  'use strict';
  var state = Page.state;

  var decoder = new TextDecoder('windows-1252');

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

  Object.assign(Page, {
    decode: decode, decodeZ: decodeZ, encode: encode, labelInto: labelInto,
  });
})(Page);
