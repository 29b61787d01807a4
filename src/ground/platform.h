// What the portable core asks of the program that hosts it: the Windows front end, the headless
// driver and the tests each define these functions once. Nothing else of the platform reaches
// the core.
#pragma once

#include <cstdint>

// Message box buttons and icons, and the answers, with the values the Windows API gives them.
constexpr uint32_t kAskOk = 0x00;
constexpr uint32_t kAskOkCancel = 0x01;
constexpr uint32_t kAskYesNo = 0x04;
constexpr uint32_t kAskStop = 0x10;
constexpr uint32_t kAskExclamation = 0x30;
constexpr uint32_t kAskInformation = 0x40;
constexpr int32_t kAnswerOk = 1;
constexpr int32_t kAnswerCancel = 2;
constexpr int32_t kAnswerYes = 6;
constexpr int32_t kAnswerNo = 7;

// Asks for one more repaint of the whole main window; several requests give one repaint.
void RequestRepaint();

// Asks the message loop to end with the given exit code.
void EndMessageLoop(int32_t code);

// Shows a modal message box owned by the main window (texts in Windows-1252) and returns the
// button that closed it.
int32_t AskUser(const char* text, const char* title, uint32_t flags);

// Renames the file `from` to `to`, replacing a file already at `to` in one step, and returns
// whether it did. The C library's rename on Windows refuses to replace, hence a service of its own.
bool ReplaceFileWith(const char* from, const char* to);
