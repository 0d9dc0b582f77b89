// The whole program, without what its parts are made of.
#pragma once

namespace front {

// Exit statuses. A run that was interrupted ends with 128 and the signal's number.
constexpr int ALL_WELL = 0;
constexpr int SOME_FAILED = 1;  // a file could not be read or written; the others were done
constexpr int BAD_USE = 2;      // the command line makes no sense; nothing was done

// Runs what the arguments ask for and gives the program's exit status.
int RunProgram(int argc, char** argv);

}  // namespace front
