#include "csp/prefix_process.h"

#include "core/hash_combine.h"
#include "csp/colours.h"
#include "process_compiler/printing.h"

#include <cstdlib>

namespace Calder::ProcessCompiler::CSP {

namespace {

constexpr unsigned prefix_kind = 14;
constexpr std::uint64_t hash_seed = 0xc41;

/// The other term as a prefix; only asked of a term of that kind.
PrefixProcess const& as_prefix(Process const& other) {
    return static_cast<PrefixProcess const&>(other);
}

} // namespace

PrefixProcess::PrefixProcess(Session& session, EventPointer const& event)
    : event_(session.event_number(*event)) {}

PrefixProcess::PrefixProcess(unsigned const& event, ProcessPointer const& destination)
    : event_(event), destination_(destination) {}

PrefixProcess::~PrefixProcess() = default;

unsigned PrefixProcess::argument_count() const {
    return 1;
}

ProcessPointer const& PrefixProcess::argument(unsigned) const {
    return destination_;
}

void PrefixProcess::set_arguments(ProcessArray const& arguments) {
    destination_ = arguments[0];
}

bool PrefixProcess::needs_memoisation() const {
    return false;
}

bool PrefixProcess::visit_transitions(NamedProcessSource const&,
                                      TransitionVisitor const& visitor) const {
    return visitor(event_, destination_);
}

void PrefixProcess::visit_high_level_transitions(std::vector<BitSet> const&,
                                                 HighLevelVisitor const& visitor) const {
    ProcessPointer const held = self();
    visitor({}, event_, destination_, true);
}

std::unique_ptr<Formats>
PrefixProcess::high_level_formats(std::vector<BitSet> const& alphabets) const {
    auto formats = std::make_unique<Formats>(2);
    append_rule(formats->at(0), event_, 1);
    make_identity_format(*formats, 1, alphabets[0], 0);
    return formats;
}

std::uint64_t PrefixProcess::hash_code() const {
    return m_hash.get(
        [this] { return hash_combine(hash_combine(hash_seed, event_), hash_of(destination_)); });
}

bool PrefixProcess::operator==(Process const& other) const {
    return other.kind() == prefix_kind && event_ == as_prefix(other).event_ &&
           *destination_ == *as_prefix(other).destination_;
}

bool PrefixProcess::operator!=(Process const& other) const {
    return other.kind() != prefix_kind || event_ != as_prefix(other).event_ ||
           *destination_ != *as_prefix(other).destination_;
}

ProcessPointer PrefixProcess::clone(bool deep) const {
    return new PrefixProcess(event_, deep ? destination_->clone(true) : nullptr);
}

unsigned PrefixProcess::kind() const {
    return prefix_kind;
}

RecursionType PrefixProcess::recursion_type() const {
    return RecursionType::starts_none;
}

bool PrefixProcess::allows_recursion(unsigned) const {
    return true;
}

ArgumentState PrefixProcess::process_state(unsigned) const {
    return ArgumentState::off;
}

bool PrefixProcess::discarded_by(unsigned) const {
    std::abort();
}

TurnedOnBy PrefixProcess::turned_on_by(unsigned) const {
    return TurnedOnBy::visible_event;
}

CompilationLevel PrefixProcess::preferred_compilation_level(bool) const {
    return CompilationLevel::low;
}

bool PrefixProcess::is_commutative() const {
    return false;
}

void PrefixProcess::pretty_print(Printer& printer) const {
    print_event(printer, event_);
    printer << " -> ";
    if (printer.abbreviate) {
        printer << "…";
        return;
    }
    print_right_operand(printer, *this, *destination_);
}

void PrefixProcess::pretty_print_operator(Printer& printer) const {
    printer << "->";
}

void PrefixProcess::pretty_print_operator_description(Printer& printer) const {
    printer << "Prefix ";
    print_event(printer, event_);
}

std::pair<unsigned, unsigned> PrefixProcess::pretty_print_information() const {
    return {2, right_associative};
}

bool PrefixProcess::pretty_print_is_same_operator(Process const& other) const {
    return other.kind() == prefix_kind;
}

} // namespace Calder::ProcessCompiler::CSP
