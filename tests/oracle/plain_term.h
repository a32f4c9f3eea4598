#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

/// A second, deliberately simple account of the constructs, to hold the library against: terms as
/// plain data, and their firing rules written down without any thought of speed.
namespace Calder::Oracle {

enum class Kind {
    named,
    prefix,
    event_set_prefix,
    external_choice,
    internal_choice,
    sliding_choice,
    sequential_composition,
    interrupt,
    interleave,
    run,
    chaos,
    generalised_parallel,
    alphabetised_parallel,
    linked_parallel,
    hiding,
    projection,
    renaming,
    exception,
    synchronising_choice,
    synchronising_interrupt,
};

enum class Arity { none, one, two, any };

/// What a kind has beside its arguments.
enum class Parameter { none, name, event, events, pairs, alphabets };

/// How a machine runs it: as it stands, as a network that keeps its shape, or by other formats.
enum class Role { sequential, static_network, other };

struct KindEntry {
    Kind kind;
    char const* name;
    Arity arity;
    Parameter parameter;
    Role role;
    /// Whether the order of its transitions depends on how equal events are sorted.
    bool synchronises;
};

/// The one list of what is known of the kinds, in their order.
// clang-format off
inline constexpr KindEntry kinds[] = {
    {Kind::named, "named", Arity::none, Parameter::name, Role::other, false},
    {Kind::prefix, "prefix", Arity::one, Parameter::event, Role::sequential, false},
    {Kind::event_set_prefix, "event_set_prefix", Arity::one, Parameter::events, Role::sequential, false},
    {Kind::external_choice, "external_choice", Arity::any, Parameter::none, Role::sequential, false},
    {Kind::internal_choice, "internal_choice", Arity::any, Parameter::none, Role::sequential, false},
    {Kind::sliding_choice, "sliding_choice", Arity::two, Parameter::none, Role::sequential, false},
    {Kind::sequential_composition, "sequential_composition", Arity::two, Parameter::none, Role::other, false},
    {Kind::interrupt, "interrupt", Arity::two, Parameter::none, Role::other, false},
    {Kind::interleave, "interleave", Arity::any, Parameter::none, Role::static_network, false},
    {Kind::run, "run", Arity::none, Parameter::events, Role::sequential, false},
    {Kind::chaos, "chaos", Arity::none, Parameter::events, Role::sequential, false},
    {Kind::generalised_parallel, "generalised_parallel", Arity::any, Parameter::events, Role::static_network, true},
    {Kind::alphabetised_parallel, "alphabetised_parallel", Arity::any, Parameter::alphabets, Role::static_network, true},
    {Kind::linked_parallel, "linked_parallel", Arity::two, Parameter::pairs, Role::static_network, true},
    {Kind::hiding, "hiding", Arity::one, Parameter::events, Role::static_network, false},
    {Kind::projection, "projection", Arity::one, Parameter::events, Role::static_network, false},
    {Kind::renaming, "renaming", Arity::one, Parameter::pairs, Role::static_network, false},
    {Kind::exception, "exception", Arity::two, Parameter::events, Role::other, false},
    {Kind::synchronising_choice, "synchronising_choice", Arity::any, Parameter::events, Role::other, true},
    {Kind::synchronising_interrupt, "synchronising_interrupt", Arity::two, Parameter::events, Role::other, true},
};
// clang-format on

constexpr KindEntry const& entry_of(Kind kind) {
    return kinds[static_cast<std::size_t>(kind)];
}

struct Term;
using TermPointer = std::shared_ptr<Term const>;
using Events = std::set<unsigned>;
using Pairs = std::vector<std::pair<unsigned, unsigned>>;

struct Term {
    Kind kind;
    Events events{}; // a prefix has one
    std::vector<TermPointer> arguments{};
    std::string name{};
    std::vector<Events> alphabets{}; // of an alphabetised parallel, one an argument
    Pairs pairs{};                   // of a renaming (from, to), of a linked parallel (left, right)
};

/// What the names of a term stand for.
using Definitions = std::map<std::string, TermPointer>;

/// A term and its names: what one comparison is about.
struct Model {
    TermPointer term;
    Definitions definitions;
};

TermPointer stop();
TermPointer make(Kind kind, std::vector<TermPointer> arguments, Events events = {});
/// `term` with the argument at `index` replaced.
TermPointer with_argument(Term const& term, std::size_t index, TermPointer const& replacement);

/// Whether the order of the term's transitions depends on how equal events are sorted.
bool synchronises(Term const& term);

/// A term in prefix form, such as `sequential_composition(prefix{3}(external_choice()), P)`: for
/// comparison and for messages.
std::string text_of(Term const& term);
std::string text_of(Model const& model);

struct Move {
    unsigned event;
    TermPointer successor;
};

/// A term with so many transitions that nobody wants to compare them.
struct TooManyMoves {};

/// All transitions, in the order of the rules. Throws TooManyMoves beyond some thousand.
std::vector<Move> moves_of(Term const& term, Definitions const& definitions);

/// A random model of about `size` constructs, with some recursion, all of it guarded by visible
/// events; the same for the same seed. With `tick_in_sets`, tick may also be an event of a set.
Model random_model(std::uint64_t seed, unsigned size, bool tick_in_sets = true);

struct RandomTermOptions {
    /// Recursion goes through the names N0, N1, … of this number, always behind a prefix.
    unsigned names = 0;
    /// Sets of events may hold tick; otherwise all terminations lead to STOP.
    bool tick_in_sets = false;
    /// Only what a script can say: a chain of operators has at least two operands.
    bool as_written = false;
};

TermPointer random_term(std::mt19937_64& random, unsigned size,
                        RandomTermOptions const& options = {});

/// Models that are a little smaller than `model`, the smallest first.
std::vector<Model> smaller_models(Model const& model);

} // namespace Calder::Oracle
