// The logical size, the fit of the picture in the client area, the black margins and the
// mapping of pointer positions.
#include <gtest/gtest.h>

#include <vector>

#include "fit_cases.h"
#include "ground/session.h"
#include "render/viewport.h"
#include "shell/turnflow.h"
#include "test_support.h"

namespace {

class ViewportTest : public CoreTest {
 protected:
  void Logical(int32_t w, int32_t h) {
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
  struct Case {
    int32_t clientW, clientH, square;
    PixelRect dest;
    std::vector<PixelRect> black;
  };
  const Case cases[] = {
      // Unscaled: only the areas right of and below the picture, always.
      {400, 200, 1, {0, 0, 400, 200}, {{400, 0, 1000, 1000}, {0, 200, 1000, 1000}}},
      // Margins on the left and the top.
      {1000,
       200,
       1,
       {299, 0, 401, 200},
       {{0, 0, 299, 1000}, {700, 0, 1000, 1000}, {0, 200, 1000, 1000}}},
      {400,
       600,
       1,
       {0, 200, 400, 200},
       {{0, 0, 1000, 200}, {400, 0, 1000, 1000}, {0, 400, 1000, 1000}}},
      // A margin of one pixel is not blacked out.
      {403, 200, 1, {1, 0, 401, 200}, {{402, 0, 1000, 1000}, {0, 200, 1000, 1000}}},
  };
  Logical(400, 200);
  for (const Case& c : cases) {
    SessionState.AlwaysSquare = c.square;
    FitDestination(c.clientW, c.clientH);
    const PresentPlan plan = PlanPresentation();
    SCOPED_TRACE(testing::Message() << c.clientW << "x" << c.clientH);
    EXPECT_EQ(plan.Source, (PixelRect{0, 0, 400, 200}));
    EXPECT_EQ(plan.Destination, c.dest);
    ASSERT_EQ(plan.BlackCount, static_cast<int32_t>(c.black.size()));
    for (size_t i = 0; i < c.black.size(); ++i) EXPECT_EQ(plan.Black[i], c.black[i]) << i;
  }
}

TEST_F(ViewportTest, ALogicalSizeBeyondTheBuffersShowsItsExcessBlack) {
  Logical(800, 500);
  FitDestination(1600, 500);  // twice as wide, stretched
  const PresentPlan plan = PlanPresentation();
  EXPECT_EQ(plan.Source, (PixelRect{0, 0, 660, 500}));
  EXPECT_EQ(plan.Destination, (PixelRect{0, 0, 1320, 500}));  // the same scale as the whole
  ASSERT_EQ(plan.BlackCount, 3);
  EXPECT_EQ(plan.Black[2], (PixelRect{1320, 0, 280, 500}));
}

TEST_F(ViewportTest, PointerMapsBackToLogicalPixels) {
  struct Case {
    int32_t W, H, square, clientW, clientH, x, y, mouseX, mouseY;
  };
  const Case cases[] = {
      {400, 300, 0, 400, 300, 95, 10, 95, 10},
      {285, 261, 0, 570, 522, 190, 100, 95, 50},   // twice the size
      {400, 200, 1, 1000, 200, 299, 0, 0, 0},      // at the picture's left edge
      {400, 200, 1, 1000, 200, 200, 50, -98, 50},  // in the margin: left of the board
      {400, 200, 1, 400, 600, 100, 300, 100, 100},
  };
  for (const Case& c : cases) {
    Logical(c.W, c.H);
    SessionState.AlwaysSquare = c.square;
    FitDestination(c.clientW, c.clientH);
    TrackPointer(c.x, c.y);
    EXPECT_EQ(MouseX, c.mouseX) << c.x << "," << c.y;
    EXPECT_EQ(MouseY, c.mouseY) << c.x << "," << c.y;
  }
}

TEST_F(ViewportTest, AnEmptyClientAreaKeepsTheLastPointerPosition) {
  FitDestination(300, 200);
  TrackPointer(95, 40);
  const int32_t x = MouseX, y = MouseY;
  FitDestination(0, 0);
  TrackPointer(10, 10);
  EXPECT_EQ(MouseX, x);
  EXPECT_EQ(MouseY, y);
}

}  // namespace
