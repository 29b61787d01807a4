// What one fuzz input does, shared by the fuzz targets, the replay of their corpus in the
// ordinary test builds, and the soak run.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

// Inputs longer than this are not run: short scripts and save files reach every path.
constexpr size_t kMaxCaseBytes = 4096;

// Loads `data` as the save file in `folder`, plays a few games with actions drawn from the same
// bytes, and writes the file. Returns an empty string, or the first fault.
std::string RunSaveFileCase(const uint8_t* data, size_t size, const std::string& folder);

// Runs `data` as a driver script inside `folder`, line by line until the script turns slow or
// names a path outside the folder. Returns the driver's exit status, or -1 with `failure` set.
int RunDriverCase(const uint8_t* data, size_t size, const std::string& folder,
                  std::string* failure);

// Starts a game and plays at most `actions` actions, each chosen by the next byte, with the
// repaints that follow. Returns an empty string or the first broken invariant.
std::string PlayGame(const std::function<uint8_t()>& nextByte, int32_t actions);

// Whether a reply takes more than a few milliseconds under the sanitizers.
bool RepliesAreSlow();

// The settings and the game's state in range, the texts terminated, and with `border`, nothing
// on the grid outside the board. Empty, or what is wrong.
std::string CheckSessionInvariants(bool border);

// A fresh folder under /tmp, named after `target`, removed when the process exits.
std::string MakeScratchFolder(const char* target);
