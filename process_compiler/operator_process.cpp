#include "process_compiler/operator_process.h"

#include "core/hash_combine.h"
#include "process_compiler/argument_array.h"
#include "process_compiler/kinds.h"
#include "process_compiler/recursion_watch.h"

namespace Calder::ProcessCompiler {

namespace {

constexpr std::uint64_t hash_seed = 0x2c95;

/// The other term as an application; only asked of a term of that kind.
OperatorProcess const& as_application(Process const& other) {
    return static_cast<OperatorProcess const&>(other);
}

} // namespace

OperatorProcess::OperatorProcess(OperatorPointer applied, ProcessPointer const& only)
    : m_operator(std::move(applied)), m_arguments{only} {}

OperatorProcess::OperatorProcess(OperatorPointer applied, ProcessPointer const& first,
                                 ProcessPointer const& second)
    : m_operator(std::move(applied)), m_arguments{first, second} {}

OperatorProcess::OperatorProcess(OperatorPointer applied, ProcessArray const& arguments)
    : m_operator(std::move(applied)), m_arguments(arguments) {
    watch_recursion(); // of one visit, an operator that synchronises makes any number
}

OperatorProcess::OperatorProcess(OperatorPointer applied, ProcessArray const& arguments,
                                 unsigned index, ProcessPointer const& replacement)
    : m_operator(std::move(applied)), m_arguments(arguments, index, replacement) {}

OperatorProcess::~OperatorProcess() = default;

unsigned OperatorProcess::argument_count() const {
    return static_cast<unsigned>(m_arguments.size());
}

ProcessPointer const& OperatorProcess::argument(unsigned index) const {
    return m_arguments[index];
}

void OperatorProcess::set_arguments(ProcessArray const& arguments) {
    replace_arguments(m_arguments, arguments);
}

bool OperatorProcess::visit_transitions(NamedProcessSource const& source,
                                        TransitionVisitor const& visitor) const {
    watch_recursion();
    return m_operator->visit_transitions(source, visitor, m_arguments);
}

void OperatorProcess::visit_high_level_transitions(std::vector<BitSet> const& alphabets,
                                                   HighLevelVisitor const& visitor) const {
    m_operator->visit_high_level_transitions(alphabets, visitor, m_arguments);
}

std::unique_ptr<Formats>
OperatorProcess::high_level_formats(std::vector<BitSet> const& alphabets) const {
    return m_operator->high_level_formats(alphabets);
}

std::uint64_t OperatorProcess::hash_code() const {
    return m_hash.get([this] {
        return hash_combine(hash_combine(hash_seed, m_operator->hash_code()),
                            hash_arguments(m_arguments));
    });
}

bool OperatorProcess::operator==(Process const& other) const {
    return other.kind() == kind() &&
           (m_operator == as_application(other).m_operator ||
            *m_operator == *as_application(other).m_operator) &&
           arguments_equal(m_arguments, as_application(other).m_arguments);
}

bool OperatorProcess::operator!=(Process const& other) const {
    return other.kind() != kind() ||
           (m_operator != as_application(other).m_operator &&
            *m_operator != *as_application(other).m_operator) ||
           arguments_differ(m_arguments, as_application(other).m_arguments);
}

ProcessPointer OperatorProcess::clone(bool deep) const {
    OwningArray<ProcessPointer> arguments(m_arguments.size());
    if (deep) {
        clone_arguments(m_arguments, arguments);
    }
    return new OperatorProcess(m_operator, arguments);
}

unsigned OperatorProcess::kind() const {
    return operator_process_kind;
}

RecursionType OperatorProcess::recursion_type() const {
    return m_operator->recursion_type();
}

bool OperatorProcess::allows_recursion(unsigned index) const {
    return m_operator->allows_recursion(index);
}

ArgumentState OperatorProcess::process_state(unsigned index) const {
    return m_operator->process_state(index);
}

bool OperatorProcess::discarded_by(unsigned index) const {
    return m_operator->discarded_by(index);
}

TurnedOnBy OperatorProcess::turned_on_by(unsigned index) const {
    return m_operator->turned_on_by(index);
}

CompilationLevel OperatorProcess::preferred_compilation_level(bool high_wished) const {
    return m_operator->preferred_compilation_level(high_wished);
}

bool OperatorProcess::is_commutative() const {
    return m_operator->is_commutative();
}

void OperatorProcess::pretty_print(Printer& printer) const {
    m_operator->pretty_print_operator_process(printer, *this);
}

void OperatorProcess::pretty_print_operator(Printer& printer) const {
    m_operator->pretty_print(printer);
}

void OperatorProcess::pretty_print_operator_description(Printer& printer) const {
    m_operator->pretty_print_description(printer);
}

std::pair<unsigned, unsigned> OperatorProcess::pretty_print_information() const {
    return m_operator->pretty_print_information();
}

bool OperatorProcess::pretty_print_is_same_operator(Process const& other) const {
    return other.kind() == kind() &&
           m_operator->pretty_print_is_same_operator(*as_application(other).m_operator);
}

} // namespace Calder::ProcessCompiler
