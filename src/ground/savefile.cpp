#include "ground/savefile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include "ground/platform.h"
#include "ground/session.h"
#include "ground/texts.h"

int32_t SettingsBlock[kSettingsSlots];
StatsRecord StatsTable[kStatsRecords];

namespace {

constexpr auto kWriteFailure = Cp1252(
    "Impossible d'écrire le fichier de sauvegarde.\nCelui-ci pourrait être déjà utilisé par "
    "quelqu'un d'autre, interdit ou tout simplement faux.\nEssayez de le supprimer.");
constexpr auto kWriteFailureTitle = Cp1252("Déception");

// The content as bytes, little-endian, in file order.
void PackContent(uint8_t* out) {
  for (int32_t k = 0; k < kSettingsSlots; ++k) {
    const uint32_t v = static_cast<uint32_t>(SettingsBlock[k]);
    for (int32_t b = 0; b < 4; ++b) *out++ = static_cast<uint8_t>(v >> (8 * b));
  }
  for (const StatsRecord& r : StatsTable) {
    const uint16_t counters[6] = {r.Played, r.Won, r.Lost, r.Unused[0], r.Unused[1], r.Unused[2]};
    for (uint16_t c : counters) {
      *out++ = static_cast<uint8_t>(c);
      *out++ = static_cast<uint8_t>(c >> 8);
    }
  }
  std::memcpy(out, SessionState.PlayerName, kPlayerNameBytes);
}

// Takes the whole content image into the blocks.
void UnpackContent(const uint8_t* in) {
  for (int32_t k = 0; k < kSettingsSlots; ++k, in += 4) {
    SettingsBlock[k] =
        static_cast<int32_t>(in[0] | in[1] << 8 | in[2] << 16 | static_cast<uint32_t>(in[3]) << 24);
  }
  for (StatsRecord& r : StatsTable) {
    uint16_t* counters[6] = {&r.Played, &r.Won, &r.Lost, &r.Unused[0], &r.Unused[1], &r.Unused[2]};
    for (uint16_t* c : counters) {
      *c = static_cast<uint16_t>(in[0] | in[1] << 8);
      in += 2;
    }
  }
  std::memcpy(SessionState.PlayerName, in, kPlayerNameBytes);
}

// Stored text stream to content: each 0x0D 0x0A pair is one 0x0A; every other byte, 0x0D and
// 0x1A included, is content. Fills at most `capacity` bytes and returns how many.
int32_t DecodeLineEnds(const uint8_t* raw, size_t rawCount, uint8_t* content, int32_t capacity) {
  int32_t n = 0;
  for (size_t i = 0; i < rawCount && n < capacity; ++i) {
    if (raw[i] == 0x0D && i + 1 < rawCount && raw[i + 1] == 0x0A) ++i;
    content[n++] = raw[i];
  }
  return n;
}

void TellWriteFailure() {
  AskUser(kWriteFailure, kWriteFailureTitle, kAskOk | kAskExclamation);
}

// Whether the file may be replaced: it doesn't exist yet, or it opens for writing. A read-only
// or locked file is left alone even where renaming over it would work. The C library and the
// platform do the file work, not std::filesystem: on Windows its paths are wide strings
// converted through the C++ locale, which alone linked the locale and stream code of the C++
// runtime into the game (about 0.9 MB).
bool MayReplace(const char* path) {
  errno = 0;
  std::FILE* probe = std::fopen(path, "r+b");  // neither creates nor truncates
  if (probe == nullptr) return errno == ENOENT;
  std::fclose(probe);
  return true;
}

}  // namespace

int32_t StatsSection() {
  const SessionRecord& s = SessionState;
  return 4 * s.AiNumber + s.Level + s.Challenge + 56 * (s.GameMode - 1);
}

StatsRecord* StatsRecordAt(int32_t section) {
  return section >= 0 && section < kStatsRecords ? &StatsTable[section] : nullptr;
}

void ApplyStoredSetting(const StoredSetting& setting, int32_t value) {
  const bool inRange = value >= setting.Range.Low && value <= setting.Range.High;
  SessionState.*setting.Field = inRange ? value : setting.Initial;
}

void LoadSaveFile(const char* path) {
  std::memset(StatsTable, 0, sizeof StatsTable);
  std::memcpy(SessionState.PlayerName, InitialSession().PlayerName, sizeof SessionState.PlayerName);
  std::memset(SettingsBlock, 0, sizeof SettingsBlock);
  SettingsBlock[kAlwaysSquareSlot] = 1;

  std::FILE* file = std::fopen(path, "rb");
  if (file == nullptr) return;
  // The content never takes more than twice its size on disk; anything beyond is not read.
  uint8_t raw[2 * kSaveContentBytes];
  const size_t rawCount = std::fread(raw, 1, sizeof raw, file);
  std::fclose(file);
  // A short file overwrites only the bytes it holds; the rest keep their presets.
  uint8_t content[kSaveContentBytes];
  PackContent(content);
  DecodeLineEnds(raw, rawCount, content, kSaveContentBytes);
  UnpackContent(content);

  for (int32_t slot = 0; slot < kAlwaysSquareSlot; ++slot) {
    ApplyStoredSetting(kStoredSettings[slot], SettingsBlock[slot]);
  }
}

void WriteSaveFile(const char* path) {
  for (int32_t slot = 0; slot < kStoredSettingCount; ++slot) {
    SettingsBlock[slot] = SessionState.*kStoredSettings[slot].Field;
  }
  uint8_t content[kSaveContentBytes];
  PackContent(content);
  std::string stored;
  stored.reserve(2 * kSaveContentBytes);
  for (uint8_t b : content) {
    if (b == 0x0A) stored += '\x0D';
    stored += static_cast<char>(b);
  }

  if (!MayReplace(path)) return TellWriteFailure();
  const std::string temporary = std::string(path) + ".tmp";
  std::FILE* file = std::fopen(temporary.c_str(), "wb");
  if (file == nullptr) return TellWriteFailure();
  const bool written = std::fwrite(stored.data(), 1, stored.size(), file) == stored.size();
  const bool closed = std::fclose(file) == 0;
  if (!written || !closed || !ReplaceFileWith(temporary.c_str(), path)) {
    std::remove(temporary.c_str());
    TellWriteFailure();
  }
}

void CountLoss(int32_t section) {
  if (StatsRecord* r = StatsRecordAt(section)) ++r->Lost;
}
