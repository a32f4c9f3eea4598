#include "tools/followed_trace.h"

#include "refinement/machine_steps.h"
#include "state_space/search_monitor.h"
#include "tools/word_lists.h"

#include <fmt/core.h>

#include <algorithm>
#include <map>
#include <span>
#include <utility>

namespace Calder::Tools {

using Refinement::StateNumber;
using StateSpace::Word;

namespace {

std::vector<std::string> column_names(Pins::VectorMachine const& vectors) {
    std::vector<std::string> names;
    for (Pins::VectorMachine::Column const& column : vectors.columns()) {
        names.push_back(column.name);
    }
    return names;
}

/// The first column in which they differ; their number where there is none.
std::size_t first_difference(std::span<int const> left, std::span<int const> right) {
    auto const place = std::mismatch(left.begin(), left.end(), right.begin(), right.end()).first;
    return static_cast<std::size_t>(place - left.begin());
}

std::size_t differences(std::span<int const> left, std::span<int const> right) {
    std::size_t count = 0;
    for (std::size_t column = 0; column < left.size(); ++column) {
        count += left[column] != right[column] ? 1 : 0;
    }
    return count;
}

class Follower {
  public:
    Follower(TraceRows& rows, TracedMachine const& machine, StateSpace::SearchMonitor& monitor)
        : m_rows(rows), m_machine(machine), m_process(short_name(machine.name)),
          m_monitor(monitor) {
        for (unsigned const event : machine.vectors.events()) {
            m_events.push_back(machine.names.event(event));
        }
    }

    FollowedTrace run() {
        FollowedTrace trace;
        TraceRow row;
        m_rows.next(row); // there is one
        require_start(row);
        for (TraceRow next; m_rows.next(next); std::swap(row, next)) {
            m_monitor.go_on(1);
            add_step(row, event_between(row, next), next, trace);
        }
        finish(row, trace);
        return trace;
    }

  private:
    void require_start(TraceRow const& row) const {
        std::vector<int> const start = m_machine.vectors.start();
        std::size_t const column = first_difference(row.state, start);
        if (column < start.size()) {
            throw m_rows.error_at_column(row, column,
                                         fmt::format("{} begins with {} here, and not with {}",
                                                     m_process, start[column], row.state[column]));
        }
    }

    /// Of the step by which the row leads to the next one.
    unsigned event_between(TraceRow const& row, TraceRow const& next) {
        if (!row.event) {
            throw m_rows.error_at_event(row, "the event that leads to the next line is missing");
        }
        std::optional<unsigned> found;
        for_steps(row, [&](std::size_t label, std::span<int const> target) {
            if (std::equal(target.begin(), target.end(), next.state.begin()) && !found &&
                row.event->stands_for(m_events[label])) {
                found = m_machine.vectors.events()[label];
            }
        });
        if (!found) {
            refuse_step(row, next);
        }
        return *found;
    }

    /// No step of the row has its event and leads to the next one.
    [[noreturn]] void refuse_step(TraceRow const& row, TraceRow const& next) {
        auto const is_meant = [&](std::string const& name) { return row.event->stands_for(name); };
        std::string const event = short_name(row.event->text);
        if (std::none_of(m_events.begin(), m_events.end(), is_meant)) {
            throw m_rows.error_at_event(row, fmt::format("{} never performs {}", m_process, event));
        }
        std::vector<int> nearest;
        for_steps(row, [&](std::size_t label, std::span<int const> target) {
            if (is_meant(m_events[label]) &&
                (nearest.empty() ||
                 differences(target, next.state) < differences(nearest, next.state))) {
                nearest.assign(target.begin(), target.end());
            }
        });
        if (nearest.empty()) {
            std::vector<unsigned> const possible = possible_in(row);
            throw m_rows.error_at_event(
                row, fmt::format("{} cannot do {} there; possible then: {}", m_process, event,
                                 possible.empty() ? "nothing"
                                                  : listed(m_machine.names.events(possible))));
        }
        std::size_t const column = first_difference(nearest, next.state);
        throw m_rows.error_at_column(next, column,
                                     fmt::format("by {} {} comes to {} here, and not to {}", event,
                                                 m_process, nearest[column], next.state[column]));
    }

    template <typename Take> void for_steps(TraceRow const& row, Take take) {
        struct Taking {
            Take& take;
            std::size_t width;
        };
        Taking taking{take, row.state.size()};
        m_machine.vectors.for_all_steps(
            row.state.data(), m_scratch,
            {[](void* context, int label, int, int* successor) {
                 auto const& [take_step, width] = *static_cast<Taking*>(context);
                 take_step(static_cast<std::size_t>(label), {successor, width});
             },
             &taking});
    }

    /// What can happen, ascending, each once.
    std::vector<unsigned> possible_in(TraceRow const& row) {
        std::vector<bool> is_possible(m_events.size());
        for_steps(row, [&](std::size_t label, std::span<int const>) { is_possible[label] = true; });
        std::vector<unsigned> events;
        for (std::size_t label = 0; label < is_possible.size(); ++label) {
            if (is_possible[label]) {
                events.push_back(m_machine.vectors.events()[label]);
            }
        }
        return events;
    }

    StateNumber number_of(TraceRow const& row) {
        auto const number = static_cast<StateNumber>(m_numbers.size());
        return m_numbers.try_emplace(row.state, number).first->second;
    }

    /// Of a row that is known to be a state.
    std::vector<Word> words_of(TraceRow const& row) {
        return *m_machine.vectors.words_of(row.state, m_monitor);
    }

    void add_step(TraceRow const& row, unsigned event, TraceRow const& next, FollowedTrace& trace) {
        std::vector<Word> source = words_of(row);
        std::vector<Word> target = words_of(next);
        // The tables may have grown wider meanwhile; states known before end in zeros more.
        std::size_t const width = m_machine.running.tables->width();
        source.resize(width);
        target.resize(width);
        StateNumber const number = number_of(row);
        trace.steps.push_back(Refinement::described_step(m_machine.running, number, source.data(),
                                                         event, number_of(next), target.data()));
    }

    void finish(TraceRow const& row, FollowedTrace& trace) {
        StateNumber const number = number_of(row);
        auto const again =
            std::find_if(trace.steps.begin(), trace.steps.end(),
                         [&](auto const& step) { return step.source.number == number; });
        if (again != trace.steps.end()) {
            trace.loop_start = static_cast<std::size_t>(again - trace.steps.begin());
        } else if (row.event) {
            throw m_rows.error_at_event(
                row, "the trace ends here, and the state to which this leads is missing");
        }
        std::vector<Word> words = words_of(row);
        words.resize(m_machine.running.tables->width());
        trace.end = Refinement::described_state(m_machine.running, number, words.data());
        trace.offered = possible_in(row);
        auto const ended = m_machine.vectors.ended_column();
        trace.has_ended = trace.offered.empty() && ended && row.state[*ended] == 1;
    }

    TraceRows& m_rows;
    TracedMachine const& m_machine;
    std::string m_process; // for a sentence
    StateSpace::SearchMonitor& m_monitor;
    Pins::VectorMachine::Scratch m_scratch;
    std::vector<std::string> m_events; // of the events, by label
    std::map<std::vector<int>, StateNumber> m_numbers;
};

} // namespace

FollowedTrace follow_trace(std::FILE* file, std::string const& name, TracedMachine const& machine,
                           StateSpace::SearchMonitor& monitor) {
    TraceRows rows(file, name, column_names(machine.vectors));
    return Follower(rows, machine, monitor).run();
}

} // namespace Calder::Tools
