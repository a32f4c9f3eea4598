#include "process_compiler/named_process.h"

#include "core/hash_combine.h"
#include "process_compiler/kinds.h"
#include "process_compiler/named_process_source.h"
#include "process_compiler/recursion_watch.h"
#include "process_compiler/transition_memory.h"

#include <cstdlib>

namespace Calder::ProcessCompiler {

namespace {

constexpr std::uint64_t hash_seed = 0x1f35;

} // namespace

NamedProcess::NamedProcess(NamedProcessSource const& source, unsigned number)
    : m_source(&source), m_number(number) {}

NamedProcess::~NamedProcess() = default;

std::string NamedProcess::name() const {
    return m_source->name(*this);
}

unsigned NamedProcess::argument_count() const {
    return 0;
}

ProcessPointer const& NamedProcess::argument(unsigned) const {
    std::abort();
}

void NamedProcess::set_arguments(ProcessArray const&) {}

bool NamedProcess::needs_memoisation() const {
    return false;
}

bool NamedProcess::visit_transitions(NamedProcessSource const& source,
                                     TransitionVisitor const& visitor) const {
    watch_recursion();
    return visit_argument(source.process(*this), source, visitor);
}

std::unique_ptr<Formats> NamedProcess::high_level_formats(std::vector<BitSet> const&) const {
    std::abort();
}

std::uint64_t NamedProcess::hash_code() const {
    return m_hash.get([this] { return hash_combine(hash_seed, m_number); });
}

bool NamedProcess::operator==(Process const& other) const {
    return other.kind() == kind() && is_same(other);
}

bool NamedProcess::operator!=(Process const& other) const {
    return other.kind() != kind() || !is_same(other);
}

ProcessPointer NamedProcess::clone(bool) const {
    return new NamedProcess(*m_source, m_number);
}

unsigned NamedProcess::kind() const {
    return named_process_kind;
}

RecursionType NamedProcess::recursion_type() const {
    return RecursionType::starts_none;
}

bool NamedProcess::allows_recursion(unsigned) const {
    std::abort();
}

ArgumentState NamedProcess::process_state(unsigned) const {
    std::abort();
}

bool NamedProcess::discarded_by(unsigned) const {
    std::abort();
}

TurnedOnBy NamedProcess::turned_on_by(unsigned) const {
    std::abort();
}

CompilationLevel NamedProcess::preferred_compilation_level(bool) const {
    return CompilationLevel::low;
}

bool NamedProcess::is_commutative() const {
    return false;
}

void NamedProcess::pretty_print(Printer& printer) const {
    printer << name();
}

void NamedProcess::pretty_print_operator(Printer& printer) const {
    printer << name();
}

void NamedProcess::pretty_print_operator_description(Printer& printer) const {
    printer << "Process " << name();
}

std::pair<unsigned, unsigned> NamedProcess::pretty_print_information() const {
    return {0, non_associative};
}

bool NamedProcess::pretty_print_is_same_operator(Process const& other) const {
    return other.kind() == kind();
}

/// Only asked of a reference.
bool NamedProcess::is_same(Process const& other) const {
    auto const& reference = static_cast<NamedProcess const&>(other);
    return m_number == reference.m_number && m_source == reference.m_source;
}

} // namespace Calder::ProcessCompiler
