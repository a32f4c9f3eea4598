#include "tests/oracle/plain_term.h"

namespace Calder::Oracle {

namespace {

constexpr unsigned tau = 1;
constexpr unsigned tick = 2;

using Moves = std::vector<Move>;

constexpr std::size_t most_moves = 2'000;

template <typename List> void expect_few(List const& list) {
    if (list.size() > most_moves) {
        throw TooManyMoves();
    }
}

Moves moves_of_choice(Term const& term, Definitions const& definitions) {
    Moves moves;
    for (std::size_t i = 0; i < term.arguments.size(); ++i) {
        for (Move const& move : moves_of(*term.arguments[i], definitions)) {
            moves.push_back({move.event, move.event == tau ? with_argument(term, i, move.successor)
                                                           : move.successor});
        }
    }
    return moves;
}

Moves moves_of_sliding_choice(Term const& term, Definitions const& definitions) {
    Moves moves{{tau, term.arguments[1]}};
    for (Move const& move : moves_of(*term.arguments[0], definitions)) {
        moves.push_back({move.event, move.event == tau ? with_argument(term, 0, move.successor)
                                                       : move.successor});
    }
    return moves;
}

Moves moves_of_sequence(Term const& term, Definitions const& definitions) {
    Moves moves;
    for (Move const& move : moves_of(*term.arguments[0], definitions)) {
        if (move.event == tick) {
            moves.push_back({tau, term.arguments[1]});
        } else {
            moves.push_back({move.event, with_argument(term, 0, move.successor)});
        }
    }
    return moves;
}

Moves moves_of_interrupt(Term const& term, Definitions const& definitions) {
    Moves moves;
    for (Move const& move : moves_of(*term.arguments[0], definitions)) {
        moves.push_back(
            {move.event, move.event == tick ? stop() : with_argument(term, 0, move.successor)});
    }
    for (Move const& move : moves_of(*term.arguments[1], definitions)) {
        moves.push_back({move.event, move.event == tau ? with_argument(term, 1, move.successor)
                                                       : move.successor});
    }
    return moves;
}

Moves moves_of_interleaving(Term const& term, Definitions const& definitions) {
    Moves moves;
    bool all_terminate = true;
    for (std::size_t i = 0; i < term.arguments.size(); ++i) {
        bool terminates = false;
        for (Move const& move : moves_of(*term.arguments[i], definitions)) {
            if (move.event == tick) {
                terminates = true;
            } else {
                moves.push_back({move.event, with_argument(term, i, move.successor)});
            }
        }
        all_terminate = all_terminate && terminates;
    }
    if (all_terminate) {
        moves.push_back({tick, stop()});
    }
    return moves;
}

Moves moves_of_chaos(Term const& term) {
    std::vector<TermPointer> offers;
    for (unsigned const event : term.events) {
        offers.push_back(make(Kind::prefix, {std::make_shared<Term>(term)}, {event}));
    }
    return {{tau, stop()}, {tau, make(Kind::external_choice, offers)}};
}

/// The moves of one argument on one event.
Moves only(Moves const& moves, unsigned event) {
    Moves chosen;
    for (Move const& move : moves) {
        if (move.event == event) {
            chosen.push_back(move);
        }
    }
    return chosen;
}

/// Every way in which the arguments in `choices` (index, moves) move together, the last one fastest.
std::vector<TermPointer> combinations(Term const& term,
                                      std::vector<std::pair<std::size_t, Moves>> const& choices) {
    std::vector<TermPointer> terms{std::make_shared<Term>(term)};
    for (auto const& [index, moves] : choices) {
        std::vector<TermPointer> longer;
        for (TermPointer const& chosen : terms) {
            for (Move const& move : moves) {
                longer.push_back(with_argument(*chosen, index, move.successor));
            }
            expect_few(longer);
        }
        terms = longer;
    }
    return terms;
}

/// Joint steps on `event`, performed as `outside`.
void add_joint_moves(Moves& moves, Term const& term, unsigned outside,
                     std::vector<std::pair<std::size_t, Moves>> const& choices) {
    for (TermPointer const& joint : combinations(term, choices)) {
        moves.push_back({outside, outside == tick ? stop() : joint});
    }
}

/// The moves of each argument.
std::vector<Moves> moves_of_arguments(Term const& term, Definitions const& definitions) {
    std::vector<Moves> all;
    for (TermPointer const& argument : term.arguments) {
        all.push_back(moves_of(*argument, definitions));
    }
    return all;
}

/// The joint steps of all arguments on each event of the set.
void add_synchronised_moves(Moves& moves, Term const& term, Events const& events,
                            std::vector<Moves> const& arguments) {
    for (unsigned const event : events) {
        std::vector<std::pair<std::size_t, Moves>> choices;
        for (std::size_t i = 0; i < term.arguments.size(); ++i) {
            choices.emplace_back(i, only(arguments[i], event));
        }
        if (!choices.empty()) {
            add_joint_moves(moves, term, event, choices);
        }
    }
}

Moves moves_of_generalised_parallel(Term const& term, Definitions const& definitions) {
    Events synchronised = term.events;
    synchronised.insert(tick);
    std::vector<Moves> const arguments = moves_of_arguments(term, definitions);
    Moves moves;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        for (Move const& move : arguments[i]) {
            if (synchronised.count(move.event) == 0) {
                moves.push_back({move.event, with_argument(term, i, move.successor)});
            }
        }
    }
    add_synchronised_moves(moves, term, synchronised, arguments);
    return moves;
}

Moves moves_of_alphabetised_parallel(Term const& term, Definitions const& definitions) {
    Moves moves;
    Events all;
    std::vector<Events> alphabets = term.alphabets;
    std::vector<Moves> const arguments = moves_of_arguments(term, definitions);
    for (std::size_t i = 0; i < term.arguments.size(); ++i) {
        alphabets[i].insert(tick);
        all.insert(alphabets[i].begin(), alphabets[i].end());
        for (Move const& move : only(arguments[i], tau)) {
            moves.push_back({tau, with_argument(term, i, move.successor)});
        }
    }
    for (unsigned const event : all) {
        std::vector<std::pair<std::size_t, Moves>> choices;
        for (std::size_t i = 0; i < term.arguments.size(); ++i) {
            if (alphabets[i].count(event) != 0) {
                choices.emplace_back(i, only(arguments[i], event));
            }
        }
        add_joint_moves(moves, term, event, choices);
    }
    return moves;
}

Moves moves_of_linked_parallel(Term const& term, Definitions const& definitions) {
    Pairs links = term.pairs;
    links.emplace_back(tick, tick);
    std::vector<Moves> const arguments = moves_of_arguments(term, definitions);
    Moves moves;
    for (std::size_t side = 0; side < 2; ++side) {
        for (Move const& move : arguments[side]) {
            bool linked = false;
            for (auto const& [left, right] : links) {
                linked = linked || move.event == (side == 0 ? left : right);
            }
            if (!linked) {
                moves.push_back({move.event, with_argument(term, side, move.successor)});
            }
        }
    }
    for (auto const& [left, right] : links) {
        add_joint_moves(moves, term, left == tick ? tick : tau,
                        {{0, only(arguments[0], left)}, {1, only(arguments[1], right)}});
    }
    return moves;
}

/// Hiding and projection: every step stays inside the operator, under another event.
Moves moves_seen_through(Term const& term, Definitions const& definitions) {
    Moves moves;
    for (Move const& move : moves_of(*term.arguments[0], definitions)) {
        bool const in_set = term.events.count(move.event) != 0;
        bool const seen = term.kind == Kind::hiding ? !in_set : in_set || move.event == tick;
        moves.push_back({seen ? move.event : tau, with_argument(term, 0, move.successor)});
    }
    return moves;
}

Moves moves_of_renaming(Term const& term, Definitions const& definitions) {
    Moves moves;
    for (Move const& move : moves_of(*term.arguments[0], definitions)) {
        if (move.event == tick) {
            moves.push_back({tick, stop()});
            continue;
        }
        bool renamed = false;
        for (auto pair = term.pairs.rbegin(); pair != term.pairs.rend(); ++pair) {
            if (pair->first == move.event) {
                moves.push_back({pair->second, with_argument(term, 0, move.successor)});
                renamed = true;
            }
        }
        if (!renamed) {
            moves.push_back({move.event, with_argument(term, 0, move.successor)});
        }
    }
    return moves;
}

Moves moves_of_exception(Term const& term, Definitions const& definitions) {
    Moves moves;
    for (Move const& move : moves_of(*term.arguments[0], definitions)) {
        if (move.event == tick) {
            moves.push_back({tick, stop()});
        } else if (term.events.count(move.event) != 0) {
            moves.push_back({move.event, term.arguments[1]});
        } else {
            moves.push_back({move.event, with_argument(term, 0, move.successor)});
        }
    }
    return moves;
}

/// Synchronising choice, and synchronising interrupt, whose first argument never resolves it.
Moves moves_of_synchronising(Term const& term, Definitions const& definitions) {
    std::vector<Moves> const arguments = moves_of_arguments(term, definitions);
    Moves moves;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        bool const resolves = term.kind == Kind::synchronising_choice || i == 1;
        for (Move const& move : arguments[i]) {
            if (term.events.count(move.event) != 0) {
                continue;
            }
            if (move.event == tick) {
                moves.push_back({tick, stop()});
            } else if (resolves && move.event != tau) {
                moves.push_back({move.event, move.successor});
            } else {
                moves.push_back({move.event, with_argument(term, i, move.successor)});
            }
        }
    }
    add_synchronised_moves(moves, term, term.events, arguments);
    return moves;
}

/// One move an event of the term, all to the same successor.
Moves moves_by_event(Term const& term, TermPointer const& successor) {
    Moves moves;
    for (unsigned const event : term.events) {
        moves.push_back({event, successor});
    }
    return moves;
}

Moves moves_by_rule(Term const& term, Definitions const& definitions) {
    switch (term.kind) {
    case Kind::named: return moves_of(*definitions.at(term.name), definitions);
    case Kind::prefix:
    case Kind::event_set_prefix: return moves_by_event(term, term.arguments[0]);
    case Kind::external_choice: return moves_of_choice(term, definitions);
    case Kind::internal_choice: {
        Moves moves;
        for (TermPointer const& argument : term.arguments) {
            moves.push_back({tau, argument});
        }
        return moves;
    }
    case Kind::sliding_choice: return moves_of_sliding_choice(term, definitions);
    case Kind::sequential_composition: return moves_of_sequence(term, definitions);
    case Kind::interrupt: return moves_of_interrupt(term, definitions);
    case Kind::interleave: return moves_of_interleaving(term, definitions);
    case Kind::run: return moves_by_event(term, std::make_shared<Term>(term));
    case Kind::chaos: return moves_of_chaos(term);
    case Kind::generalised_parallel: return moves_of_generalised_parallel(term, definitions);
    case Kind::alphabetised_parallel: return moves_of_alphabetised_parallel(term, definitions);
    case Kind::linked_parallel: return moves_of_linked_parallel(term, definitions);
    case Kind::hiding:
    case Kind::projection: return moves_seen_through(term, definitions);
    case Kind::renaming: return moves_of_renaming(term, definitions);
    case Kind::exception: return moves_of_exception(term, definitions);
    case Kind::synchronising_choice:
    case Kind::synchronising_interrupt: return moves_of_synchronising(term, definitions);
    }
    return {};
}

} // namespace

Moves moves_of(Term const& term, Definitions const& definitions) {
    Moves moves = moves_by_rule(term, definitions);
    expect_few(moves);
    return moves;
}

} // namespace Calder::Oracle
