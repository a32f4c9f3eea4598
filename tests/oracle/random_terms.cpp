#include "tests/oracle/plain_term.h"

namespace Calder::Oracle {

namespace {

constexpr unsigned tick = 2;
constexpr unsigned first_event = 3;
constexpr unsigned last_event = 5;

/// Draws terms; every decision comes from one generator, so a seed says everything.
class TermMaker {
  public:
    TermMaker(std::mt19937_64& random, RandomTermOptions const& options)
        : m_random(random), m_options(options) {}

    TermPointer term(unsigned size) {
        if (size <= 1) {
            return leaf();
        }
        switch (below(18)) {
        case 0: return make(Kind::event_set_prefix, {term(size - 1)}, events());
        case 1: return nary(Kind::external_choice, size);
        case 2: return nary(Kind::internal_choice, size);
        case 3: return nary(Kind::interleave, size);
        case 4: return binary(Kind::sliding_choice, size);
        case 5: return binary(Kind::sequential_composition, size);
        case 6: return binary(Kind::interrupt, size);
        case 7: return over_set(nary(Kind::generalised_parallel, size));
        case 8: return alphabetised(size);
        case 9: return over_pairs(binary(Kind::linked_parallel, size));
        case 10: return make(Kind::hiding, {term(size - 1)}, events());
        case 11: return make(Kind::projection, {term(size - 1)}, events());
        case 12: return over_pairs(make(Kind::renaming, {term(size - 1)}));
        case 13: return over_set(binary(Kind::exception, size));
        case 14: return over_set(nary(Kind::synchronising_choice, size));
        case 15: return over_set(binary(Kind::synchronising_interrupt, size));
        default: return prefix(term(size - 1));
        }
    }

    TermPointer prefix(TermPointer const& next) { return make(Kind::prefix, {next}, {event()}); }

  private:
    unsigned below(unsigned bound) {
        return std::uniform_int_distribution<unsigned>(0, bound - 1)(m_random);
    }

    unsigned event() { return first_event + below(last_event - first_event + 1); }

    /// Sometimes with tick: then a termination leads to something else than STOP.
    Events events() {
        Events chosen;
        if (m_options.tick_in_sets && below(4) == 0) {
            chosen.insert(tick);
        }
        for (unsigned event = first_event; event <= last_event; ++event) {
            if (below(2) == 0) {
                chosen.insert(event);
            }
        }
        return chosen;
    }

    TermPointer leaf() {
        switch (below(6)) {
        case 0: return stop();
        case 1:
        case 2: return make(Kind::interleave, {});
        case 3: return make(Kind::run, {}, events());
        case 4: return make(Kind::chaos, {}, events());
        default: return m_options.names == 0 ? prefix(stop()) : prefix(name());
        }
    }

    /// Only ever behind a prefix, so that all recursion is guarded.
    TermPointer name() {
        return std::make_shared<Term>(
            Term{Kind::named, {}, {}, "N" + std::to_string(below(m_options.names))});
    }

    TermPointer nary(Kind kind, unsigned size) {
        unsigned const count = m_options.as_written ? 2 + below(2) : below(4);
        std::vector<TermPointer> arguments(count);
        for (TermPointer& argument : arguments) {
            argument = term((size - 1) / static_cast<unsigned>(arguments.size()));
        }
        return make(kind, arguments);
    }

    TermPointer binary(Kind kind, unsigned size) {
        unsigned const first = below(size - 1);
        return make(kind, {term(first), term(size - 1 - first)});
    }

    TermPointer over_set(TermPointer const& term) {
        Term changed = *term;
        changed.events = events();
        return std::make_shared<Term>(changed);
    }

    TermPointer over_pairs(TermPointer const& term) {
        Term changed = *term;
        for (unsigned count = m_options.as_written ? 1 + below(3) : below(4); count > 0; --count) {
            unsigned const from = event();
            changed.pairs.emplace_back(from, event());
        }
        return std::make_shared<Term>(changed);
    }

    TermPointer alphabetised(unsigned size) {
        Term changed = *nary(Kind::alphabetised_parallel, size);
        for (std::size_t i = 0; i < changed.arguments.size(); ++i) {
            changed.alphabets.push_back(events());
        }
        return std::make_shared<Term>(changed);
    }

    std::mt19937_64& m_random;
    RandomTermOptions m_options;
};

} // namespace

Model random_model(std::uint64_t seed, unsigned size, bool tick_in_sets) {
    std::mt19937_64 random(seed);
    constexpr unsigned names = 2;
    TermMaker maker(random, {names, tick_in_sets, false});
    Model model{maker.term(size), {}};
    for (unsigned name = 0; name < names; ++name) {
        model.definitions["N" + std::to_string(name)] = maker.prefix(maker.term(size / 2));
    }
    return model;
}

TermPointer random_term(std::mt19937_64& random, unsigned size, RandomTermOptions const& options) {
    return TermMaker(random, options).term(size);
}

} // namespace Calder::Oracle
