// What one fuzz input does, shared by the fuzz targets, the replay of their corpus in the
// ordinary test builds, and the soak run.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

// Inputs longer than this are not run: short scripts and save files reach every path.
constexpr size_t kMaxCaseBytes = 4096;

// Loads `data` as the save file, plays a few games at the loaded settings with actions drawn
// from the same bytes, writes the file again and reads it back, in `folder`. Returns an empty
// string, or the first fault.
std::string RunSaveFileCase(const uint8_t* data, size_t size, const std::string& folder);

// Runs `data` as a script of the headless driver inside `folder`, fed one line at a time and
// no further once the script turns slow or names a path outside the folder. Returns the
// driver's exit status, or -1 with `failure` set when an invariant broke.
int RunDriverCase(const uint8_t* data, size_t size, const std::string& folder,
                  std::string* failure);

// Starts a game and plays it at the current settings for at most `actions` actions, each a
// click or a key on a column (beside the board too) or "Recommencer", chosen by the next byte,
// with the repaints that follow. Returns an empty string or the first broken invariant.
std::string PlayGame(const std::function<uint8_t()>& nextByte, int32_t actions);

// Whether a reply takes more than a few milliseconds under the sanitizers at the current
// settings: the look-ahead at Dur on a large board or with Challenge beyond nine columns, the
// engine's deepest search.
bool RepliesAreSlow();

// Every setting that indexes a table within its range, the game's state in its values, the text
// buffer and the name terminated, and with `border`, nothing on the grid outside the board.
// Returns an empty string or what is wrong.
std::string CheckSessionInvariants(bool border);

// A fresh folder under /tmp, named after `target`, removed when the process exits.
std::string MakeScratchFolder(const char* target);
