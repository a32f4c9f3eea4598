#include "state_space/bisimulation.h"

#include "state_space/lts_builder.h"

#include <algorithm>
#include <numeric>
#include <tuple>
#include <utility>

namespace Calder::StateSpace {

namespace {

using Class = StateNumber;
/// A transition whose target is a class: what signatures are made of.
using Signature = std::vector<std::pair<unsigned, Class>>;

/// For each state the sources of its transitions, in compressed rows.
class Predecessors {
  public:
    explicit Predecessors(LabelledTransitionSystem const& lts)
        : m_ends(lts.state_count()), m_sources(lts.transition_count()) {
        for_each_transition(lts, [this](StateNumber, StateNumber target) { ++m_ends[target]; });
        std::exclusive_scan(m_ends.begin(), m_ends.end(), m_ends.begin(), std::uint64_t{0});
        for_each_transition(lts, [this](StateNumber source, StateNumber target) {
            m_sources[m_ends[target]++] = source;
        });
    }

    std::span<StateNumber const> of(StateNumber state) const {
        std::uint64_t const begin = state == 0 ? 0 : m_ends[state - 1];
        return std::span(m_sources).subspan(begin, m_ends[state] - begin);
    }

  private:
    template <typename Take>
    static void for_each_transition(LabelledTransitionSystem const& lts, Take const& take) {
        for (StateNumber state = 0; state < lts.explored_count(); ++state) {
            for (Transition const& transition : lts.transitions(state)) {
                take(state, transition.target);
            }
        }
    }

    std::vector<std::uint64_t> m_ends;
    std::vector<StateNumber> m_sources;
};

/// A partition of the states that only ever gets finer. The states of a class stand together; those
/// whose signature may have changed stand first and are counted as marked.
class Refinement {
  public:
    explicit Refinement(LabelledTransitionSystem const& lts)
        : m_lts(lts), m_predecessors(lts), m_class_of(lts.state_count(), 0),
          m_states(lts.state_count()), m_places(lts.state_count()) {
        std::iota(m_states.begin(), m_states.end(), 0U);
        std::iota(m_places.begin(), m_places.end(), 0U);
        m_classes.push_back({0, lts.state_count(), lts.state_count()});
        m_waiting.push_back(0);
    }

    std::vector<Class> run() {
        while (!m_waiting.empty()) {
            Class const next = m_waiting.back();
            m_waiting.pop_back();
            split(next);
        }
        return std::move(m_class_of);
    }

  private:
    struct Range {
        StateNumber begin;
        StateNumber end;
        StateNumber marked;
    };

    /// A part of a class whose states have one signature.
    struct Part {
        StateNumber begin;
        StateNumber end;
        StateNumber size() const { return end - begin; }
    };

    void split(Class number) {
        Range& range = m_classes[number];
        bool const all_marked = range.begin + range.marked == range.end;
        std::vector<Part> const parts = sort_marked(range, all_marked);
        range.marked = 0;
        auto const largest =
            std::max_element(parts.begin(), parts.end(), [](Part const& left, Part const& right) {
                return left.size() < right.size();
            });
        range.begin = largest->begin;
        range.end = largest->end;
        m_changed.clear();
        for (auto part = parts.begin(); part != parts.end(); ++part) {
            if (part != largest) {
                make_class(*part);
            }
        }
        for (StateNumber const state : m_changed) {
            for (StateNumber const source : m_predecessors.of(state)) {
                mark(source);
            }
        }
    }

    /// Sorts the marked states of the class by signature and gives its parts. States that are not
    /// marked all have the signature that the class had; marked ones that still have it join them.
    std::vector<Part> sort_marked(Range const& range, bool all_marked) {
        struct Entry {
            Signature signature;
            StateNumber state;
        };
        std::vector<Entry> entries;
        for (StateNumber place = range.begin; place < range.begin + range.marked; ++place) {
            entries.push_back({signature_of(m_states[place]), m_states[place]});
        }
        std::sort(entries.begin(), entries.end(), [](Entry const& left, Entry const& right) {
            return std::tie(left.signature, left.state) < std::tie(right.signature, right.state);
        });
        Signature rest;
        if (!all_marked) {
            rest = signature_of(m_states[range.end - 1]);
            std::stable_partition(entries.begin(), entries.end(),
                                  [&](Entry const& entry) { return entry.signature != rest; });
        }
        std::vector<Part> parts;
        StateNumber place = range.begin;
        for (std::size_t i = 0; i < entries.size(); ++i) {
            if (i == 0 || entries[i].signature != entries[i - 1].signature) {
                parts.push_back({place, place});
            }
            put(entries[i].state, place++);
            parts.back().end = place;
        }
        if (!all_marked) {
            if (entries.empty() || entries.back().signature != rest) {
                parts.push_back({place, place});
            }
            parts.back().end = range.end;
        }
        return parts;
    }

    Signature signature_of(StateNumber state) const {
        Signature signature;
        for (Transition const& transition : m_lts.transitions(state)) {
            signature.emplace_back(transition.event, m_class_of[transition.target]);
        }
        std::sort(signature.begin(), signature.end());
        signature.erase(std::unique(signature.begin(), signature.end()), signature.end());
        return signature;
    }

    void make_class(Part const& part) {
        auto const number = static_cast<Class>(m_classes.size());
        m_classes.push_back({part.begin, part.end, 0});
        for (StateNumber place = part.begin; place < part.end; ++place) {
            m_class_of[m_states[place]] = number;
            m_changed.push_back(m_states[place]);
        }
    }

    void mark(StateNumber state) {
        Class const number = m_class_of[state];
        Range& range = m_classes[number];
        StateNumber const first_unmarked = range.begin + range.marked;
        StateNumber const place = m_places[state];
        if (place < first_unmarked) {
            return;
        }
        put(m_states[first_unmarked], place);
        put(state, first_unmarked);
        if (range.marked++ == 0) {
            m_waiting.push_back(number);
        }
    }

    void put(StateNumber state, StateNumber place) {
        m_states[place] = state;
        m_places[state] = place;
    }

    LabelledTransitionSystem const& m_lts;
    Predecessors const m_predecessors;
    std::vector<Class> m_class_of;
    std::vector<StateNumber> m_states; // class by class
    std::vector<StateNumber> m_places; // where a state stands there
    std::vector<Range> m_classes;
    std::vector<Class> m_waiting; // classes with marked states
    std::vector<StateNumber> m_changed;
};

void append(LtsBuilder& builder, LabelledTransitionSystem const& lts, StateNumber offset) {
    for (StateNumber state = 0; state < lts.state_count(); ++state) {
        for (Transition const& transition : lts.transitions(state)) {
            builder.add(transition.event, transition.target + offset);
        }
        builder.end_row();
    }
}

} // namespace

std::vector<StateNumber> bisimulation_classes(LabelledTransitionSystem const& lts) {
    if (lts.state_count() == 0) {
        return {};
    }
    return Refinement(lts).run();
}

bool are_bisimilar(LabelledTransitionSystem const& left, LabelledTransitionSystem const& right) {
    if (left.state_count() == 0 || right.state_count() == 0) {
        return left.state_count() == right.state_count();
    }
    LtsBuilder both;
    append(both, left, 0);
    append(both, right, left.state_count());
    std::vector<StateNumber> const classes =
        bisimulation_classes(both.finish(left.state_count() + right.state_count()));
    return classes[0] == classes[left.state_count()];
}

} // namespace Calder::StateSpace
