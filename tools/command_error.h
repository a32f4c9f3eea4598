#pragma once

#include "script/wording.h"

#include <exception>
#include <utility>

namespace Calder::Tools {

// What the command answers its caller.
constexpr int exit_holds = 0;
constexpr int exit_fails = 1;
constexpr int exit_bad_input = 2;
constexpr int exit_stopped_early = 3;

/// Ends the command with an error for standard error.
class CommandError : public std::exception {
  public:
    explicit CommandError(Script::Wording wording, int exit_code = exit_bad_input)
        : m_wording(std::move(wording)), m_exit_code(exit_code) {}

    Script::Wording const& wording() const { return m_wording; }
    char const* what() const noexcept override { return m_wording.text.c_str(); }
    int exit_code() const { return m_exit_code; }

  private:
    Script::Wording m_wording;
    int m_exit_code;
};

} // namespace Calder::Tools
