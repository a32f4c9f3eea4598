#pragma once

namespace Calder::Tools {

/// From here on Ctrl-C (SIGINT), SIGTERM or SIGHUP ends the program at once, with a message and
/// exit_stopped_early. For work that leaves nothing behind, such as reading a script.
void end_when_interrupted();

/// While one lives, the first of them is only noted, so that what was found so far can be
/// told; one that comes a moment later ends the program as usual.
class InterruptionWatch {
  public:
    InterruptionWatch();
    ~InterruptionWatch();
    InterruptionWatch(InterruptionWatch const&) = delete;
    InterruptionWatch& operator=(InterruptionWatch const&) = delete;

    bool interrupted() const;
};

} // namespace Calder::Tools
