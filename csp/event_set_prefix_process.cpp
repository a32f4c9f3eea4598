#include "csp/event_set_prefix_process.h"

#include "core/hash_combine.h"
#include "csp/colours.h"
#include "process_compiler/printing.h"

#include <cstdlib>

namespace Calder::ProcessCompiler::CSP {

namespace {

constexpr unsigned event_set_prefix_kind = 19;
// The seed of the prefix of one event; the kinds tell the two apart where their codes meet.
constexpr std::uint64_t hash_seed = 0xc41;

/// The other term as a prefix; only asked of a term of that kind.
EventSetPrefixProcess const& as_event_set_prefix(Process const& other) {
    return static_cast<EventSetPrefixProcess const&>(other);
}

} // namespace

EventSetPrefixProcess::EventSetPrefixProcess(BitSet const& events,
                                             ProcessPointer const& destination)
    : PrefixedProcess(destination), events_(events) {}

EventSetPrefixProcess::~EventSetPrefixProcess() = default;

bool EventSetPrefixProcess::visit_transitions(NamedProcessSource const&,
                                              TransitionVisitor const& visitor) const {
    for (unsigned const event : events_) {
        if (!visitor(event, destination_)) {
            return false;
        }
    }
    return true;
}

void EventSetPrefixProcess::visit_high_level_transitions(std::vector<BitSet> const&,
                                                         HighLevelVisitor const& visitor) const {
    ProcessPointer const held = self();
    for (unsigned const event : events_) {
        visitor({}, event, destination_, true);
    }
}

std::unique_ptr<Formats>
EventSetPrefixProcess::high_level_formats(std::vector<BitSet> const& alphabets) const {
    auto formats = formats_before_continuation(alphabets);
    for (unsigned const event : events_) {
        append_rule(formats->at(0), event, 1);
    }
    return formats;
}

std::uint64_t EventSetPrefixProcess::hash_code() const {
    return m_hash.get([this] {
        return hash_combine(hash_combine(hash_seed, events_.folded_words()), hash_of(destination_));
    });
}

bool EventSetPrefixProcess::operator==(Process const& other) const {
    return other.kind() == event_set_prefix_kind && events_ == as_event_set_prefix(other).events_ &&
           *destination_ == *as_event_set_prefix(other).destination_;
}

bool EventSetPrefixProcess::operator!=(Process const& other) const {
    return other.kind() != event_set_prefix_kind || events_ != as_event_set_prefix(other).events_ ||
           *destination_ != *as_event_set_prefix(other).destination_;
}

ProcessPointer EventSetPrefixProcess::clone(bool deep) const {
    return new EventSetPrefixProcess(events_, deep ? destination_->clone(true) : nullptr);
}

unsigned EventSetPrefixProcess::kind() const {
    return event_set_prefix_kind;
}

bool EventSetPrefixProcess::is_commutative() const {
    std::abort();
}

void EventSetPrefixProcess::pretty_print(Printer& printer) const {
    if (printer.abbreviate) {
        printer << "{…} -> …";
        return;
    }
    printer << "{";
    print_event_set(printer, events_);
    printer << "} -> ";
    print_right_operand(printer, *this, *destination_);
}

void EventSetPrefixProcess::pretty_print_operator_description(Printer& printer) const {
    print_event_set_description(printer, "Prefix event set:", events_);
}

} // namespace Calder::ProcessCompiler::CSP
