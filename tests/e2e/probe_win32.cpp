// kalvero4-probe: the end-to-end tests' eyes inside a Wine desktop, and their launcher.
//
//   kalvero4-probe.exe DESKTOP OUTPUT       describe the visible windows of that desktop
//   kalvero4-probe.exe --run STATUS PROGRAM start PROGRAM, wait for its end, write its status
//
// The description is one JSON object written to the file OUTPUT (a Windows path):
//
//   {"windows": [{hwnd, owner, pid, cls, title, enabled, rect: [left, top, right, bottom],
//                 client: [width, height], origin: [x, y],
//                 controls: [{id, text, rect, check?, selection?, items?}]}]}
//
// Windows come front to back; "cls" is the class. Rectangles and origins are in desktop
// coordinates, texts in UTF-8. "check" is a button's check state, "selection" and "items" a
// list box's selected index and entries. Menus are not described: Wine keeps them in the
// memory of the program that owns them.
//
// The probe only reads. It asks other programs through SendMessageTimeout, so a program that
// is busy (a long computer move) leaves a text unread instead of stopping the probe. Both
// files are written under a temporary name and renamed, so a reader never sees half of one.
// The exit status is written by the probe because the desktop's explorer, which starts it,
// does not hand on the status of what it starts.
#include <windows.h>

#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <string>
#include <vector>

namespace {

bool Ask(HWND window, UINT message, WPARAM wParam, LPARAM lParam, LRESULT* answer) {
  DWORD_PTR result = 0;
  if (SendMessageTimeoutW(window, message, wParam, lParam, SMTO_ABORTIFHUNG | SMTO_BLOCK, 1500,
                          &result) == 0) {
    return false;
  }
  *answer = static_cast<LRESULT>(result);
  return true;
}

std::string Quoted(const std::wstring& text) {
  std::string utf8;
  if (!text.empty()) {
    const int size = WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()),
                                         nullptr, 0, nullptr, nullptr);
    utf8.assign(static_cast<size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), utf8.data(),
                        size, nullptr, nullptr);
  }
  std::string out = "\"";
  for (unsigned char c : utf8) {
    if (c == '"' || c == '\\') {
      out += '\\';
      out += static_cast<char>(c);
    } else if (c < 0x20) {
      char escaped[8];
      std::snprintf(escaped, sizeof escaped, "\\u%04x", c);
      out += escaped;
    } else {
      out += static_cast<char>(c);
    }
  }
  return out + "\"";
}

std::string Number(long long value) {
  return std::to_string(value);
}

std::string Numbers(std::initializer_list<long long> values) {
  std::string out;
  for (long long value : values) out += (out.empty() ? "[" : ", ") + Number(value);
  return out + "]";
}

std::string Rect(HWND window) {
  RECT r = {};
  GetWindowRect(window, &r);
  return Numbers({r.left, r.top, r.right, r.bottom});
}

std::string Handle(HWND window) {
  return Number(static_cast<long long>(reinterpret_cast<UINT_PTR>(window)));
}

std::wstring ClassOf(HWND window) {
  wchar_t name[256] = {};
  GetClassNameW(window, name, 256);
  return name;
}

// The caption as the window manager keeps it: never a message to the window.
std::wstring CaptionOf(HWND window) {
  wchar_t text[1024] = {};
  InternalGetWindowText(window, text, 1024);
  return text;
}

// A text that a window gives on request: its own text, or item `item` of a list box.
std::wstring Asked(HWND window, UINT lengthMessage, UINT textMessage, WPARAM item) {
  LRESULT length = 0;
  if (!Ask(window, lengthMessage, item, 0, &length) || length < 0) return {};
  std::wstring text(static_cast<size_t>(length) + 1, L'\0');
  LRESULT copied = 0;
  const WPARAM size = textMessage == WM_GETTEXT ? text.size() : item;
  if (!Ask(window, textMessage, size, reinterpret_cast<LPARAM>(text.data()), &copied)) return {};
  text.resize(static_cast<size_t>(copied < 0 ? 0 : copied));
  return text;
}

BOOL CALLBACK Collect(HWND window, LPARAM into) {
  reinterpret_cast<std::vector<HWND>*>(into)->push_back(window);
  return TRUE;
}

std::string Control(HWND control) {
  const std::wstring className = ClassOf(control);
  std::string out = "{\"id\": " + Number(GetDlgCtrlID(control)) + ", \"text\": " + Quoted(Asked(control, WM_GETTEXTLENGTH, WM_GETTEXT, 0)) +
                    ", \"rect\": " + Rect(control);
  LRESULT value = 0;
  if (_wcsicmp(className.c_str(), L"Button") == 0 && Ask(control, BM_GETCHECK, 0, 0, &value)) {
    out += ", \"check\": " + Number(value);
  }
  if (_wcsicmp(className.c_str(), L"ListBox") == 0) {
    if (Ask(control, LB_GETCURSEL, 0, 0, &value)) out += ", \"selection\": " + Number(value);
    LRESULT count = 0;
    if (Ask(control, LB_GETCOUNT, 0, 0, &count)) {
      out += ", \"items\": [";
      for (LRESULT i = 0; i < count; ++i) {
        out += (i ? ", " : "") +
               Quoted(Asked(control, LB_GETTEXTLEN, LB_GETTEXT, static_cast<WPARAM>(i)));
      }
      out += "]";
    }
  }
  return out + "}";
}

std::string Window(HWND window) {
  RECT client = {};
  GetClientRect(window, &client);
  POINT origin = {0, 0};
  ClientToScreen(window, &origin);
  DWORD pid = 0;
  GetWindowThreadProcessId(window, &pid);
  std::string out = "{\"hwnd\": " + Handle(window) +
                    ", \"owner\": " + Handle(GetWindow(window, GW_OWNER)) +
                    ", \"pid\": " + Number(pid) + ", \"cls\": " + Quoted(ClassOf(window)) +
                    ", \"title\": " + Quoted(CaptionOf(window)) +
                    ", \"enabled\": " + (IsWindowEnabled(window) ? "true" : "false") +
                    ", \"rect\": " + Rect(window) + ", \"client\": " +
                    Numbers({client.right, client.bottom}) + ", \"origin\": " +
                    Numbers({origin.x, origin.y}) + ",\n    \"controls\": [";
  std::vector<HWND> children;
  EnumChildWindows(window, Collect, reinterpret_cast<LPARAM>(&children));
  bool first = true;
  for (HWND child : children) {
    if (GetAncestor(child, GA_PARENT) != window) continue;  // controls of controls: not ours
    out += (first ? "\n      " : ",\n      ") + Control(child);
    first = false;
  }
  return out + "]}";
}

bool WriteAtOnce(const std::string& path, const std::string& text) {
  const std::string partial = path + ".part";
  std::FILE* file = std::fopen(partial.c_str(), "wb");
  if (file == nullptr) return false;
  const bool written = std::fwrite(text.data(), 1, text.size(), file) == text.size();
  if (std::fclose(file) != 0 || !written) return false;
  return MoveFileExA(partial.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING) != 0;
}

int Run(const char* status, const char* program) {
  STARTUPINFOA startup = {};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process = {};
  std::string commandLine = std::string("\"") + program + "\"";
  if (!CreateProcessA(program, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                      &startup, &process)) {
    return 1;
  }
  WaitForSingleObject(process.hProcess, INFINITE);
  DWORD code = 0;
  GetExitCodeProcess(process.hProcess, &code);
  return WriteAtOnce(status, Number(code) + "\n") ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 4 && std::strcmp(argv[1], "--run") == 0) return Run(argv[2], argv[3]);
  if (argc != 3) {
    std::fprintf(stderr, "usage: kalvero4-probe DESKTOP OUTPUT | --run STATUS PROGRAM\n");
    return 2;
  }
  // A desktop that does not exist (not yet, or no more) shows no window.
  std::vector<HWND> windows;
  if (HDESK desktop = OpenDesktopA(argv[1], 0, FALSE, GENERIC_ALL)) {
    if (!SetThreadDesktop(desktop)) return 1;
    EnumWindows(Collect, reinterpret_cast<LPARAM>(&windows));
  }
  std::string json = "{\"windows\": [";
  bool first = true;
  for (HWND window : windows) {
    // Only windows a person could see: Wine's hidden helper windows answer slowly or not at all.
    if (!IsWindowVisible(window)) continue;
    json += (first ? "\n  " : ",\n  ") + Window(window);
    first = false;
  }
  return WriteAtOnce(argv[2], json + "]}\n") ? 0 : 1;
}
