// Ctrl-C and closed pipes: a run ends after the file at hand, with whole files and a true count.
#pragma once

#include <poll.h>

#include <vector>

namespace front {

// From now on the first SIGINT, SIGTERM or SIGHUP is only noted; the second one ends the program at
// once, after what is half written has been deleted. A closed pipe is a failed write.
void WatchInterrupts();

// The signal that asked the run to end; 0 for none.
int Interrupted();

// poll() that such a signal ends, also one that came just before. Milliseconds below 0: for ever.
void PollUntilInterrupted(std::vector<pollfd>* files, int milliseconds);

// Notes that nobody reads the standard output any more.
void NoteClosedPipe();

// In a worker process: the parent alone decides.
void LeaveInterruptsToParent();

// The program's exit status for a run that was ended, as shells know it.
int InterruptStatus();

}  // namespace front
