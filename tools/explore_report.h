#pragma once

#include "script/script.h"
#include "state_space/machine/machine_exploration.h"

#include <chrono>
#include <memory>
#include <string>

namespace Calder::Tools {

/// A process and what came of exploring it.
struct Explored {
    Script::Script const& script;
    std::string const& process;
    StateSpace::MachineExploration const& exploration;
    std::chrono::duration<double> time;
    /// Whether that was asked for, too.
    bool looks_for_deadlock;

    bool is_complete() const { return exploration.run.outcome == StateSpace::Outcome::complete; }
};

/// Tells what was found, before a file is written with it.
class ExploreReport {
  public:
    ExploreReport() = default;
    virtual ~ExploreReport() = default;
    ExploreReport(ExploreReport const&) = delete;
    ExploreReport& operator=(ExploreReport const&) = delete;

    /// It is written when this returns. False when a deadlock was looked for and found.
    virtual bool tell(Explored const& explored) = 0;
    /// At the end when a file was asked for: its name, empty where it was not written.
    virtual void tell_file(std::string const& written) = 0;
    virtual void finish() = 0;
};

/// For people.
std::unique_ptr<ExploreReport> explore_text_report();

/// For programs: one JSON object.
std::unique_ptr<ExploreReport> explore_json_report();

} // namespace Calder::Tools
