#include "render/frame_speech.h"

#include <cctype>

#include "engine/engine.h"
#include "ground/session.h"
#include "ground/texts.h"
#include "opponents/new_game.h"
#include "opponents/referee.h"
#include "opponents/roster.h"
#include "render/frame_logic.h"

namespace {

constexpr auto kNewGame = Cp1252("Nouvelle partie.");
constexpr auto kYou = Cp1252("Vous");
constexpr auto kYouInBoard = Cp1252("vous");
constexpr auto kEmpty = Cp1252("vide");
constexpr auto kFromBottom = Cp1252("De bas en haut. ");
constexpr auto kFromTop = Cp1252("De haut en bas. ");
constexpr auto kColumn = Cp1252("Colonne ");

// Whether the piece of a player would be drawn in a cell: the frame's own rule, which hides
// the computer's letters with one strategy.
bool PieceShown(int32_t player) {
  DrawList probe;
  PlanPiece(probe, 1, 1, player);
  return !probe.empty();
}

// The player whose piece a cell value of the referee's board shows (a marked piece too).
int32_t PlayerOfGridValue(int32_t value) {
  if (value == 1 || value == kMark + 1) return 1;
  if (value == 2 || value == kMark + 2) return 2;
  return 0;
}

void CellsFromGrid(SpokenFrame& frame) {
  const int32_t n = SessionState.BoardSize;
  for (int32_t y = 1; y < n; ++y) {
    const int32_t row = frame.UpsideDown ? n - y : y;
    for (int32_t x = 1; x < n; ++x) frame.Cells[x][y] = PlayerOfGridValue(Grid[x][row]);
  }
}

// The engine counts its rows from the bottom and its columns from 0; its side 0 is player 2.
void CellsFromEngine(SpokenFrame& frame) {
  const int32_t n = kEngineBoardSize;
  const uint8_t* const* cells = EngineBoardView();
  for (int32_t y = 1; y < n; ++y) {
    for (int32_t x = 1; x < n; ++x) {
      const uint8_t v = cells[x - 1][n - 1 - y];
      frame.Cells[x][y] = v == 1 ? 1 : v == 0 ? 2 : 0;
    }
  }
}

std::string WhoPlayed(const SpokenFrame& frame, int32_t player) {
  if (frame.TwoPlayers) return "Joueur " + std::to_string(player);
  return player == 1 ? std::string(kYou.c_str()) : frame.Opponent;
}

std::string WhoInBoard(const SpokenFrame& frame, int32_t player) {
  if (frame.TwoPlayers) return "joueur " + std::to_string(player);
  return player == 1 ? std::string(kYouInBoard.c_str()) : frame.Opponent;
}

int32_t PiecesIn(const SpokenFrame& frame, int32_t column, int32_t player) {
  int32_t count = 0;
  for (int32_t y = 1; y <= frame.Columns; ++y) count += frame.Cells[column][y] == player;
  return count;
}

bool HasPieces(const SpokenFrame& frame) {
  for (int32_t x = 1; x <= frame.Columns; ++x)
    if (PiecesIn(frame, x, 1) + PiecesIn(frame, x, 2) > 0) return true;
  return false;
}

bool SameCells(const SpokenFrame& a, const SpokenFrame& b) {
  if (a.Columns != b.Columns) return false;
  for (int32_t x = 1; x <= a.Columns; ++x)
    for (int32_t y = 1; y <= a.Columns; ++y)
      if (a.Cells[x][y] != b.Cells[x][y]) return false;
  return true;
}

// A line of the frame as a sentence: a full stop unless it ends with its own punctuation (a
// byte from 0x80 up is a letter of Windows-1252).
void Sentence(std::string& out, const std::string& line) {
  if (line.empty()) return;
  if (!out.empty()) out += ' ';
  out += line;
  const unsigned char last = static_cast<unsigned char>(line.back());
  if (std::isalnum(last) || last >= 0x80) out += '.';
}

// Each piece that has appeared, by player then column: "Vous : colonne 3."
void NewPieces(std::string& out, const SpokenFrame& before, const SpokenFrame& now) {
  for (int32_t player = 1; player <= 2; ++player) {
    for (int32_t x = 1; x <= now.Columns; ++x) {
      const int32_t was = before.Columns == now.Columns ? PiecesIn(before, x, player) : 0;
      for (int32_t k = was; k < PiecesIn(now, x, player); ++k) {
        Sentence(out, WhoPlayed(now, player) + " : colonne " + std::to_string(x));
      }
    }
  }
}

}  // namespace

SpokenFrame SpokenFrameOf(const DrawList& plan) {
  const SessionRecord& s = SessionState;
  SpokenFrame frame;
  const int32_t n = s.BoardSize;
  frame.Columns = n >= 2 && n - 1 <= kSpokenColumnsMax ? n - 1 : 0;
  frame.UpsideDown = DrawsUpsideDown(s.AiNumber);
  frame.TwoPlayers = s.GameMode == 2;
  frame.Opponent = RosterEntry(s.CharacterId).ShortName.c_str();
  const int32_t statusY = kCellPixels * n + 8;
  for (const DrawOp& op : plan) {
    if (op.Kind != DrawKind::Text) continue;
    if (op.Colour == kTitleColour && op.At.Y == 0) frame.Title = op.Text;
    if (op.Colour == kStatusColour && op.At == PixelPoint{0, statusY}) frame.Status = op.Text;
    if (op.Colour == kChallengeColour && op.At.Y == statusY) frame.Challenge = true;
  }
  if (frame.Columns == 0) return frame;
  if (FrameShowsEngineBoard()) {
    if (n == kEngineBoardSize) CellsFromEngine(frame);
  } else {
    CellsFromGrid(frame);
  }
  // A piece the frame does not draw is not said either.
  for (int32_t player = 1; player <= 2; ++player) {
    if (PieceShown(player)) continue;
    for (int32_t x = 1; x <= frame.Columns; ++x)
      for (int32_t y = 1; y <= frame.Columns; ++y)
        if (frame.Cells[x][y] == player) frame.Cells[x][y] = 0;
  }
  return frame;
}

std::string SayFrame(const SpokenFrame& before, const SpokenFrame& now) {
  if (SameCells(before, now) && before.Status == now.Status && before.Title == now.Title &&
      before.Challenge == now.Challenge) {
    return {};
  }
  std::string out;
  if (HasPieces(before) && !HasPieces(now)) {
    Sentence(out, kNewGame.c_str());
  } else {
    NewPieces(out, before, now);
  }
  Sentence(out, now.Status);
  if (now.Challenge && !before.Challenge) Sentence(out, "Challenge");
  if (now.Title != before.Title) Sentence(out, now.Title);
  return out;
}

std::string SayBoard(const SpokenFrame& frame) {
  std::string out = frame.UpsideDown ? kFromTop.c_str() : kFromBottom.c_str();
  for (int32_t x = 1; x <= frame.Columns; ++x) {
    out += kColumn.c_str() + std::to_string(x) + " : ";
    // From the side the pieces arrive from, up to the last piece: the empty cells beyond it
    // are the column's free room.
    int32_t last = 0;
    for (int32_t k = 1; k <= frame.Columns; ++k) {
      const int32_t y = frame.UpsideDown ? k : frame.Columns + 1 - k;
      if (frame.Cells[x][y] != 0) last = k;
    }
    if (last == 0) out += kEmpty.c_str();
    for (int32_t k = 1; k <= last; ++k) {
      const int32_t y = frame.UpsideDown ? k : frame.Columns + 1 - k;
      if (k > 1) out += ", ";
      out += frame.Cells[x][y] == 0 ? std::string(kEmpty.c_str())
                                    : WhoInBoard(frame, frame.Cells[x][y]);
    }
    out += x < frame.Columns ? ". " : ".";
  }
  return out;
}
