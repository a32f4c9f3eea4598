#include "csp/sliding_choice_process.h"

#include "csp/colours.h"

namespace Calder::ProcessCompiler::CSP {

namespace {

constexpr unsigned sliding_choice_kind = 16;
constexpr std::uint64_t hash_seed = 0x101f;

} // namespace

SlidingChoiceProcess::SlidingChoiceProcess() = default;

SlidingChoiceProcess::SlidingChoiceProcess(ProcessPointer const& first,
                                           ProcessPointer const& second)
    : BinaryProcess(first, second) {}

SlidingChoiceProcess::~SlidingChoiceProcess() = default;

bool SlidingChoiceProcess::visit_transitions(NamedProcessSource const& source,
                                             TransitionVisitor const& visitor) const {
    if (!visitor(tau, second_)) {
        return false;
    }
    struct {
        ProcessPointer const& second;
        TransitionVisitor const& visitor;
    } const step{second_, visitor};
    return first_->visit_transitions(
        source, [&step](unsigned event, ProcessPointer const& successor) {
            if (event == tau) {
                return step.visitor(tau, new SlidingChoiceProcess(successor, step.second));
            }
            return step.visitor(event, successor);
        });
}

std::unique_ptr<Formats>
SlidingChoiceProcess::high_level_formats(std::vector<BitSet> const& alphabets) const {
    auto formats = std::make_unique<Formats>(3);
    HighLevelMachine::UnCompiledFormat& undecided = formats->at(0);
    undecided.active_components = {0};
    for (unsigned const event : alphabets[0]) {
        append_rule(undecided, event, event == tau ? 0 : 1, {std::pair(0, event)});
    }
    append_rule(undecided, tau, 2);
    make_identity_format(*formats, 1, alphabets[0], 0);
    make_identity_format(*formats, 2, alphabets[1], 1);
    return formats;
}

std::uint64_t SlidingChoiceProcess::hash_code() const {
    return hash_from(hash_seed);
}

ProcessPointer SlidingChoiceProcess::clone(bool deep) const {
    if (deep) {
        return new SlidingChoiceProcess(first_->clone(true), second_->clone(true));
    }
    return new SlidingChoiceProcess();
}

unsigned SlidingChoiceProcess::kind() const {
    return sliding_choice_kind;
}

RecursionType SlidingChoiceProcess::recursion_type() const {
    return RecursionType::ends_others;
}

bool SlidingChoiceProcess::allows_recursion(unsigned) const {
    return true;
}

ArgumentState SlidingChoiceProcess::process_state(unsigned index) const {
    return index == 0 ? ArgumentState::on : ArgumentState::off;
}

bool SlidingChoiceProcess::discarded_by(unsigned) const {
    return true;
}

TurnedOnBy SlidingChoiceProcess::turned_on_by(unsigned) const {
    return TurnedOnBy::silent_step;
}

CompilationLevel SlidingChoiceProcess::preferred_compilation_level(bool high_wished) const {
    return as_wished(high_wished);
}

void SlidingChoiceProcess::pretty_print_operator(Printer& printer) const {
    printer << " [> ";
}

void SlidingChoiceProcess::pretty_print_operator_description(Printer& printer) const {
    printer << "Sliding Choice";
}

std::pair<unsigned, unsigned> SlidingChoiceProcess::pretty_print_information() const {
    return {4, left_associative};
}

} // namespace Calder::ProcessCompiler::CSP
