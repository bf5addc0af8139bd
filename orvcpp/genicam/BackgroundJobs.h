#ifndef BACKGROUNDJOBS_H
#define BACKGROUNDJOBS_H

#include <chrono>
#include <functional>

// The one owner of the backend's background threads.
//
// Work that must not wait on the caller's thread, and that no single object
// can wait for, runs here on a thread of its own: the change poller of each
// device, letting go of a lost device (Aravis says goodbye over a silent link
// and stops its heartbeat), taking control again after Aravis's heartbeat gave
// up, closing a stream of a lost camera, a host's attempt to find a camera
// again. Every thread started here is joined here: by waitForAll(), which a
// host calls before its main() returns, and at the latest when the process
// exits. Finished threads are joined whenever a new one starts.
//
// Threads started here carry the name "triggerio-bg" (what /proc shows).
class BackgroundJobs
{
public:
    // Runs job on a thread of its own.
    static void start(std::function<void()> job);
    // Waits until every job has ended, at most limit; true when none runs any
    // more. Never call it from a job.
    static bool waitForAll(std::chrono::milliseconds limit);
    // Jobs that have not ended yet.
    static int running();
};

#endif
