// The logical size, the fit of the picture in the client area, its margins and the pointer.
#include <vector>

#include "fit_cases.h"
#include "ground/session.h"
#include "render/viewport.h"
#include "test_support.h"

namespace {

class ViewportTest : public CoreTest {
 protected:
  static void Logical(int32_t w, int32_t h) {
    SessionState.LogicalWidth = w;
    SessionState.LogicalHeight = h;
  }
};

// Counter values 0..9 take the client size and value 9 refills; from the start the counter is
// 1, so the ninth message settles.
TEST_F(ViewportTest, LogicalSizeFollowsTheClientUntilTheTenthMessage) {
  for (int32_t start : {1, 0}) {
    if (start == 0) SessionState.SettleCounter = 0;
    ASSERT_EQ(SessionState.SettleCounter, start);
    std::vector<bool> refills;
    for (int32_t m = start; m < 12; ++m) refills.push_back(SettleLogicalSize(100 + m, 200 + m));
    EXPECT_EQ(SessionState.LogicalWidth, 109);
    EXPECT_EQ(SessionState.LogicalHeight, 209);
    EXPECT_EQ(SessionState.SettleCounter, 12);
    for (int32_t m = start; m < 12; ++m) EXPECT_EQ(refills[m - start], m == 9) << m;
  }
}

TEST_F(ViewportTest, FitKeepsTheAspectOnlyWhenAsked) {
  for (const FitCase& c : kFitCases) {
    Logical(c.W, c.H);
    SessionState.AlwaysSquare = c.square;
    FitDestination(c.clientW, c.clientH);
    SCOPED_TRACE(testing::Message() << c.W << "x" << c.H << " in " << c.clientW << "x" << c.clientH
                                    << " square " << c.square);
    EXPECT_EQ(Viewport.DisplayWidth, c.destW);
    EXPECT_EQ(Viewport.DisplayHeight, c.destH);
    EXPECT_EQ(MarginLeft(), c.offX);
    EXPECT_EQ(MarginTop(), c.offY);
  }
}

TEST_F(ViewportTest, PresentationBlacksOutWhatThePictureLeaves) {
  // Right of and below the picture always; left and above only beyond one pixel.
  // clang-format off
  struct Row { const char* Name; int32_t ClientW, ClientH; PixelRect Dest;
               std::vector<PixelRect> Black; };
  const Row rows[] = {
    {"Unscaled", 400, 200, {0, 0, 400, 200}, {{400, 0, 1000, 1000}, {0, 200, 1000, 1000}}},
    {"LeftMargin", 1000, 200, {299, 0, 401, 200},
     {{0, 0, 299, 1000}, {700, 0, 1000, 1000}, {0, 200, 1000, 1000}}},
    {"TopMargin", 400, 600, {0, 200, 400, 200},
     {{0, 0, 1000, 200}, {400, 0, 1000, 1000}, {0, 400, 1000, 1000}}},
    {"OnePixelMarginStaysUnpainted", 403, 200, {1, 0, 401, 200},
     {{402, 0, 1000, 1000}, {0, 200, 1000, 1000}}},
  };
  // clang-format on
  ForEachRow(rows, [](const Row& row) {
    Logical(400, 200);
    SessionState.AlwaysSquare = 1;
    FitDestination(row.ClientW, row.ClientH);
    const PresentPlan plan = PlanPresentation();
    EXPECT_EQ(plan.Source, (PixelRect{0, 0, 400, 200}));
    EXPECT_EQ(plan.Destination, row.Dest);
    EXPECT_EQ(std::vector<PixelRect>(plan.Black, plan.Black + plan.BlackCount), row.Black);
  });
}

TEST_F(ViewportTest, PointerMapsBackToLogicalPixels) {
  // clang-format off
  struct Row { const char* Name; int32_t W, H, Square, ClientW, ClientH, X, Y, MouseX, MouseY; };
  const Row rows[] = {
    {"TwiceTheSize", 285, 261, 0, 570, 522, 190, 100, 95, 50},
    {"PictureLeftEdge", 400, 200, 1, 1000, 200, 299, 0, 0, 0},
    {"LeftMarginIsLeftOfTheBoard", 400, 200, 1, 1000, 200, 200, 50, -98, 50},
    {"TopMargin", 400, 200, 1, 400, 600, 100, 300, 100, 100},
    {"EmptyClientAreaDividesByNothing", 400, 200, 1, 0, 0, 10, 10, 0, 0},
  };
  // clang-format on
  ForEachRow(rows, [](const Row& row) {
    Logical(row.W, row.H);
    SessionState.AlwaysSquare = row.Square;
    FitDestination(row.ClientW, row.ClientH);
    TrackPointer(row.X, row.Y);
    EXPECT_EQ(MouseX, row.MouseX);
    EXPECT_EQ(MouseY, row.MouseY);
  });
}

}  // namespace
