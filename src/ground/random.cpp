#include "ground/random.h"

#include <ctime>

uint32_t RandomState = kRandomStart;

void SeedRandomFromClock() {
  SeedRandom(static_cast<uint32_t>(std::time(nullptr)));
}
