// orlune: inspects, filters and converts picture files from the command line.
#include <cstring>
#include <iostream>

#include "orlune/command/program.h"
#include "orlune/shared/interrupts.h"
#include "orlune/shared/standard_output.h"
#include "orlune_ptk.h"

int main(int argc, char** argv) {
  front::OccupyStandardStreams();
  front::WatchInterrupts();
  front::StandardOutput output;
  int status = front::SOME_FAILED;
  try {
    ZEL_SetErrorMode(ERROR_MODE_SILENT);
    status = front::RunProgram(argc, argv);
  } catch (const std::exception& failure) {
    std::cerr << "orlune: " << failure.what() << '\n';
  }
  // A reader that has seen enough is no failure to speak of.
  if (!output.Finish() && front::Interrupted() == 0) {
    std::cerr << "orlune: standard output cannot be written: " << std::strerror(output.reason())
              << '\n';
    if (status == front::ALL_WELL) status = front::SOME_FAILED;
  }
  return front::Interrupted() != 0 ? front::InterruptStatus() : status;
}
