// The process-wide pseudo-random generator shared by the search engine's tie-breaks and the
// strategies. Linear congruential: state := state x 214013 + 2531011 (mod 2^32), and each draw
// yields bits 16..30 of the new state, a number from 0 to 32767.
#pragma once

#include <cstdint>

extern uint32_t RandomState;

inline void SeedRandom(uint32_t seed) {
  RandomState = seed;
}

// Seeds the generator with the current time in seconds.
void SeedRandomFromClock();

inline int32_t RandomNext() {
  RandomState = RandomState * 214013u + 2531011u;
  return static_cast<int32_t>((RandomState >> 16) & 0x7FFF);
}
