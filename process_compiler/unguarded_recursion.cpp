#include "process_compiler/unguarded_recursion.h"

#include "process_compiler/kinds.h"

#include <algorithm>
#include <unordered_set>

namespace Calder::ProcessCompiler {

namespace {

using Names = std::vector<NamedProcess const*>;

/// The names that `process` runs from its start, each once, in the order of their places. Visits
/// shared arguments once and does not recurse: definitions may be deep.
Names names_running_at_start(Process const& process) {
    Names names;
    std::vector<Process const*> waiting{&process};
    std::unordered_set<Process const*> seen{&process};
    while (!waiting.empty()) {
        Process const& next = *waiting.back();
        waiting.pop_back();
        if (next.kind() == named_process_kind) {
            names.push_back(static_cast<NamedProcess const*>(&next));
            continue;
        }
        for (unsigned index = next.argument_count(); index-- > 0;) {
            if (next.process_state(index) == ArgumentState::on &&
                seen.insert(next.argument(index).get()).second) {
                waiting.push_back(next.argument(index).get());
            }
        }
    }
    return names;
}

/// Depth-first search over the names; a step to a name on the current path closes a cycle.
class CycleSearch {
  public:
    explicit CycleSearch(NamedProcessSource const& source) : m_source(source) {
        for (NamedProcessPointer const& reference : source.references()) {
            m_places.push_back(Place{reference});
        }
    }

    std::vector<NameCycle> run() {
        for (Place& place : m_places) {
            search_from(place);
        }
        return std::move(m_cycles);
    }

  private:
    struct Place {
        NamedProcessPointer reference;
        Names next{};
        std::size_t followed = 0;
        bool is_reported = false; // in some cycle
        enum class State { fresh, on_path, done } state = State::fresh;
    };

    void search_from(Place& start) {
        enter(start);
        while (!m_path.empty()) {
            Place& place = *m_path.back();
            if (place.followed < place.next.size()) {
                Place& target = m_places[place.next[place.followed++]->number()];
                if (target.state == Place::State::on_path) {
                    if (!place.is_reported) { // else many cycles that say the same
                        report_cycle_to(target);
                    }
                } else {
                    enter(target);
                }
            } else {
                place.state = Place::State::done;
                m_path.pop_back();
            }
        }
    }

    void enter(Place& place) {
        if (place.state != Place::State::fresh || !m_source.is_defined(*place.reference)) {
            return;
        }
        place.next = names_running_at_start(*m_source.process(*place.reference));
        place.state = Place::State::on_path;
        m_path.push_back(&place);
    }

    void report_cycle_to(Place const& target) {
        NameCycle& cycle = m_cycles.emplace_back();
        for (auto step = std::find(m_path.begin(), m_path.end(), &target); step != m_path.end();
             ++step) {
            cycle.push_back((*step)->reference);
            (*step)->is_reported = true;
        }
    }

    NamedProcessSource const& m_source;
    std::vector<Place> m_places; // by number
    std::vector<Place*> m_path;
    std::vector<NameCycle> m_cycles;
};

} // namespace

std::vector<NameCycle> find_unguarded_recursion(NamedProcessSource const& source) {
    return CycleSearch(source).run();
}

} // namespace Calder::ProcessCompiler
