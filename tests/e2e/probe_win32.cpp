// kalvero4-probe, the end-to-end suite's eyes and launcher inside a Wine desktop:
//   kalvero4-probe.exe DESKTOP OUTPUT       write the visible windows as JSON (see desktop.py)
//   kalvero4-probe.exe --run STATUS PROGRAM run PROGRAM, write its exit status (explorer won't)
// Messages go by SendMessageTimeout (a busy program leaves a text unread); files are renamed
// into place whole. Menus stay unread: Wine keeps them in their owner's memory.
#include <windows.h>

#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <string>
#include <vector>

namespace {

LRESULT Ask(HWND window, UINT message, WPARAM wParam = 0, LPARAM lParam = 0) {
  DWORD_PTR result = 0;
  const UINT flags = SMTO_ABORTIFHUNG | SMTO_BLOCK;
  return SendMessageTimeoutW(window, message, wParam, lParam, flags, 1500, &result) ? result : -1;
}

std::string Quoted(const std::wstring& text) {
  const int size = WideCharToMultiByte(CP_UTF8, 0, text.c_str(), -1, nullptr, 0, nullptr, nullptr);
  std::string utf8(static_cast<size_t>(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text.c_str(), -1, utf8.data(), size, nullptr, nullptr);
  std::string out = "\"";
  for (unsigned char c : utf8.substr(0, utf8.find('\0'))) {
    char escaped[8] = {static_cast<char>(c)};
    if (c == '"' || c == '\\') std::snprintf(escaped, sizeof escaped, "\\%c", c);
    if (c < 0x20) std::snprintf(escaped, sizeof escaped, "\\u%04x", c);
    out += escaped;
  }
  return out + "\"";
}

std::string Numbers(std::initializer_list<long long> values) {
  std::string out;
  for (long long value : values) out += (out.empty() ? "[" : ", ") + std::to_string(value);
  return out + "]";
}

std::string Rect(HWND window) {
  RECT r = {};
  GetWindowRect(window, &r);
  return Numbers({r.left, r.top, r.right, r.bottom});
}

std::string Handle(HWND window) {
  return std::to_string(static_cast<long long>(reinterpret_cast<UINT_PTR>(window)));
}

std::wstring ClassOf(HWND window) {
  wchar_t name[256] = {};
  GetClassNameW(window, name, 256);
  return name;
}

BOOL CALLBACK Collect(HWND window, LPARAM into) {
  reinterpret_cast<std::vector<HWND>*>(into)->push_back(window);
  return TRUE;
}

std::string Control(HWND control) {
  const std::wstring className = ClassOf(control);
  wchar_t text[1024] = {};  // left empty by a control that does not answer in time
  Ask(control, WM_GETTEXT, 1024, reinterpret_cast<LPARAM>(text));
  std::string out = "{\"id\": " + std::to_string(GetDlgCtrlID(control)) +
                    ", \"text\": " + Quoted(text) + ", \"rect\": " + Rect(control);
  if (_wcsicmp(className.c_str(), L"Button") == 0) {
    out += ", \"check\": " + std::to_string(Ask(control, BM_GETCHECK));
  }
  if (_wcsicmp(className.c_str(), L"ListBox") == 0) {
    out += ", \"selection\": " + std::to_string(Ask(control, LB_GETCURSEL)) +
           ", \"items\": " + std::to_string(Ask(control, LB_GETCOUNT));
  }
  return out + "}";
}

std::string Window(HWND window) {
  RECT client = {};
  GetClientRect(window, &client);
  POINT origin = {0, 0};
  ClientToScreen(window, &origin);
  wchar_t title[1024] = {};
  InternalGetWindowText(window, title, 1024);  // kept by the system: no message to the window
  std::string out =
      "{\"hwnd\": " + Handle(window) + ", \"owner\": " + Handle(GetWindow(window, GW_OWNER)) +
      ", \"cls\": " + Quoted(ClassOf(window)) + ", \"title\": " + Quoted(title) +
      ", \"enabled\": " + (IsWindowEnabled(window) ? "true" : "false") +
      ", \"rect\": " + Rect(window) + ", \"client\": " + Numbers({client.right, client.bottom}) +
      ", \"origin\": " + Numbers({origin.x, origin.y}) + ", \"controls\": [";
  std::vector<HWND> children;
  EnumChildWindows(window, Collect, reinterpret_cast<LPARAM>(&children));
  const char* comma = "";
  for (HWND child : children) {
    if (GetAncestor(child, GA_PARENT) != window) continue;  // controls of controls: not ours
    out += comma + Control(child);
    comma = ", ";
  }
  return out + "]}";
}

int WriteAtOnce(const std::string& path, const std::string& text) {
  const std::string partial = path + ".part";
  std::FILE* file = std::fopen(partial.c_str(), "wb");
  if (file == nullptr) return 1;
  const bool written = std::fwrite(text.data(), 1, text.size(), file) == text.size();
  if (std::fclose(file) != 0 || !written) return 1;
  return MoveFileExA(partial.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING) ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 4 && std::strcmp(argv[1], "--run") == 0) {
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process = {};
    std::string commandLine = std::string("\"") + argv[3] + "\"";
    if (!CreateProcessA(argv[3], commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                        &startup, &process)) {
      return 1;
    }
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(process.hProcess, &code);
    return WriteAtOnce(argv[2], std::to_string(code) + "\n");
  }
  if (argc != 3) return 2;    // usage: see above
  std::vector<HWND> windows;  // a desktop that does not exist (not yet, or no more) shows none
  if (HDESK desktop = OpenDesktopA(argv[1], 0, FALSE, GENERIC_ALL)) {
    if (!SetThreadDesktop(desktop)) return 1;
    EnumWindows(Collect, reinterpret_cast<LPARAM>(&windows));
  }
  std::string json = "{\"windows\": [";
  const char* comma = "";
  for (HWND window : windows) {
    // Only windows a person could see: Wine's hidden helper windows answer slowly or not at all.
    if (!IsWindowVisible(window)) continue;
    json += comma + Window(window);
    comma = ",\n";
  }
  return WriteAtOnce(argv[2], json + "]}\n");
}
