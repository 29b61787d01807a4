// The driver's platform: it has no window, so a repaint is a flag that the script's `paint`
// command honours, and every question is answered Yes (or OK).
#pragma once

struct DriverPlatformRecord {
  bool RepaintRequested = false;
  bool LoopEnded = false;
};

extern DriverPlatformRecord DriverPlatform;
