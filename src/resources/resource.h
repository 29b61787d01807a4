// Numbers of the program's resources and of the controls and commands they carry. Read by the
// C++ sources and by the resource compiler, so only plain #defines belong here.
//
// Each kind of resource has its own number space: menu 109, accelerator table 109, string 109
// and icon 109 are four different resources.
#pragma once

// Menu and accelerator table of the main window.
#define IDR_MAINMENU 109
#define IDR_ACCELERATORS 109

// Strings.
#define IDS_APP_TITLE 103       // "Kalvero 4": the title of the window
#define IDS_WINDOW_CLASS 109    // "Tovrelia": the name of the window class
#define IDS_DISCREET_TITLE 110  // "C:\": the title with "Discretos" on

// Icons.
#define IDI_KALVERO4 107  // 48 x 48, 32 x 32 and 16 x 16
#define IDI_SMALL 108     // 16 x 16
#define IDI_DISCREET 109  // 16 x 16, used with "Discretos" on

// Menu commands, sent by the menu and by the accelerators.
#define ID_MENU_HOME 32775            // "&Acceuil", A
#define ID_MENU_RESTART 32773         // "&Recommencer", R
#define ID_MENU_STATS 32782           // "&Stats", S
#define ID_MENU_DISCREET 32790        // "Discretos", O
#define ID_MENU_ABOUT 104             // "À propos &de...", D
#define ID_MENU_QUIT 105              // "&Quitter", Q
#define ID_GRAPHICS_IMAGES 32777      // "&Images", I
#define ID_GRAPHICS_COLOURS 32783     // "&Couleurs perso", C
#define ID_GRAPHICS_SMOOTHING 32778   // "Lissage &en étiré", E
#define ID_GRAPHICS_SQUARE 32791      // "Troujours carré", T
#define ID_GRAPHICS_RATIO_1X 32788    // "&1x"
#define ID_GRAPHICS_RATIO_2X 32785    // "&2x"
#define ID_GRAPHICS_RATIO_3X 32786    // "&3x"
#define ID_GRAPHICS_RATIO_4X 32787    // "&4x"

// Dialogs. Their OK and cancel buttons are IDOK (1) and IDCANCEL (2).
#define IDD_HOME 132
#define IDD_CHARACTERS 161
#define IDD_STATS 156
#define IDD_ABOUT 103

#ifndef IDC_STATIC
#define IDC_STATIC (-1)
#endif

// Home dialog.
#define IDC_HOME_ONE_PLAYER 18004
#define IDC_HOME_TWO_PLAYERS 18005
#define IDC_HOME_LEVEL_GROUP 1029  // "Niveau", or "Stats" for two players
#define IDC_HOME_LEVEL_1 18001     // "Facile" / "Case 1"
#define IDC_HOME_LEVEL_2 18002     // "Normal" / "Case 2"
#define IDC_HOME_LEVEL_3 18003     // "Dur" / "Case 3"
#define IDC_HOME_CELLS 1022        // cells a side, as the player types it
#define IDC_HOME_CHALLENGE 1030

// Characters dialog.
#define IDC_CHARACTERS_LIST 1031
#define IDC_CHARACTERS_DESCRIPTION 1032
#define IDC_CHARACTERS_NAME 1033
#define IDC_CHARACTERS_AI_LABEL 1038
#define IDC_CHARACTERS_AI_NUMBER 1037
#define IDC_CHARACTERS_HELP 1039

// Statistics dialog.
#define IDC_STATS_HEADING 32775
#define IDC_STATS_PLAYED 1024
#define IDC_STATS_WON 1025
#define IDC_STATS_LOST 1026
#define IDC_STATS_SHARE 1027
#define IDC_STATS_MODE 1028
#define IDC_STATS_VERDICT 1041

// About box.
#define IDC_ABOUT_ICON 2

// Bitmaps.
#define IDB_BACKGROUND 148  // 1 x 2: black above dark blue
#define IDB_DISC_RED 152
#define IDB_DISC_BLUE 153
#define IDB_DISC_MASK 154  // black disc on white, under every sprite
#define IDB_DISC_GREEN 155
#define IDB_DISC_YELLOW 156
#define IDB_DISC_MAGENTA 157
#define IDB_DISC_CYAN 158
#define IDB_DISC_VIOLET 159
#define IDB_DISC_ORANGE 160
#define IDB_DISC_SILVER 161

// Portraits: IDB_PORTRAIT_FIRST + CharacterId.
#define IDB_PORTRAIT_FIRST 30000
#define IDB_PORTRAIT_0 30000
#define IDB_PORTRAIT_1 30001
#define IDB_PORTRAIT_2 30002
#define IDB_PORTRAIT_3 30003
#define IDB_PORTRAIT_4 30004
#define IDB_PORTRAIT_5 30005
#define IDB_PORTRAIT_6 30006
#define IDB_PORTRAIT_7 30007
#define IDB_PORTRAIT_8 30008
#define IDB_PORTRAIT_9 30009
#define IDB_PORTRAIT_10 30010
#define IDB_PORTRAIT_11 30011
#define IDB_PORTRAIT_12 30012
#define IDB_PORTRAIT_13 30013
