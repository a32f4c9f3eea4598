#include "tools/explore_report.h"

#include "state_space/deadlock.h"
#include "state_space/memory.h"
#include "tools/json_writer.h"
#include "tools/leaf_names.h"
#include "tools/limit_name.h"
#include "tools/standard_streams.h"
#include "tools/step_lines.h"
#include "tools/summary.h"
#include "tools/word_lists.h"

#include <fmt/core.h>

#include <algorithm>
#include <functional>
#include <optional>
#include <vector>

namespace Calder::Tools {

namespace {

/// An event and who takes part in it; nobody is known where there is no machine.
struct Step {
    std::string event;
    std::vector<std::string> participants;
};

std::vector<Step> steps_to(StateSpace::Deadlock const& deadlock, Explored const& explored) {
    std::optional<LeafNames> names;
    if (explored.exploration.machine) {
        names.emplace(explored.script, *explored.exploration.machine);
    }
    std::vector<Step> steps;
    for (std::size_t step = 0; step < deadlock.trace.size(); ++step) {
        unsigned const event = deadlock.trace[step];
        steps.push_back({explored.script.session().event_object(event)->name(), {}});
        if (names) {
            StateSpace::StateNumber const target =
                step + 1 < deadlock.sources.size() ? deadlock.sources[step + 1] : deadlock.state;
            steps.back().participants = names_taking_part(*names, explored.exploration,
                                                          deadlock.sources[step], event, target);
        }
    }
    return steps;
}

std::string trace_text(StateSpace::Deadlock const& deadlock,
                       ProcessCompiler::Session const& session) {
    std::string text;
    for (unsigned const event : deadlock.trace) {
        text += (text.empty() ? "" : ", ") + session.event_object(event)->name();
    }
    return text.empty() ? "at the start" : "after " + text;
}

/// For each event of the trace, which leaves of the machine take part in it.
void tell_steps(std::vector<Step> const& steps) {
    std::size_t width = least_column_width;
    for (Step const& step : steps) {
        width = std::max(width, step.event.size());
    }
    for (Step const& step : steps) {
        tell("", fmt::format("{:<{}} {}", step.event, width, joined(step.participants)));
    }
}

/// Tells whether there is a deadlock in what was explored; says whether none was found.
bool tell_deadlock(Explored const& explored) {
    auto const deadlock = StateSpace::find_deadlock(explored.exploration.run.lts);
    if (!deadlock) {
        tell("deadlock", explored.is_complete() ? "none" : "none in what was explored");
        return true;
    }
    tell("deadlock", trace_text(*deadlock, explored.script.session()));
    if (explored.exploration.machine) {
        tell_steps(steps_to(*deadlock, explored));
    }
    return false;
}

/// What explored: a machine tells its size.
std::string engine_text(StateSpace::MachineExploration const& exploration) {
    if (!exploration.machine) {
        return "terms";
    }
    std::size_t const leaves = start_leaves(exploration).size();
    std::size_t const configurations = configurations_met(exploration);
    return fmt::format("machine of {} component{}{}", leaves, leaves == 1 ? "" : "s",
                       configurations <= 1
                           ? ""
                           : fmt::format(" at the start, in {} configurations", configurations));
}

class TextReport final : public ExploreReport {
  public:
    bool tell(Explored const& explored) override {
        StateSpace::Run const& run = explored.exploration.run;
        Tools::tell("process", explored.process);
        Tools::tell("engine", engine_text(explored.exploration));
        Tools::tell("states", fmt::format("{}", run.state_count));
        Tools::tell("transitions", fmt::format("{}", run.transition_count));
        Tools::tell("complete", explored.is_complete()
                                    ? "yes"
                                    : fmt::format("no: {}", StateSpace::describe(run.outcome)));
        bool const holds = !explored.looks_for_deadlock || tell_deadlock(explored);
        tell_time_and_memory(explored.time);
        finish_results();
        return holds;
    }

    void tell_file(std::string const&) override {} // who asked for it knows its name
    void finish() override {}
};

class JsonReport final : public ExploreReport {
  public:
    bool tell(Explored const& explored) override {
        StateSpace::MachineExploration const& exploration = explored.exploration;
        // Before the first word: where there is no memory for it, nothing is half told.
        std::optional<StateSpace::Deadlock> deadlock;
        std::vector<Step> steps;
        if (explored.looks_for_deadlock) {
            deadlock = StateSpace::find_deadlock(exploration.run.lts);
        }
        if (deadlock) {
            steps = steps_to(*deadlock, explored);
        }
        m_json.begin_object();
        m_json.member("process", explored.process);
        m_json.member("engine", std::string(exploration.machine ? "machine" : "terms"));
        if (exploration.machine) {
            m_json.member("components", start_leaves(exploration).size());
            m_json.member("configurations", configurations_met(exploration));
        }
        m_json.member("states", exploration.run.state_count);
        m_json.member("transitions", exploration.run.transition_count);
        m_json.key("complete");
        m_json.truth(explored.is_complete());
        m_json.key("reason");
        m_json.text_or_null(limit_name(exploration.run.outcome));
        if (explored.looks_for_deadlock) {
            write_deadlock(deadlock.has_value(), steps);
        }
        m_json.key("seconds");
        m_json.decimal(explored.time.count());
        m_json.member("peak_bytes", StateSpace::peak_resident_bytes());
        m_json.flush();
        finish_results();
        return !deadlock;
    }

    void tell_file(std::string const& written) override {
        m_json.key("output");
        m_json.text_or_null(written);
    }

    void finish() override {
        m_json.end_object();
        m_json.finish();
        finish_results();
    }

  private:
    void write_deadlock(bool is_found, std::vector<Step> const& steps) {
        m_json.key("deadlock");
        if (!is_found) {
            m_json.null();
            return;
        }
        m_json.begin_object();
        m_json.key("steps");
        m_json.begin_array();
        for (Step const& step : steps) {
            m_json.begin_object();
            m_json.member("event", step.event);
            m_json.member("participants", step.participants);
            m_json.end_object();
        }
        m_json.end_array();
        m_json.end_object();
    }

    std::function<void(std::string_view)> const m_write = print_result;
    JsonWriter m_json{m_write};
};

} // namespace

std::unique_ptr<ExploreReport> explore_text_report() {
    return std::make_unique<TextReport>();
}

std::unique_ptr<ExploreReport> explore_json_report() {
    return std::make_unique<JsonReport>();
}

} // namespace Calder::Tools
