#include "ground/random.h"

#include <ctime>

uint32_t RandomState = 1;  // the C runtime's state before any seeding

void SeedRandomFromClock() {
  SeedRandom(static_cast<uint32_t>(std::time(nullptr)));
}
