#ifndef ORVCPP_EXCLUSIVEACCESS_H
#define ORVCPP_EXCLUSIVEACCESS_H

namespace OrvCPP
{

// Offered (found with dynamic_cast on a feature handle) by cameras whose
// features may be called from more than one thread: lets a thread run a
// sequence of calls that no other thread's calls come between, such as
// pointing a selector at each line, reading, and pointing it back.
//
// The GUI thread needs no bracket: its calls between two passes of its event
// loop form one such run by themselves. Any other thread brackets its run:
//
//   if (access->BeginExclusive(500)) {
//       ... calls on features of the same camera ...
//       access->EndExclusive();
//   }
class ExclusiveAccess
{
public:
    virtual ~ExclusiveAccess() = default;

    // Waits at most timeoutMs until no other thread runs calls on this
    // camera; true when the calling thread now holds it (nested calls nest).
    virtual bool BeginExclusive(int timeoutMs) = 0;
    // Ends the run begun by the matching BeginExclusive.
    virtual void EndExclusive() = 0;
};

} // namespace OrvCPP

#endif
