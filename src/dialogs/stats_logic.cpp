#include "dialogs/stats_logic.h"

#include <cstdio>

#include "ground/savefile.h"
#include "ground/session.h"
#include "ground/texts.h"

namespace {

constexpr auto kPlayedFormat = Cp1252("Parties jouées:\t %i");
constexpr auto kWonFormat = Cp1252("Parties gagnées:\t %i");
constexpr auto kLostFormat = Cp1252("Parties perdues:\t %i");
constexpr auto kModeFormat = Cp1252("%i joueurs (section %i)");

// Verdict k covers the percentages 5k - 4 to 5k; the first is 0 alone, the last 96 and above.
constexpr int32_t kVerdictCount = 21;
constexpr Cp1252Text<40> kVerdicts[kVerdictCount] = {
    "Vraiment nul!",
    "Tu ne sait pas jouer?",
    "Argh... Trop déçu!",
    "Hm... Ca s'améliore pas!",
    "Non. Ce n'est pas bon.",
    "Bof. Très médiocre.",
    "Décevant...",
    "A la limite. Ca va mieux!",
    "Ca commence à venir!?",
    "Continue à bosser!",
    "Moyen. Mais pas trop mal!",
    "Pas mal, mais ne t'arrête pas!",
    "Vas-y! Continue!",
    "De mieux en mieux!",
    "Chouette! Ca c'est beau!",
    "Hey! Molo avec l'ordi là!",
    "Très bien!",
    "Excellent!",
    "Vraiment superbe!",
    "Cherche toi un autre adversaire!",
    "Ca c'est ben la mort qui tue!",
};

template <typename... Args>
std::string Format(const char* format, Args... args) {
  char text[200];
  std::snprintf(text, sizeof text, format, args...);
  return text;
}

}  // namespace

std::string ShareOfWinsText(uint16_t won, uint16_t lost) {
  if (lost == 0) return won == 0 ? "Moyennant:\t\t 0.00%" : "Moyennant:\t\t 100.00%";
  const double share = won * 100.0 / (won + lost);
  return Format("Moyennant:\t\t %2.2f%%", share);
}

const char* VerdictFor(uint16_t won, uint16_t lost) {
  if (lost == 0) return won == 0 ? kVerdicts[0] : kVerdicts[kVerdictCount - 1];
  const int32_t p = (won * 100) / (won + lost);
  if (p == 0) return kVerdicts[0];
  const int32_t k = (p + 4) / 5;
  return kVerdicts[k < kVerdictCount ? k : kVerdictCount - 1];
}

StatsTexts StatsDialogTexts() {
  const int32_t section = StatsSection();
  const StatsRecord* found = StatsRecordAt(section);
  const StatsRecord record = found != nullptr ? *found : StatsRecord{};
  StatsTexts t;
  t.Played = Format(kPlayedFormat, record.Played);
  t.Won = Format(kWonFormat, record.Won);
  t.Lost = Format(kLostFormat, record.Lost);
  t.Share = ShareOfWinsText(record.Won, record.Lost);
  t.Verdict = VerdictFor(record.Won, record.Lost);
  t.Mode = Format(kModeFormat, SessionState.GameMode, section + 1);
  return t;
}
