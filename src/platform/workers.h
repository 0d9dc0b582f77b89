// The library's workers: threads that sleep until a caller has something to share.
#pragma once

#include <cstdint>

namespace zel {

constexpr int32_t WORKERS_AT_MOST = 64;  // the caller among them

// A caller's pass: it is run once by each thread that takes part, and shares the work out itself.
// Worker 0 is the caller.
using WorkerPass = void (*)(void* context, int32_t worker);

// Runs the pass on this thread and on up to `helpers` workers, which are started at the first need.
// A worker that has not begun when this thread's own run ends never begins; the call returns when
// all who began have ended. Workers compute in the caller's floating-point environment; what they
// raise there is not handed back.
//
// The caller runs alone where the machine refuses threads, inside another pass, while another
// thread has the workers, and when it has floating-point traps, whose signals are its own.
void WorkersRun(int32_t helpers, WorkerPass pass, void* context);

// Ends and joins the workers. The next call that needs them starts over. It happens by itself when
// the library is unloaded; a forked child begins without workers.
void WorkersJoin();

}  // namespace zel
