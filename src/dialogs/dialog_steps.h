// The steps of the four dialogs over the controls of dialogs/dialog_host.h: what opening fills
// in and what each command does. A host shows the dialog, calls Open... once, then Command...
// for every button, list or check box the player uses (Enter gives the OK button's number,
// Escape and the close box the Cancel button's), until the step ends the dialog.
#pragma once

#include <cstdint>

enum class DialogKind { Home, Characters, Stats, About };

// The opening steps, and one command, of a dialog of any kind, for a host that runs every
// dialog through one loop.
void OpenDialogSteps(DialogKind kind);
void RunDialogCommand(DialogKind kind, int32_t control);

// The number of a dialog's template in the resource script, by which every host shows it.
int32_t DialogTemplate(DialogKind kind);

// What a dialog draws on an owner-drawn button in place of its template's text ("Ok" and
// "Pas Ok" in the home dialog, "Ok" in the characters dialog), or nullptr for a control that
// shows its template's own.
const char* OwnerDrawnLabel(DialogKind kind, int32_t control);

// The home dialog: players, level or statistics slot, board size, challenge.
void OpenHomeDialog();
void HomeDialogCommand(int32_t control);

// The characters dialog: opponent, strategy number, player's name. Returns true when the
// command was OK and the dialog ends with it.
void OpenCharactersDialog();
bool CharactersDialogCommand(int32_t control);

// The statistics dialog: only its OK button (or Enter) closes it.
void OpenStatsDialog();
void StatsDialogCommand(int32_t control);

// The about box: OK, Enter, Escape and the close box close it.
void AboutDialogCommand(int32_t control);
