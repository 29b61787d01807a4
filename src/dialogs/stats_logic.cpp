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

// clang-format off
constexpr auto kVerdict0 = Cp1252("Vraiment nul!");
constexpr auto kVerdict1 = Cp1252("Tu ne sait pas jouer?");
constexpr auto kVerdict2 = Cp1252("Argh... Trop déçu!");
constexpr auto kVerdict3 = Cp1252("Hm... Ca s'améliore pas!");
constexpr auto kVerdict4 = Cp1252("Non. Ce n'est pas bon.");
constexpr auto kVerdict5 = Cp1252("Bof. Très médiocre.");
constexpr auto kVerdict6 = Cp1252("Décevant...");
constexpr auto kVerdict7 = Cp1252("A la limite. Ca va mieux!");
constexpr auto kVerdict8 = Cp1252("Ca commence à venir!?");
constexpr auto kVerdict9 = Cp1252("Continue à bosser!");
constexpr auto kVerdict10 = Cp1252("Moyen. Mais pas trop mal!");
constexpr auto kVerdict11 = Cp1252("Pas mal, mais ne t'arrête pas!");
constexpr auto kVerdict12 = Cp1252("Vas-y! Continue!");
constexpr auto kVerdict13 = Cp1252("De mieux en mieux!");
constexpr auto kVerdict14 = Cp1252("Chouette! Ca c'est beau!");
constexpr auto kVerdict15 = Cp1252("Hey! Molo avec l'ordi là!");
constexpr auto kVerdict16 = Cp1252("Très bien!");
constexpr auto kVerdict17 = Cp1252("Excellent!");
constexpr auto kVerdict18 = Cp1252("Vraiment superbe!");
constexpr auto kVerdict19 = Cp1252("Cherche toi un autre adversaire!");
constexpr auto kVerdict20 = Cp1252("Ca c'est ben la mort qui tue!");

// Verdict k covers the percentages 5k - 4 to 5k; the first is 0 alone, the last 96 and above.
constexpr const char* kVerdicts[21] = {
    kVerdict0,  kVerdict1,  kVerdict2,  kVerdict3,  kVerdict4,  kVerdict5,  kVerdict6,
    kVerdict7,  kVerdict8,  kVerdict9,  kVerdict10, kVerdict11, kVerdict12, kVerdict13,
    kVerdict14, kVerdict15, kVerdict16, kVerdict17, kVerdict18, kVerdict19, kVerdict20,
};
// clang-format on

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
  if (lost == 0) return won == 0 ? kVerdicts[0] : kVerdicts[20];
  const int32_t p = (won * 100) / (won + lost);
  if (p == 0) return kVerdicts[0];
  const int32_t k = (p + 4) / 5;
  return kVerdicts[k < 20 ? k : 20];
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
