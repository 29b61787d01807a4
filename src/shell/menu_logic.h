// The decisions of the menu commands that need no window: what a command does to the session,
// which confirmation it asks, what it counts, and the window sizes it asks for. The window
// opens the dialogs, sets the check marks and resizes itself as told.
#pragma once

#include <cstdint>

#include "ground/session.h"
#include "ground/texts.h"

inline constexpr auto kDiscreetNotice =
    Cp1252("Les changements seront pris en compte à la prochaine ouverture du programme.");
inline constexpr auto kDiscreetNoticeTitle = Cp1252("Attention");

// Whether leaving the current game abandons it: a piece has been played and nothing is decided.
bool GameIsAbandoned();

// "&Recommencer": nothing before the first piece; a game in progress is confirmed and counted
// as lost in `section`; then a new game and a repaint.
void MenuRestart(int32_t section);

// "&Acceuil", before its dialogs: a game in progress is confirmed, counted as lost in
// `section` and followed by a new game. Returns false when the player declines; nothing has
// changed then and the command stops.
bool MenuHomeStart(int32_t section);

// "&Acceuil", after its dialogs: a repaint and a new game in the settings just chosen. Returns
// true when the board size is no longer `previousBoardSize`: the window must then take the
// base size of the new board, after which MenuHomeResized runs.
bool MenuHomeFinish(int32_t previousBoardSize);

// After the window took its new size: the logical size settles afresh, and a repaint.
void MenuHomeResized();

// "&Quitter": a game in progress is confirmed and counted as lost. Returns true when the
// window is to be destroyed; the closing steps then count nothing more.
bool MenuQuit(int32_t section);

// A menu entry with a check mark that toggles a flag of the session.
struct MenuToggle {
  int32_t Command;
  int32_t SessionRecord::*Flag;
  bool CheckedWhenZero;  // "Discretos" is checked while the normal title is off
  bool Repaints;         // the title changes only at the next start: no repaint for it
};

// The toggle of a command number, or nullptr.
const MenuToggle* FindMenuToggle(int32_t command);

// Every toggle, for setting the check marks at start.
const MenuToggle* MenuToggles(int32_t* count);

// Whether a toggle's entry shows a check mark for the current settings.
bool MenuToggleChecked(const MenuToggle& toggle);

// Flips the toggle's flag, asks for a repaint when the option shows at once, and returns
// whether the entry is now checked.
bool ApplyMenuToggle(const MenuToggle& toggle);

// The enlargement of a "&Ratio écran" command (1 to 4), or 0 for any other command.
int32_t RatioFactor(int32_t command);

// Window size for an enlargement: the base size of the board plus factor - 1 logical sizes.
// The logical size does not settle again, so the picture is stretched to fill it.
struct WindowSize {
  int32_t Width;
  int32_t Height;
  bool operator==(const WindowSize&) const = default;
};
WindowSize RatioWindowSize(int32_t factor);
