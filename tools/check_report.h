#pragma once

#include "tools/answered.h"
#include "tools/json_writer.h"

#include <chrono>
#include <memory>
#include <string>

namespace Calder::Tools {

/// What came of all questions together.
struct Totals {
    std::size_t holding = 0;
    std::size_t failing = 0;
    std::size_t undecided = 0;
    std::uint64_t states = 0;
    std::uint64_t transitions = 0;
    std::chrono::duration<double> time{};

    void add(Answered const& answered);
};

/// Tells answers as they come: each is written when `tell` returns.
class CheckReport {
  public:
    CheckReport() = default;
    virtual ~CheckReport() = default;
    CheckReport(CheckReport const&) = delete;
    CheckReport& operator=(CheckReport const&) = delete;

    virtual void tell(Answered const& answered) = 0;
    virtual void finish(Totals const& totals) = 0;
    /// In the place of `finish` when an error ends the work.
    virtual void break_off() = 0;
};

/// For people.
std::unique_ptr<CheckReport> text_report();

/// For programs: one JSON object. `file` is the script as messages name it.
std::unique_ptr<CheckReport> json_report(std::string const& file);

} // namespace Calder::Tools
