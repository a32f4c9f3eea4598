#include "process_compiler/named_process.h"

#include "core/hash_combine.h"
#include "process_compiler/kinds.h"
#include "process_compiler/named_process_source.h"
#include "process_compiler/recursion_watch.h"

#include <cstdlib>

namespace Calder::ProcessCompiler {

namespace {

constexpr std::uint64_t hash_seed = 0x1f35;

} // namespace

NamedProcess::NamedProcess(std::string name, unsigned number)
    : m_name(std::move(name)), m_number(number) {}

NamedProcess::~NamedProcess() = default;

unsigned NamedProcess::argument_count() const {
    return 0;
}

ProcessPointer const& NamedProcess::argument(unsigned) const {
    std::abort();
}

void NamedProcess::set_arguments(ProcessArray const&) {}

bool NamedProcess::visit_transitions(NamedProcessSource const& source,
                                     TransitionVisitor const& visitor) const {
    watch_recursion();
    return source.process(*this)->visit_transitions(source, visitor);
}

std::unique_ptr<Formats> NamedProcess::high_level_formats(std::vector<BitSet> const&) const {
    std::abort();
}

std::uint64_t NamedProcess::hash_code() const {
    return m_hash.get([this] { return hash_combine(hash_seed, std::hash<std::string>()(m_name)); });
}

bool NamedProcess::operator==(Process const& other) const {
    return other.kind() == kind() && m_name == static_cast<NamedProcess const&>(other).m_name;
}

bool NamedProcess::operator!=(Process const& other) const {
    return other.kind() != kind() || m_name != static_cast<NamedProcess const&>(other).m_name;
}

ProcessPointer NamedProcess::clone(bool) const {
    return new NamedProcess(m_name, m_number);
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
    printer << m_name;
}

void NamedProcess::pretty_print_operator(Printer& printer) const {
    printer << m_name;
}

void NamedProcess::pretty_print_operator_description(Printer& printer) const {
    printer << "Process " << m_name;
}

std::pair<unsigned, unsigned> NamedProcess::pretty_print_information() const {
    return {0, non_associative};
}

bool NamedProcess::pretty_print_is_same_operator(Process const& other) const {
    return other.kind() == kind();
}

} // namespace Calder::ProcessCompiler
