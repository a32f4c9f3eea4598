#include "csp/sequential_composition_process.h"

#include "csp/colours.h"

namespace Calder::ProcessCompiler::CSP {

namespace {

constexpr unsigned sequential_composition_kind = 15;
constexpr std::uint64_t hash_seed = 0xf0d;

} // namespace

SequentialCompositionProcess::SequentialCompositionProcess() = default;

SequentialCompositionProcess::SequentialCompositionProcess(ProcessPointer const& first,
                                                           ProcessPointer const& second)
    : BinaryProcess(first, second) {}

SequentialCompositionProcess::~SequentialCompositionProcess() = default;

bool SequentialCompositionProcess::visit_transitions(NamedProcessSource const& source,
                                                     TransitionVisitor const& visitor) const {
    struct {
        ProcessPointer const& second;
        TransitionVisitor const& visitor;
    } const step{second_, visitor};
    return first_->visit_transitions(
        source, [&step](unsigned event, ProcessPointer const& successor) {
            if (event == tick) {
                return step.visitor(tau, step.second);
            }
            return step.visitor(event, new SequentialCompositionProcess(successor, step.second));
        });
}

void SequentialCompositionProcess::visit_high_level_transitions(
    std::vector<BitSet> const& alphabets, HighLevelVisitor const& visitor) const {
    ProcessPointer const same = self();
    for (unsigned const event : alphabets[0]) {
        if (event == tick) {
            visitor({tick}, tau, second_, true);
        } else {
            visitor({event}, event, same, false);
        }
    }
}

std::unique_ptr<Formats>
SequentialCompositionProcess::high_level_formats(std::vector<BitSet> const& alphabets) const {
    auto formats = std::make_unique<Formats>(2);
    HighLevelMachine::UnCompiledFormat& before = formats->at(0);
    before.active_components = {0};
    for (unsigned const event : alphabets[0]) {
        append_rule(before, event == tick ? tau : event, event == tick ? 1 : 0,
                    {std::pair(0, event)});
    }
    make_identity_format(*formats, 1, alphabets[1], 1);
    return formats;
}

std::uint64_t SequentialCompositionProcess::hash_code() const {
    return hash_from(hash_seed);
}

ProcessPointer SequentialCompositionProcess::clone(bool deep) const {
    if (deep) {
        return new SequentialCompositionProcess(first_->clone(true), second_->clone(true));
    }
    return new SequentialCompositionProcess();
}

unsigned SequentialCompositionProcess::kind() const {
    return sequential_composition_kind;
}

RecursionType SequentialCompositionProcess::recursion_type() const {
    return RecursionType::keeps_running;
}

bool SequentialCompositionProcess::allows_recursion(unsigned index) const {
    return index == 1;
}

ArgumentState SequentialCompositionProcess::process_state(unsigned index) const {
    return index == 0 ? ArgumentState::on : ArgumentState::off;
}

bool SequentialCompositionProcess::discarded_by(unsigned) const {
    return false;
}

TurnedOnBy SequentialCompositionProcess::turned_on_by(unsigned) const {
    return TurnedOnBy::silent_step;
}

CompilationLevel SequentialCompositionProcess::preferred_compilation_level(bool high_wished) const {
    return as_wished(high_wished);
}

void SequentialCompositionProcess::pretty_print_operator(Printer& printer) const {
    printer << " ; ";
}

void SequentialCompositionProcess::pretty_print_operator_description(Printer& printer) const {
    printer << "Sequential Composition";
}

std::pair<unsigned, unsigned> SequentialCompositionProcess::pretty_print_information() const {
    return {3, right_associative};
}

} // namespace Calder::ProcessCompiler::CSP
