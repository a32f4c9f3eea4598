#include "csp/prefix_process.h"

#include "core/hash_combine.h"
#include "csp/colours.h"
#include "process_compiler/printing.h"

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
    : PrefixedProcess(nullptr), event_(session.event_number(*event)) {}

PrefixProcess::PrefixProcess(unsigned const& event, ProcessPointer const& destination)
    : PrefixedProcess(destination), event_(event) {}

PrefixProcess::~PrefixProcess() = default;

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
    auto formats = formats_before_continuation(alphabets);
    append_rule(formats->at(0), event_, 1);
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

void PrefixProcess::pretty_print_operator_description(Printer& printer) const {
    printer << "Prefix ";
    print_event(printer, event_);
}

} // namespace Calder::ProcessCompiler::CSP
