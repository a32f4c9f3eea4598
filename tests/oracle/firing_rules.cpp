#include "tests/oracle/plain_term.h"

namespace Calder::Oracle {

namespace {

constexpr unsigned tau = 1;
constexpr unsigned tick = 2;

using Moves = std::vector<Move>;

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

/// One move an event of the term, all to the same successor.
Moves moves_by_event(Term const& term, TermPointer const& successor) {
    Moves moves;
    for (unsigned const event : term.events) {
        moves.push_back({event, successor});
    }
    return moves;
}

} // namespace

Moves moves_of(Term const& term, Definitions const& definitions) {
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
    }
    return {};
}

} // namespace Calder::Oracle
