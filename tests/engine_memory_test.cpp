// The engine's memory: running out of it, slots taken once and reused, and the one-time seeding
// of the generator. Leaks show in the sanitize build, whose LeakSanitizer sees every block of a
// released game that was not given back once the next game starts.
#include <ctime>

#include "engine_fixture.h"

using EngineDeathTest = EngineTest;

// Running out at the first block or later in a short game with a search ends the process.
TEST_F(EngineDeathTest, RunningOutAnywhereInAGameEndsTheProcess) {
  TestHooks.AllocationsLeft = 0;
  EXPECT_EXIT(AllocOrDie(12345), ::testing::ExitedWithCode(1),
              "^kv: emalloc\\(\\) - Can't allocate 12345 bytes\\.\n$");
  for (int32_t blocksLeft : {0, 3, 20, 64}) {
    EngineRelease();
    TestHooks.AllocationsLeft = blocksLeft;
    EXPECT_EXIT((EngineStart(8, 7, 4), EnginePlay(1, 3), EngineChooseAndPlay(0, 3)),
                ::testing::ExitedWithCode(1), "^kv: emalloc\\(\\) - Can't allocate [0-9]+ bytes")
        << blocksLeft << " blocks left";
  }
}

// Each slot is taken the first time the stack reaches it; later searches take nothing until one
// goes deeper.
TEST_F(EngineTest, PushesTakeSlotsOnceAndReuseThem) {
  EngineChooseAndPlay(0, 4);
  EXPECT_EQ(Engine.PositionStack.SlotsWithArrays, 5);
  TestHooks.AllocationsLeft = 1000;
  EnginePlay(1, 0);
  EngineChooseAndPlay(0, 4);
  EngineChooseAndPlay(1, 2);
  EXPECT_EQ(TestHooks.AllocationsLeft, 1000);
  EngineChooseAndPlay(0, 6);
  EXPECT_EQ(Engine.PositionStack.SlotsWithArrays, 7);
  EXPECT_LT(TestHooks.AllocationsLeft, 1000);
}

// The clock seeds the generator at the first engine start of the process only.
TEST_F(EngineTest, OnlyTheFirstGameSeedsTheGenerator) {
  EngineRelease();
  EngineSeededGenerator = false;
  const uint32_t before = static_cast<uint32_t>(std::time(nullptr));
  EngineStart(8, 7, 4);
  EXPECT_TRUE(RandomState >= before && RandomState <= static_cast<uint32_t>(std::time(nullptr)));
  SeedRandom(4242);
  EngineRelease();
  EngineStart(8, 7, 4);
  EXPECT_EQ(RandomState, 4242u);
}
