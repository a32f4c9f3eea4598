#include "csp/internal_choice_process.h"

#include "csp/colours.h"
#include "process_compiler/argument_array.h"
#include "process_compiler/printing.h"

#include <cstdlib>

namespace Calder::ProcessCompiler::CSP {

namespace {

constexpr unsigned internal_choice_kind = 11;
constexpr std::uint64_t hash_seed = 0x709;

} // namespace

InternalChoiceProcess::InternalChoiceProcess(unsigned count) : NaryProcess(count) {}

InternalChoiceProcess::InternalChoiceProcess(ProcessArray const& arguments)
    : NaryProcess(arguments) {}

InternalChoiceProcess::~InternalChoiceProcess() = default;

bool InternalChoiceProcess::needs_memoisation() const {
    return false;
}

bool InternalChoiceProcess::visit_transitions(NamedProcessSource const&,
                                              TransitionVisitor const& visitor) const {
    for (ProcessPointer const& argument : arguments_) {
        if (!visitor(tau, argument)) {
            return false;
        }
    }
    return true;
}

void InternalChoiceProcess::visit_high_level_transitions(std::vector<BitSet> const&,
                                                         HighLevelVisitor const& visitor) const {
    ProcessPointer const held = self();
    for (ProcessPointer const& argument : arguments_) {
        visitor({}, tau, argument, true);
    }
}

std::unique_ptr<Formats>
InternalChoiceProcess::high_level_formats(std::vector<BitSet> const& alphabets) const {
    unsigned const count = argument_count();
    auto formats = std::make_unique<Formats>(count + 1);
    for (unsigned index = 0; index < count; ++index) {
        append_rule(formats->at(0), tau, index + 1);
        make_identity_format(*formats, index + 1, alphabets[index], index);
    }
    return formats;
}

std::uint64_t InternalChoiceProcess::hash_code() const {
    return hash_from(hash_seed);
}

ProcessPointer InternalChoiceProcess::clone(bool deep) const {
    if (deep) {
        return new InternalChoiceProcess(clone_arguments(arguments_));
    }
    return new InternalChoiceProcess(argument_count());
}

unsigned InternalChoiceProcess::kind() const {
    return internal_choice_kind;
}

RecursionType InternalChoiceProcess::recursion_type() const {
    return RecursionType::starts_none;
}

bool InternalChoiceProcess::allows_recursion(unsigned) const {
    return true;
}

ArgumentState InternalChoiceProcess::process_state(unsigned) const {
    return ArgumentState::off;
}

bool InternalChoiceProcess::discarded_by(unsigned) const {
    std::abort();
}

TurnedOnBy InternalChoiceProcess::turned_on_by(unsigned) const {
    return TurnedOnBy::silent_step;
}

CompilationLevel InternalChoiceProcess::preferred_compilation_level(bool high_wished) const {
    return as_wished(high_wished);
}

void InternalChoiceProcess::pretty_print(Printer& printer) const {
    nary_operator(printer, "STOP", *this);
}

void InternalChoiceProcess::pretty_print_operator(Printer& printer) const {
    printer << " |~| ";
}

void InternalChoiceProcess::pretty_print_operator_description(Printer& printer) const {
    printer << "Internal Choice";
}

std::pair<unsigned, unsigned> InternalChoiceProcess::pretty_print_information() const {
    return {7, left_associative};
}

} // namespace Calder::ProcessCompiler::CSP
