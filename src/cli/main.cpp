// kalvero4-cli: the game without a window, driven by a script on standard input.
#include <iostream>

#include "cli/driver.h"

int main() {
  return RunDriverScript(std::cin, std::cout, std::cerr);
}
