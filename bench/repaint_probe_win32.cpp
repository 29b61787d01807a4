// kalvero4-repaint-probe: drives the game's main window from another program of the same
// desktop and times its repaints. A measuring tool, built on request and never shipped.
//
//   kalvero4-repaint-probe.exe start           confirms the home dialog of the first start
//   kalvero4-repaint-probe.exe play KEYS       types each character of KEYS into the board,
//                                              one move at a time
//   kalvero4-repaint-probe.exe measure COUNT   COUNT repaints, one line each, then a summary
//
// A repaint is asked for with RedrawWindow(RDW_INVALIDATE | RDW_UPDATENOW), and its time runs
// until the window has answered a message sent right after it (WM_NULL). RedrawWindow alone
// does not always cover the paint: usually it sends WM_PAINT and waits for it, but the game's
// own message loop may pick the paint up first, and then RedrawWindow finds nothing left to
// paint and returns while the paint is still running. The window answers WM_NULL only back in
// its message loop, after the paint, so request-to-answer covers the whole paint in both cases
// (plus one round trip between the programs, about 0.1 ms). Both parts are printed.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

constexpr UINT kAnswerTimeoutMs = 10000;

double Milliseconds(LARGE_INTEGER from, LARGE_INTEGER to) {
  static LARGE_INTEGER frequency = [] {
    LARGE_INTEGER f;
    QueryPerformanceFrequency(&f);
    return f;
  }();
  return 1000.0 * static_cast<double>(to.QuadPart - from.QuadPart) /
         static_cast<double>(frequency.QuadPart);
}

LARGE_INTEGER Now() {
  LARGE_INTEGER t;
  QueryPerformanceCounter(&t);
  return t;
}

// Waits for a visible top-level window of that class (or title), up to `seconds`.
HWND WaitWindow(const char* className, const char* title, int seconds) {
  for (int i = 0; i < seconds * 20; ++i) {
    HWND found = FindWindowA(className, title);
    if (found != nullptr && IsWindowVisible(found)) return found;
    Sleep(50);
  }
  return nullptr;
}

bool Answered(HWND window) {
  DWORD_PTR result = 0;
  return SendMessageTimeoutA(window, WM_NULL, 0, 0, SMTO_BLOCK, kAnswerTimeoutMs, &result) != 0;
}

// "Ok" on the home dialog; then the main window takes input again.
int Start() {
  HWND home = WaitWindow("#32770", "Acceuil", 60);
  if (home == nullptr) return std::fprintf(stderr, "no home dialog\n"), 1;
  PostMessageA(home, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED),
               reinterpret_cast<LPARAM>(GetDlgItem(home, IDOK)));
  for (int i = 0; i < 200; ++i) {
    HWND main = FindWindowA("Tovrelia", nullptr);
    if (main != nullptr && IsWindowEnabled(main) && FindWindowA("#32770", "Acceuil") == nullptr) {
      return Answered(main) ? 0 : 1;
    }
    Sleep(50);
  }
  return std::fprintf(stderr, "the home dialog did not close\n"), 1;
}

// Each character as a key: the move is played, then its repaint (which also judges it) is
// finished before the next one.
int Play(const char* keys) {
  HWND main = WaitWindow("Tovrelia", nullptr, 10);
  if (main == nullptr) return std::fprintf(stderr, "no main window\n"), 1;
  for (const char* k = keys; *k != 0; ++k) {
    DWORD_PTR result = 0;
    if (SendMessageTimeoutA(main, WM_CHAR, static_cast<unsigned char>(*k), 0, SMTO_BLOCK,
                            kAnswerTimeoutMs, &result) == 0) {
      return std::fprintf(stderr, "no answer to key %d\n", *k - '0'), 1;
    }
    RedrawWindow(main, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
  }
  return Answered(main) ? 0 : 1;
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  const size_t n = values.size();
  return n % 2 != 0 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2;
}

int Measure(int count) {
  HWND main = WaitWindow("Tovrelia", nullptr, 10);
  if (main == nullptr || count < 1) return std::fprintf(stderr, "no main window\n"), 1;
  RECT client = {};
  GetClientRect(main, &client);
  std::vector<double> repaints;
  std::vector<double> answers;
  for (int i = 0; i < count; ++i) {
    const LARGE_INTEGER t0 = Now();
    RedrawWindow(main, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    const LARGE_INTEGER t1 = Now();
    if (!Answered(main)) return std::fprintf(stderr, "the window stopped answering\n"), 1;
    const LARGE_INTEGER t2 = Now();
    repaints.push_back(Milliseconds(t0, t2));
    answers.push_back(Milliseconds(t1, t2));
    std::printf("repaint %3d: %8.3f ms (RedrawWindow %8.3f ms, then the answer %8.3f ms)\n", i + 1,
                repaints.back(), Milliseconds(t0, t1), answers.back());
  }
  std::printf(
      "client %ldx%ld, %d repaints: median %.3f ms, max %.3f ms (answer after "
      "RedrawWindow: median %.3f ms)\n",
      static_cast<long>(client.right), static_cast<long>(client.bottom), count, Median(repaints),
      *std::max_element(repaints.begin(), repaints.end()), Median(answers));
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 2 && std::strcmp(argv[1], "start") == 0) return Start();
  if (argc == 3 && std::strcmp(argv[1], "play") == 0) return Play(argv[2]);
  if (argc == 3 && std::strcmp(argv[1], "measure") == 0) return Measure(std::atoi(argv[2]));
  std::fprintf(stderr, "usage: kalvero4-repaint-probe start | play KEYS | measure COUNT\n");
  return 2;
}
