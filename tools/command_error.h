#pragma once

#include <stdexcept>
#include <string>

namespace Calder::Tools {

// What the command answers its caller.
constexpr int exit_holds = 0;
constexpr int exit_fails = 1;
constexpr int exit_bad_input = 2;
constexpr int exit_stopped_early = 3;

/// Ends the command with a message for standard error and exit_bad_input. The message is complete:
/// nothing is put in front of it.
class CommandError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

} // namespace Calder::Tools
