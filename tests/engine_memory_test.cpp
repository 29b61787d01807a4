// The engine's memory: running out of it, slots taken once and reused, games started and released
// without leaking, and the one-time seeding of the generator.
#include <sys/resource.h>

#include <ctime>

#include "engine_fixture.h"

namespace {

const char kOutOfMemory[] = "^kv: emalloc\\(\\) - Can't allocate [0-9]+ bytes\\.\n$";

// A few moves and a search, so that a game takes stack slots as well.
void PlayAShortGame() {
  EnginePlay(1, 3);
  EngineChooseAndPlay(0, 3);
  EnginePlay(1, 2);
}

}  // namespace

using EngineDeathTest = EngineTest;

TEST_F(EngineDeathTest, RunningOutAnywhereInAGameEndsTheProcess) {
  EngineAllocationsLeft = 0;
  EXPECT_EXIT(AllocOrDie(12345), ::testing::ExitedWithCode(1),
              "^kv: emalloc\\(\\) - Can't allocate 12345 bytes\\.\n$");
  for (int32_t blocksLeft : {0, 3, 20, 64}) {
    EngineRelease();
    EngineAllocationsLeft = blocksLeft;
    EXPECT_EXIT((EngineStart(8, 7, 4), PlayAShortGame()), ::testing::ExitedWithCode(1),
                kOutOfMemory)
        << blocksLeft << " blocks left";
  }
}

#if !defined(__SANITIZE_ADDRESS__)  // the sanitizer's allocator reserves far beyond any limit
TEST_F(EngineDeathTest, RealShortageOfMemoryIsReported) {
  const auto underLimit = [] {
    const rlimit limit{256 << 20, 256 << 20};
    setrlimit(RLIMIT_AS, &limit);
    AllocOrDie(1 << 30);
  };
  EXPECT_EXIT(underLimit(), ::testing::ExitedWithCode(1),
              "kv: emalloc\\(\\) - Can't allocate 1073741824 bytes\\.\n$");
}
#endif

// Each slot is taken the first time the stack reaches it; later pushes take nothing. The
// reference search reaches every slot up to its depth.
TEST_F(EngineTest, PushesTakeSlotsOnceAndReuseThem) {
  PlainEngineChooseAndPlay(0, 4);
  EXPECT_EQ(Engine.PositionStack.SlotsWithArrays, 5);
  EngineAllocationsLeft = 1000;
  EnginePlay(1, 0);
  PlainEngineChooseAndPlay(0, 4);
  PlainEngineChooseAndPlay(1, 2);
  EXPECT_EQ(EngineAllocationsLeft, 1000);
  PlainEngineChooseAndPlay(0, 6);
  EXPECT_EQ(Engine.PositionStack.SlotsWithArrays, 7);
  EXPECT_LT(EngineAllocationsLeft, 1000);
}

// The game's search works on memory taken when the engine game starts: with no block left to
// hand out, a whole game of searches runs, the deepest (16) once few cells are left.
TEST_F(EngineTest, SearchTakesNoMemory) {
  EngineAllocationsLeft = 0;
  int32_t side = 0;
  while (EngineChooseAndPlay(side, Engine.PositionStack.Current->pieceCount < 40 ? 6 : 16)) {
    side = 1 - side;
  }
  EXPECT_TRUE(EngineBoardFull());
  EXPECT_EQ(Engine.PositionStack.SlotsWithArrays, 1);
}

// Every block of a game is given back; run under valgrind or LeakSanitizer as well.
TEST_F(EngineTest, ThousandGamesLeaveNothingBehind) {
  EngineRelease();
  EXPECT_EQ(EngineBlocksHeld, 0);
  for (int32_t game = 0; game < 1000; ++game) {
    EngineStart(8, 7, 4);
    PlayAShortGame();
    EngineRelease();
    ASSERT_EQ(EngineBlocksHeld, 0) << "game " << game;
  }
}

// The clock seeds the generator at the first engine start of the process only, and every game
// starts from the same position.
TEST_F(EngineTest, SecondGameStartsAlikeWithoutReseeding) {
  EngineRelease();
  EngineSeededGenerator = false;
  const uint32_t before = static_cast<uint32_t>(std::time(nullptr));
  EngineStart(8, 7, 4);
  const uint32_t after = static_cast<uint32_t>(std::time(nullptr));
  EXPECT_TRUE(RandomState >= before && RandomState <= after) << RandomState;
  EXPECT_TRUE(EngineSeededGenerator);
  const PositionCopy fresh = CopyCurrentPosition();
  PlayAShortGame();
  SeedRandom(4242);
  EngineRelease();
  EngineStart(8, 7, 4);
  EXPECT_EQ(RandomState, 4242u);
  EXPECT_EQ(CopyCurrentPosition(), fresh);
  EXPECT_EQ(Engine.PositionStack.Top, 0);
  EXPECT_EQ(Engine.PositionStack.SlotsWithArrays, 1);
}
