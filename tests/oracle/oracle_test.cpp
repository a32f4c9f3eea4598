#include "tests/oracle/library_term.h"
#include "tests/oracle/shrinking.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <optional>

namespace Calder::Oracle {
namespace {

using namespace ProcessCompiler;

/// What is compared of one model, at least; recursion may grow without end.
constexpr std::size_t states_compared = 60;
constexpr std::size_t transitions_compared = 300;
/// Recursion may also double a term at every step: longer ones, as text, are let be.
constexpr std::size_t longest_compared = 2'000;

using Steps = std::vector<std::pair<unsigned, ProcessPointer>>;

bool are_equal(Steps::value_type const& left, Steps::value_type const& right) {
    return left.first == right.first && *left.second == *right.second &&
           left.second->hash_code() == right.second->hash_code();
}

/// Where two lists of transitions first differ; in order, or, where the order is free, as bags.
std::optional<std::string> difference_between(Steps const& expected, Steps reported,
                                              bool order_is_free) {
    for (std::size_t i = 0; i < expected.size(); ++i) {
        auto const end =
            order_is_free
                ? reported.end()
                : reported.begin() + static_cast<std::ptrdiff_t>(std::min(i + 1, reported.size()));
        auto const found = std::find_if(
            reported.begin() + static_cast<std::ptrdiff_t>(std::min(i, reported.size())), end,
            [&](auto const& step) { return are_equal(step, expected[i]); });
        if (found == end) {
            return "transition " + std::to_string(i) + ", on event " +
                   std::to_string(expected[i].first) + ", is missing or another one";
        }
        std::swap(reported[i], *found);
    }
    if (reported.size() > expected.size()) {
        return "a transition too many, on event " + std::to_string(reported[expected.size()].first);
    }
    return std::nullopt;
}

/// Compares the library with the rules in every state that is reached, transition by transition;
/// successors by the library's own equality. Tells the first difference.
std::optional<std::string> difference_in(Model const& model) try {
    NamedProcessSource source;
    library_model(model, source);
    std::set<std::string> seen{text_of(*model.term)};
    std::deque<TermPointer> waiting{model.term};
    std::size_t transitions = 0;
    while (!waiting.empty() && transitions < transitions_compared) {
        TermPointer const state = waiting.front();
        waiting.pop_front();
        std::vector<Move> const moves = moves_of(*state, model.definitions);
        transitions += moves.size();
        Steps expected;
        for (Move const& move : moves) {
            expected.emplace_back(move.event, library_term(*move.successor, source));
        }
        Steps reported;
        library_term(*state, source)
            ->visit_transitions(source, [&](unsigned event, ProcessPointer const& successor) {
                reported.emplace_back(event, successor);
                return true;
            });
        if (auto const difference = difference_between(expected, reported, synchronises(*state))) {
            return "in state " + text_of(*state) + ": " + *difference;
        }
        for (Move const& move : moves) {
            std::string const text = text_of(*move.successor);
            if (seen.size() < states_compared && text.size() <= longest_compared &&
                seen.insert(text).second) {
                waiting.push_back(move.successor);
            }
        }
    }
    return std::nullopt;
} catch (TooManyMoves const&) {
    return std::nullopt; // none in the states before
}

TEST(Oracle, the_library_follows_the_firing_rules) {
    auto const model_of = [](std::uint64_t seed) {
        return random_model(seed, 2 + static_cast<unsigned>(seed % 12));
    };
    expect_no_difference(10'000, model_of, difference_in);
}

} // namespace
} // namespace Calder::Oracle
