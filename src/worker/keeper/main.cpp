// tessaryn-keeper COMMAND...: runs a host for the worker that holds the other end of standard input, and ends it with
// that worker. Started by tessaryn-worker alone.
#include <cstdio>

#include "platform/process/keeper.h"

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fputs("tessaryn-keeper is started by tessaryn-worker, with the command of a host\n", stderr);
    return 2;
  }
  return platform::keep({argv + 1, argv + argc});
}
