#include "opponents/roster.h"

#include "ground/texts.h"

namespace {

// clang-format off
constexpr auto kName0 = Cp1252("L'ordinateur");
constexpr auto kName1 = Cp1252("Sonic");
constexpr auto kName2 = Cp1252("Tails");
constexpr auto kName3 = Cp1252("Dr Robotnik");
constexpr auto kName4 = Cp1252("Super Mario");
constexpr auto kName5 = Cp1252("Bowser");
constexpr auto kName6 = Cp1252("Peach");
constexpr auto kName7 = Cp1252("Mickey Mouse");
constexpr auto kName8 = Cp1252("Tux");
constexpr auto kName9 = Cp1252("Buster Bunny");
constexpr auto kName10 = Cp1252("Coco Bandicoot");
constexpr auto kName11 = Cp1252("Fred Pierrafeu");
constexpr auto kName12 = Cp1252("Velyane");
constexpr auto kName13 = Cp1252("Bub");

constexpr auto kShort0 = Cp1252("L'ordi");
constexpr auto kShort3 = Cp1252("Robotnik");
constexpr auto kShort4 = Cp1252("Mario");
constexpr auto kShort7 = Cp1252("Mickey");
constexpr auto kShort9 = Cp1252("Buster");
constexpr auto kShort10 = Cp1252("Coco");
constexpr auto kShort11 = Cp1252("Fred");

constexpr auto kAbout0 = Cp1252("Il s'agit de l'IA standarde. Essayez de varier un peu si vous gagnez tout le temps...");
constexpr auto kAbout1 = Cp1252("Ce personnage de jeux bien connu n'aime pas trop qu'on le fasse attendre.");
constexpr auto kAbout2 = Cp1252("Tails est le meilleur ami de Sonic.\nIl utilise une IA propre à lui.");
constexpr auto kAbout3 = Cp1252("Il s'agit de l'ennemi de Sonic. Comme il aime bien tricher, il a un peu modifié la règle: c'est le Kalvero 3!");
constexpr auto kAbout4 = Cp1252("Mario utilise une IA plutôt moyenne.");
constexpr auto kAbout5 = Cp1252("Bowser est l'ennemi de Mario.\nIl utilise une IA vraiment très agressive (propre à lui)");
constexpr auto kAbout6 = Cp1252("La princesse utilise une IA assez défensive.\nAttention: Avec elle vous perdrez si vous touchez le plafond!");
constexpr auto kAbout7 = Cp1252("Je sais pas ce qu'il vient faire là. Défensif et plutôt robotisé");
constexpr auto kAbout8 = Cp1252("Bon ben ce pengouin devait bien apparaître quelque part (non je ne mettrai pas Gromble!).\nUne IA spéciale en Normal.");
constexpr auto kAbout9 = Cp1252("Buster bouffe des carrotes tant qu'il joue (en fait quand il joue pas aussi) ce qui le rend assez inattentif. IA spéciale");
constexpr auto kAbout10 = Cp1252("La mignone petite soeur de Crash Bandicoot.\nSon intelligence très élevée.");
constexpr auto kAbout11 = Cp1252("Eh oui, le Kalvero 4, ça a déjà bien des années... Mais pas avec la même règle: À l'époque, c'était plutôt le Kalvero 5!");
constexpr auto kAbout12 = Cp1252("Vous la connaissez?\nElle est dotée d'une IA assez spéciale (modes normal et plus)");
constexpr auto kAbout13 = Cp1252("Le héros de Bust-a-move y a un peu trop joué et quelque chose a déteint sur notre jeu... Devinez quoi!");
// clang-format on

}  // namespace

// clang-format off
const Character Roster[kRosterSize] = {
    {kName0, kShort0, kAbout0},   {kName1, kName1, kAbout1},    {kName2, kName2, kAbout2},
    {kName3, kShort3, kAbout3},   {kName4, kShort4, kAbout4},   {kName5, kName5, kAbout5},
    {kName6, kName6, kAbout6},    {kName7, kShort7, kAbout7},   {kName8, kName8, kAbout8},
    {kName9, kShort9, kAbout9},   {kName10, kShort10, kAbout10}, {kName11, kShort11, kAbout11},
    {kName12, kName12, kAbout12}, {kName13, kName13, kAbout13},
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
