#include "opponents/roster.h"

// clang-format off
constexpr Character Roster[kRosterSize] = {
    {"L'ordinateur", "L'ordi",
     "Il s'agit de l'IA standarde. Essayez de varier un peu si vous gagnez tout le temps..."},
    {"Sonic", "Sonic",
     "Ce personnage de jeux bien connu n'aime pas trop qu'on le fasse attendre."},
    {"Tails", "Tails",
     "Tails est le meilleur ami de Sonic.\nIl utilise une IA propre à lui."},
    {"Dr Robotnik", "Robotnik",
     "Il s'agit de l'ennemi de Sonic. Comme il aime bien tricher, il a un peu modifié la "
     "règle: c'est le Kalvero 3!"},
    {"Super Mario", "Mario",
     "Mario utilise une IA plutôt moyenne."},
    {"Bowser", "Bowser",
     "Bowser est l'ennemi de Mario.\nIl utilise une IA vraiment très agressive (propre à lui)"},
    {"Peach", "Peach",
     "La princesse utilise une IA assez défensive.\nAttention: Avec elle vous perdrez si vous "
     "touchez le plafond!"},
    {"Mickey Mouse", "Mickey",
     "Je sais pas ce qu'il vient faire là. Défensif et plutôt robotisé"},
    {"Tux", "Tux",
     "Bon ben ce pengouin devait bien apparaître quelque part (non je ne mettrai pas "
     "Gromble!).\nUne IA spéciale en Normal."},
    {"Buster Bunny", "Buster",
     "Buster bouffe des carrotes tant qu'il joue (en fait quand il joue pas aussi) ce qui le "
     "rend assez inattentif. IA spéciale"},
    {"Coco Bandicoot", "Coco",
     "La mignone petite soeur de Crash Bandicoot.\nSon intelligence très élevée."},
    {"Fred Pierrafeu", "Fred",
     "Eh oui, le Kalvero 4, ça a déjà bien des années... Mais pas avec la même règle: À "
     "l'époque, c'était plutôt le Kalvero 5!"},
    {"Velyane", "Velyane",
     "Vous la connaissez?\nElle est dotée d'une IA assez spéciale (modes normal et plus)"},
    {"Bub", "Bub",
     "Le héros de Bust-a-move y a un peu trop joué et quelque chose a déteint sur notre "
     "jeu... Devinez quoi!"},
};

const int32_t PlyWeights[kRosterSize][kPlies] = {
    { 8,  8,  5,  5, 3, 3},  // 0  L'ordinateur
    {10,  6,  8,  4, 6, 2},  // 1  Sonic
    { 8,  8,  5,  5, 3, 3},  // 2  Tails: cut below a completed line
    {12, 10,  8,  6, 4, 2},  // 3  Dr Robotnik: three in a row for the computer
    {12, 10,  8,  6, 4, 2},  // 4  Super Mario
    { 8,  8,  8,  8, 8, 8},  // 5  Bowser
    { 9,  8,  7,  6, 5, 4},  // 6  Peach: ceiling rule
    {15, 15, 10, 10, 5, 5},  // 7  Mickey Mouse: opening patterns
    {22, 18, 14, 10, 6, 2},  // 8  Tux: surplus count at Normal
    { 5, 15,  3, 10, 2, 5},  // 9  Buster Bunny
    { 8,  8,  5,  5, 3, 3},  // 10 Coco Bandicoot: the search engine, weights unused
    { 8,  8,  5,  5, 3, 3},  // 11 Fred Pierrafeu: five in a row
    { 8,  8,  8,  8, 8, 8},  // 12 Velyane: cut below a line, hidden letters
    { 8,  8,  5,  5, 3, 3},  // 13 Bub: upside-down board
};
// clang-format on

void RunNeededFor(int32_t aiNumber, int32_t needs[3]) {
  needs[0] = needs[1] = needs[2] = 3;
  if (aiNumber == 3) needs[2] = 2;
  if (aiNumber == 11) needs[1] = needs[2] = 4;
}
