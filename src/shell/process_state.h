// Every process-wide record back to what a freshly started process holds. The program itself
// starts that way; the driver and the tests use this to run many sessions in one process.
#pragma once

void ResetProcessState();
