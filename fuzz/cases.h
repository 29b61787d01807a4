// What one fuzz input does, shared by the fuzz targets and the tests that replay the corpus, so
// that every input found once runs again in the ordinary test builds.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

// Loads `data` as a save file, plays a few games at the loaded settings with moves drawn from
// the same bytes, writes the save file again and reads it back. Works in `folder`, which must
// exist. Returns an empty string, or the first broken invariant.
std::string RunSaveFileCase(const uint8_t* data, size_t size, const std::string& folder);

// Runs `data` as a script of the headless driver, inside `folder` (emptied first; the working
// directory is restored afterwards). Lines stop being fed once the script turns slow (a deep
// look-ahead on a large board, or too many moves and repaints), or names a path outside the
// folder. Returns the driver's exit status, or -1 with `failure` set when an invariant broke.
int RunDriverCase(const uint8_t* data, size_t size, const std::string& folder,
                  std::string* failure);

// Inputs longer than this are not run: short scripts and save files reach every path.
constexpr size_t kMaxCaseBytes = 4096;

// The settings of the session and the state of its game checked against their ranges, the grid
// border checked empty when `border` is set, and the text buffer checked terminated. Returns an
// empty string or what is wrong.
std::string CheckSessionInvariants(bool border);

// A fresh folder under /tmp for one fuzz run, named after `target`, removed again when the
// process exits. Ends the process when no folder can be made.
std::string MakeScratchFolder(const char* target);
