#pragma once

namespace Calder::Tools {

/// While one lives, the first Ctrl-C (SIGINT) or SIGTERM is only noted, so that what was found so
/// far can be told; one that comes a moment later ends the program as usual.
class InterruptionWatch {
  public:
    InterruptionWatch();
    ~InterruptionWatch();
    InterruptionWatch(InterruptionWatch const&) = delete;
    InterruptionWatch& operator=(InterruptionWatch const&) = delete;

    bool interrupted() const;
};

} // namespace Calder::Tools
