#include "tests/oracle/plain_term.h"

#include <algorithm>

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
        KindEntry const& entry = kind_with_arguments();
        Term made{entry.kind};
        made.arguments = arguments(entry.arity, size - 1);
        add_parameters(made, entry.parameter);
        return std::make_shared<Term>(made);
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

    /// Any, and a prefix three times as often as another.
    KindEntry const& kind_with_arguments() {
        unsigned const draw = below(static_cast<unsigned>(std::size(kinds)) + 2);
        KindEntry const& entry = draw < std::size(kinds) ? kinds[draw] : entry_of(Kind::prefix);
        return entry.arity == Arity::none ? kind_with_arguments() : entry;
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

    /// Arguments of about `size` constructs in all.
    std::vector<TermPointer> arguments(Arity arity, unsigned size) {
        if (arity == Arity::two) {
            unsigned const first = below(std::max(size, 1U));
            return {term(first), term(size - first)};
        }
        unsigned const several = m_options.as_written ? 2 + below(2) : below(4);
        std::vector<TermPointer> made(arity == Arity::one ? 1 : several);
        for (TermPointer& argument : made) {
            argument = term(size / static_cast<unsigned>(made.size()));
        }
        return made;
    }

    void add_parameters(Term& term, Parameter parameter) {
        switch (parameter) {
        case Parameter::none:
        case Parameter::name: return;
        case Parameter::event: term.events = {event()}; return;
        case Parameter::events: term.events = events(); return;
        case Parameter::pairs:
            for (unsigned count = m_options.as_written ? 1 + below(3) : below(4); count > 0;
                 --count) {
                unsigned const from = event();
                term.pairs.emplace_back(from, event());
            }
            return;
        case Parameter::alphabets:
            for (std::size_t i = 0; i < term.arguments.size(); ++i) {
                term.alphabets.push_back(events());
            }
            return;
        }
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
