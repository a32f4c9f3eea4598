#pragma once

#include <stdexcept>
#include <string>

namespace Calder::Tools {

// What the command answers its caller.
constexpr int exit_holds = 0;
constexpr int exit_fails = 1;
constexpr int exit_bad_input = 2;
constexpr int exit_stopped_early = 3;

/// Ends the command with a message for standard error. The message is complete: nothing is put in
/// front of it.
class CommandError : public std::runtime_error {
  public:
    explicit CommandError(std::string const& message, int exit_code = exit_bad_input)
        : std::runtime_error(message), m_exit_code(exit_code) {}

    int exit_code() const { return m_exit_code; }

  private:
    int m_exit_code;
};

} // namespace Calder::Tools
