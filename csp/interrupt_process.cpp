#include "csp/interrupt_process.h"

#include "csp/colours.h"
#include "csp/shared_stop.h"

#include <cstdlib>

namespace Calder::ProcessCompiler::CSP {

namespace {

constexpr unsigned interrupt_kind = 12;
constexpr std::uint64_t hash_seed = 0x7ed;

} // namespace

InterruptProcess::InterruptProcess() = default;

InterruptProcess::InterruptProcess(ProcessPointer const& first, ProcessPointer const& second)
    : BinaryProcess(first, second) {}

InterruptProcess::~InterruptProcess() = default;

bool InterruptProcess::visit_transitions(NamedProcessSource const& source,
                                         TransitionVisitor const& visitor) const {
    struct {
        ProcessPointer const& first;
        ProcessPointer const& second;
        TransitionVisitor const& visitor;
    } const step{first_, second_, visitor};
    return first_->visit_transitions(source,
                                     [&step](unsigned event, ProcessPointer const& successor) {
                                         if (event == tick) {
                                             return step.visitor(tick, shared_stop);
                                         }
                                         return step.visitor(
                                             event, new InterruptProcess(successor, step.second));
                                     }) &&
           second_->visit_transitions(
               source, [&step](unsigned event, ProcessPointer const& successor) {
                   if (event == tau) {
                       return step.visitor(tau, new InterruptProcess(step.first, successor));
                   }
                   return step.visitor(event, successor);
               });
}

std::unique_ptr<Formats>
InterruptProcess::high_level_formats(std::vector<BitSet> const& alphabets) const {
    auto formats = std::make_unique<Formats>(alphabets[0].member(tick) ? 3 : 2);
    HighLevelMachine::UnCompiledFormat& both = formats->at(0);
    both.active_components = {0, 1};
    for (unsigned const event : alphabets[0]) {
        append_rule(both, event, event == tick ? 2 : 0, {std::pair(0, event)});
    }
    for (unsigned const event : alphabets[1]) {
        append_rule(both, event, event == tau ? 0 : 1, {std::pair(1, event)});
    }
    make_identity_format(*formats, 1, alphabets[1], 1);
    make_stop_format(*formats, 2); // also when no tick leads there
    return formats;
}

std::uint64_t InterruptProcess::hash_code() const {
    return hash_from(hash_seed);
}

ProcessPointer InterruptProcess::clone(bool deep) const {
    if (deep) {
        return new InterruptProcess(first_->clone(true), second_->clone(true));
    }
    return new InterruptProcess();
}

unsigned InterruptProcess::kind() const {
    return interrupt_kind;
}

RecursionType InterruptProcess::recursion_type() const {
    return RecursionType::ends_others;
}

bool InterruptProcess::allows_recursion(unsigned index) const {
    return index == 1;
}

ArgumentState InterruptProcess::process_state(unsigned) const {
    return ArgumentState::on;
}

bool InterruptProcess::discarded_by(unsigned index) const {
    return index != 0;
}

TurnedOnBy InterruptProcess::turned_on_by(unsigned) const {
    std::abort();
}

CompilationLevel InterruptProcess::preferred_compilation_level(bool) const {
    return CompilationLevel::high;
}

void InterruptProcess::pretty_print_operator(Printer& printer) const {
    printer << " /\\ ";
}

void InterruptProcess::pretty_print_operator_description(Printer& printer) const {
    printer << "Interrupt";
}

std::pair<unsigned, unsigned> InterruptProcess::pretty_print_information() const {
    return {5, left_associative};
}

} // namespace Calder::ProcessCompiler::CSP
