#include "csp/external_choice_process.h"

#include "csp/colours.h"
#include "process_compiler/argument_array.h"
#include "process_compiler/printing.h"

#include <cstdlib>

namespace Calder::ProcessCompiler::CSP {

namespace {

constexpr unsigned external_choice_kind = 10;
constexpr std::uint64_t hash_seed = 0x493;

} // namespace

ExternalChoiceProcess::ExternalChoiceProcess(unsigned count) : NaryProcess(count) {}

ExternalChoiceProcess::ExternalChoiceProcess(ProcessArray const& arguments)
    : NaryProcess(arguments) {}

ExternalChoiceProcess::ExternalChoiceProcess(ProcessArray const& arguments, unsigned index,
                                             ProcessPointer const& replacement)
    : NaryProcess(arguments, index, replacement) {}

ExternalChoiceProcess::~ExternalChoiceProcess() = default;

bool ExternalChoiceProcess::visit_transitions(NamedProcessSource const& source,
                                              TransitionVisitor const& visitor) const {
    struct {
        ProcessArray const& arguments;
        TransitionVisitor const& visitor;
        unsigned moving;
    } step{arguments_, visitor, 0};
    TransitionVisitor const argument_visitor = [&step](unsigned event,
                                                       ProcessPointer const& successor) {
        if (event == tau) {
            return step.visitor(tau,
                                new ExternalChoiceProcess(step.arguments, step.moving, successor));
        }
        return step.visitor(event, successor);
    };
    for (; step.moving < arguments_.size(); ++step.moving) {
        if (!arguments_[step.moving]->visit_transitions(source, argument_visitor)) {
            return false;
        }
    }
    return true;
}

std::unique_ptr<Formats>
ExternalChoiceProcess::high_level_formats(std::vector<BitSet> const& alphabets) const {
    auto const count = static_cast<unsigned>(alphabets.size());
    auto formats = std::make_unique<Formats>(count + 1);
    HighLevelMachine::UnCompiledFormat& open = formats->at(0);
    activate_first_components(open, count);
    for (unsigned index = 0; index < count; ++index) {
        for (unsigned const event : alphabets[index]) {
            append_rule(open, event, event == tau ? 0 : index + 1, {std::pair(index, event)});
        }
        make_identity_format(*formats, index + 1, alphabets[index], index);
    }
    return formats;
}

std::uint64_t ExternalChoiceProcess::hash_code() const {
    return hash_from(hash_seed);
}

ProcessPointer ExternalChoiceProcess::clone(bool deep) const {
    if (deep) {
        return new ExternalChoiceProcess(clone_arguments(arguments_));
    }
    return new ExternalChoiceProcess(argument_count());
}

unsigned ExternalChoiceProcess::kind() const {
    return external_choice_kind;
}

RecursionType ExternalChoiceProcess::recursion_type() const {
    return RecursionType::ends_others;
}

bool ExternalChoiceProcess::allows_recursion(unsigned) const {
    return true;
}

ArgumentState ExternalChoiceProcess::process_state(unsigned) const {
    return ArgumentState::on;
}

bool ExternalChoiceProcess::discarded_by(unsigned) const {
    return true;
}

TurnedOnBy ExternalChoiceProcess::turned_on_by(unsigned) const {
    std::abort();
}

CompilationLevel ExternalChoiceProcess::preferred_compilation_level(bool high_wished) const {
    return as_wished(high_wished);
}

void ExternalChoiceProcess::pretty_print(Printer& printer) const {
    nary_operator(printer, "STOP", *this);
}

void ExternalChoiceProcess::pretty_print_operator(Printer& printer) const {
    printer << " [] ";
}

void ExternalChoiceProcess::pretty_print_operator_description(Printer& printer) const {
    printer << "External Choice";
}

std::pair<unsigned, unsigned> ExternalChoiceProcess::pretty_print_information() const {
    return {6, left_associative};
}

} // namespace Calder::ProcessCompiler::CSP
