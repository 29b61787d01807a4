// A save file of any content loads into settings in range, a few games at those settings keep
// the board's border empty, and the file written afterwards reads back to the same bytes.
#include <algorithm>
#include <fstream>
#include <iterator>
#include <string>

#include "cases.h"
#include "engine/engine.h"
#include "ground/random.h"
#include "ground/savefile.h"
#include "ground/session.h"
#include "opponents/new_game.h"
#include "shell/process_state.h"

std::string RunSaveFileCase(const uint8_t* data, size_t size, const std::string& folder) {
  if (size > kMaxCaseBytes) return {};
  ResetProcessState();
  EngineSeededGenerator = true;  // the engine must not seed from the clock: runs repeat exactly
  const std::string in = folder + "/input", out = folder + "/output", again = out + "2";
  std::ofstream(in, std::ios::binary | std::ios::trunc)
      .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  LoadSaveFile(in.c_str());
  if (std::string failure = CheckSessionInvariants(false); !failure.empty()) {
    return "after loading: " + failure;
  }

  uint32_t seed = 2166136261u;
  for (size_t i = 0; i < size; ++i) seed = (seed ^ data[i]) * 16777619u;
  SeedRandom(seed);
  // Slow settings play their games one level lower; the file still stores the loaded ones.
  const int32_t level = SessionState.Level, challenge = SessionState.Challenge;
  if (RepliesAreSlow()) {
    SessionState.Level = 1;
    SessionState.Challenge = 0;
  }
  size_t next = 0;
  const auto nextByte = [&]() -> uint8_t { return size == 0 ? 0 : data[size - 1 - next++ % size]; };
  for (int game = 0; game < 3; ++game) {
    if (std::string failure = PlayGame(nextByte, 48); !failure.empty()) {
      return failure + " in game " + std::to_string(game);
    }
  }
  SessionState.Level = level;
  SessionState.Challenge = challenge;

  WriteSaveFile(out.c_str());
  ResetProcessState();
  LoadSaveFile(out.c_str());
  WriteSaveFile(again.c_str());
  EndEngineGame();
  std::ifstream first(out, std::ios::binary), second(again, std::ios::binary);
  using Bytes = std::istreambuf_iterator<char>;
  return std::equal(Bytes(first), {}, Bytes(second), {}) ? "" : "the file reads back otherwise";
}
