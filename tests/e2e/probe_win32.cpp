// kalvero4-probe: a look at the windows of one Wine desktop, for the end-to-end tests.
//
//   kalvero4-probe.exe OUTPUT
//
// Writes to the file OUTPUT (a Windows path, for instance Z:\tmp\...\probe.json) one JSON
// object describing what a person would see on the desktop this program runs in:
//
//   {"windows": [ {hwnd, owner, pid, class, title, visible, enabled,
//                  window: [left, top, right, bottom], client: [width, height],
//                  client_origin: [x, y],
//                  controls: [ {id, class, text, visible, enabled, style,
//                               rect: [left, top, right, bottom], check?, selection?,
//                               items?} ],
//                  menu?: [ {id, text, checked, grayed, items?} ] or null } ],
//    "unanswered": false}
//
// Every rectangle and origin is in desktop coordinates. "check" is BM_GETCHECK of a button,
// "selection" and "items" the selected index and the entries of a list box. Texts are UTF-8.
//
// The probe only reads; it never sends input. Everything it asks of another program goes
// through SendMessageTimeout, so a program that is busy (a long computer move) makes the probe
// report what it could not read instead of waiting for it. The file is written under a
// temporary name and renamed at the end, so a reader never sees half of it.
#include <windows.h>

#include <cstdio>
#include <string>
#include <vector>

namespace {

constexpr UINT kAnswerTimeoutMs = 1500;

// Set once a window has not answered in time: later questions to it would wait as long again.
bool Unanswered = false;

bool Ask(HWND window, UINT message, WPARAM wParam, LPARAM lParam, LRESULT* answer) {
  if (Unanswered) return false;
  DWORD_PTR result = 0;
  if (SendMessageTimeoutW(window, message, wParam, lParam, SMTO_ABORTIFHUNG | SMTO_BLOCK,
                          kAnswerTimeoutMs, &result) == 0) {
    Unanswered = true;
    return false;
  }
  *answer = static_cast<LRESULT>(result);
  return true;
}

std::string Utf8(const std::wstring& text) {
  if (text.empty()) return {};
  const int size = WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()),
                                       nullptr, 0, nullptr, nullptr);
  std::string out(static_cast<size_t>(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), out.data(), size,
                      nullptr, nullptr);
  return out;
}

std::string Quoted(const std::string& text) {
  std::string out = "\"";
  for (unsigned char c : text) {
    switch (c) {
      case '"': out += "\\\""; break;
      case '\\': out += "\\\\"; break;
      case '\n': out += "\\n"; break;
      case '\r': out += "\\r"; break;
      case '\t': out += "\\t"; break;
      default:
        if (c < 0x20) {
          char escaped[8];
          std::snprintf(escaped, sizeof escaped, "\\u%04x", c);
          out += escaped;
        } else {
          out += static_cast<char>(c);
        }
    }
  }
  return out + "\"";
}

std::string Number(long long value) {
  return std::to_string(value);
}

std::string Flag(bool value) {
  return value ? "true" : "false";
}

std::string Rect(const RECT& r) {
  char text[64];
  std::snprintf(text, sizeof text, "[%ld, %ld, %ld, %ld]", static_cast<long>(r.left),
                static_cast<long>(r.top), static_cast<long>(r.right), static_cast<long>(r.bottom));
  return text;
}

std::string Handle(HWND window) {
  return Number(static_cast<long long>(reinterpret_cast<UINT_PTR>(window)));
}

std::string ClassOf(HWND window) {
  wchar_t name[256] = {};
  GetClassNameW(window, name, 256);
  return Utf8(name);
}

// The caption as the window manager keeps it: never a message to the window.
std::string CaptionOf(HWND window) {
  wchar_t text[1024] = {};
  InternalGetWindowText(window, text, 1024);
  return Utf8(text);
}

// The text as the control itself holds it (an edit's content, a static's current text).
std::string TextOf(HWND window) {
  LRESULT length = 0;
  if (!Ask(window, WM_GETTEXTLENGTH, 0, 0, &length) || length < 0) return CaptionOf(window);
  std::wstring text(static_cast<size_t>(length) + 1, L'\0');
  LRESULT copied = 0;
  if (!Ask(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()), &copied)) {
    return CaptionOf(window);
  }
  text.resize(static_cast<size_t>(copied < 0 ? 0 : copied));
  return Utf8(text);
}

bool IsButton(const std::string& className) {
  return _stricmp(className.c_str(), "Button") == 0;
}

bool IsListBox(const std::string& className) {
  return _stricmp(className.c_str(), "ListBox") == 0;
}

std::string ListBoxFields(HWND list) {
  std::string out;
  LRESULT selection = 0;
  if (Ask(list, LB_GETCURSEL, 0, 0, &selection)) out += ", \"selection\": " + Number(selection);
  LRESULT count = 0;
  if (!Ask(list, LB_GETCOUNT, 0, 0, &count) || count < 0) return out;
  out += ", \"items\": [";
  for (LRESULT i = 0; i < count; ++i) {
    LRESULT length = 0;
    std::wstring item;
    if (Ask(list, LB_GETTEXTLEN, static_cast<WPARAM>(i), 0, &length) && length >= 0) {
      item.assign(static_cast<size_t>(length) + 1, L'\0');
      LRESULT copied = 0;
      if (Ask(list, LB_GETTEXT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(item.data()),
              &copied) &&
          copied >= 0) {
        item.resize(static_cast<size_t>(copied));
      } else {
        item.clear();
      }
    }
    out += (i ? ", " : "") + Quoted(Utf8(item));
  }
  return out + "]";
}

BOOL CALLBACK CollectChild(HWND child, LPARAM into) {
  reinterpret_cast<std::vector<HWND>*>(into)->push_back(child);
  return TRUE;
}

std::string Controls(HWND window) {
  std::vector<HWND> children;
  EnumChildWindows(window, CollectChild, reinterpret_cast<LPARAM>(&children));
  std::string out = "[";
  bool first = true;
  for (HWND child : children) {
    if (GetAncestor(child, GA_PARENT) != window) continue;  // controls of controls: not ours
    const std::string className = ClassOf(child);
    RECT rect = {};
    GetWindowRect(child, &rect);
    out += first ? "\n      " : ",\n      ";
    first = false;
    out += "{\"id\": " + Number(GetDlgCtrlID(child)) + ", \"class\": " + Quoted(className) +
           ", \"text\": " + Quoted(TextOf(child)) +
           ", \"visible\": " + Flag(IsWindowVisible(child) != 0) +
           ", \"enabled\": " + Flag(IsWindowEnabled(child) != 0) +
           ", \"style\": " + Number(static_cast<long long>(GetWindowLongW(child, GWL_STYLE) &
                                                           0xFFFFFFFFll)) +
           ", \"rect\": " + Rect(rect);
    LRESULT check = 0;
    if (IsButton(className) && Ask(child, BM_GETCHECK, 0, 0, &check)) {
      out += ", \"check\": " + Number(check);
    }
    if (IsListBox(className)) out += ListBoxFields(child);
    out += "}";
  }
  return out + "]";
}

// null when the menu cannot be read: Wine keeps a menu in the memory of the program that owns
// it, so another program only ever sees a handle.
std::string MenuItems(HMENU menu, int depth) {
  const int count = GetMenuItemCount(menu);
  if (count < 0) return "null";
  std::string out = "[";
  for (int i = 0; i < count; ++i) {
    wchar_t text[256] = {};
    MENUITEMINFOW info = {};
    info.cbSize = sizeof info;
    info.fMask = MIIM_ID | MIIM_STATE | MIIM_STRING | MIIM_SUBMENU | MIIM_FTYPE;
    info.dwTypeData = text;
    info.cch = 255;
    if (!GetMenuItemInfoW(menu, static_cast<UINT>(i), TRUE, &info)) continue;
    const UINT state = GetMenuState(menu, static_cast<UINT>(i), MF_BYPOSITION);
    out += (i ? ",\n" : "\n") + std::string(static_cast<size_t>(8 + 2 * depth), ' ');
    out += "{\"id\": " + Number(info.hSubMenu ? -1 : static_cast<long long>(info.wID)) +
           ", \"text\": " + Quoted(Utf8(text)) +
           ", \"checked\": " + Flag((state & MF_CHECKED) != 0) +
           ", \"grayed\": " + Flag((state & (MF_GRAYED | MF_DISABLED)) != 0);
    if (info.hSubMenu) out += ", \"items\": " + MenuItems(info.hSubMenu, depth + 1);
    out += "}";
  }
  return out + "]";
}

BOOL CALLBACK CollectTopLevel(HWND window, LPARAM into) {
  reinterpret_cast<std::vector<HWND>*>(into)->push_back(window);
  return TRUE;
}

std::string Describe(HWND window) {
  RECT frame = {};
  GetWindowRect(window, &frame);
  RECT client = {};
  GetClientRect(window, &client);
  POINT origin = {0, 0};
  ClientToScreen(window, &origin);
  DWORD pid = 0;
  GetWindowThreadProcessId(window, &pid);
  std::string out = "{\"hwnd\": " + Handle(window) +
                    ", \"owner\": " + Handle(GetWindow(window, GW_OWNER)) +
                    ", \"pid\": " + Number(pid) + ", \"class\": " + Quoted(ClassOf(window)) +
                    ", \"title\": " + Quoted(CaptionOf(window)) +
                    ", \"visible\": " + Flag(IsWindowVisible(window) != 0) +
                    ", \"enabled\": " + Flag(IsWindowEnabled(window) != 0) +
                    ", \"window\": " + Rect(frame) + ", \"client\": [" + Number(client.right) +
                    ", " + Number(client.bottom) + "], \"client_origin\": [" +
                    Number(origin.x) + ", " + Number(origin.y) + "]";
  // Only windows a person could see are looked into: hidden helper windows of Wine answer
  // slowly or not at all.
  if (IsWindowVisible(window) && GetCurrentProcessId() != pid) {
    out += ",\n    \"controls\": " + Controls(window);
    if (HMENU menu = GetMenu(window)) out += ",\n    \"menu\": " + MenuItems(menu, 0);
  }
  return out + "}";
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: kalvero4-probe OUTPUT\n");
    return 2;
  }
  std::vector<HWND> windows;
  EnumWindows(CollectTopLevel, reinterpret_cast<LPARAM>(&windows));
  std::string json = "{\"windows\": [";
  for (size_t i = 0; i < windows.size(); ++i) {
    json += (i ? ",\n  " : "\n  ") + Describe(windows[i]);
  }
  json += "],\n \"unanswered\": " + Flag(Unanswered) + "}\n";

  const std::string output = argv[1];
  const std::string partial = output + ".part";
  std::FILE* file = std::fopen(partial.c_str(), "wb");
  if (file == nullptr) return 1;
  const bool written = std::fwrite(json.data(), 1, json.size(), file) == json.size();
  if (std::fclose(file) != 0 || !written) return 1;
  return MoveFileExA(partial.c_str(), output.c_str(), MOVEFILE_REPLACE_EXISTING) ? 0 : 1;
}
