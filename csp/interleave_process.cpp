#include "csp/interleave_process.h"

#include "csp/colours.h"
#include "csp/shared_stop.h"
#include "process_compiler/argument_array.h"
#include "process_compiler/printing.h"

#include <cstdlib>

namespace Calder::ProcessCompiler::CSP {

namespace {

constexpr unsigned interleave_kind = 13;
constexpr std::uint64_t hash_seed = 0x8e1;

} // namespace

InterleaveProcess::InterleaveProcess(unsigned count) : NaryProcess(count) {}

InterleaveProcess::InterleaveProcess(ProcessArray const& arguments) : NaryProcess(arguments) {}

InterleaveProcess::InterleaveProcess(ProcessArray const& arguments, unsigned index,
                                     ProcessPointer const& replacement)
    : NaryProcess(arguments, index, replacement) {}

InterleaveProcess::~InterleaveProcess() = default;

bool InterleaveProcess::visit_transitions(NamedProcessSource const& source,
                                          TransitionVisitor const& visitor) const {
    struct {
        ProcessArray const& arguments;
        TransitionVisitor const& visitor;
        unsigned moving;
        bool can_terminate;
    } step{arguments_, visitor, 0, false};
    TransitionVisitor const argument_visitor = [&step](unsigned event,
                                                       ProcessPointer const& successor) {
        if (event == tick) {
            step.can_terminate = true;
            return true;
        }
        return step.visitor(event, new InterleaveProcess(step.arguments, step.moving, successor));
    };
    std::size_t able_to_terminate = 0;
    for (; step.moving < arguments_.size(); ++step.moving) {
        step.can_terminate = false;
        if (!arguments_[step.moving]->visit_transitions(source, argument_visitor)) {
            return false;
        }
        able_to_terminate += step.can_terminate ? 1 : 0;
    }
    return able_to_terminate != arguments_.size() || visitor(tick, shared_stop);
}

std::unique_ptr<Formats>
InterleaveProcess::high_level_formats(std::vector<BitSet> const& alphabets) const {
    unsigned const count = argument_count();
    auto formats = std::make_unique<Formats>(1);
    HighLevelMachine::UnCompiledFormat& running = formats->at(0);
    activate_first_components(running, count);
    std::vector<HighLevelMachine::ComponentEvent> terminations;
    for (unsigned index = 0; index < count; ++index) {
        for (unsigned const event : alphabets[index]) {
            if (event == tick) {
                terminations.emplace_back(std::pair(index, tick));
            } else {
                append_rule(running, event, 0, {std::pair(index, event)});
            }
        }
    }
    if (terminations.size() == count) {
        append_rule(running, tick, 0, std::move(terminations));
    }
    return formats;
}

std::uint64_t InterleaveProcess::hash_code() const {
    return hash_from(hash_seed);
}

ProcessPointer InterleaveProcess::clone(bool deep) const {
    if (deep) {
        return new InterleaveProcess(clone_arguments(arguments_));
    }
    return new InterleaveProcess(argument_count());
}

unsigned InterleaveProcess::kind() const {
    return interleave_kind;
}

RecursionType InterleaveProcess::recursion_type() const {
    return RecursionType::keeps_running;
}

bool InterleaveProcess::allows_recursion(unsigned) const {
    return false;
}

ArgumentState InterleaveProcess::process_state(unsigned) const {
    return ArgumentState::on;
}

bool InterleaveProcess::discarded_by(unsigned) const {
    return false;
}

TurnedOnBy InterleaveProcess::turned_on_by(unsigned) const {
    std::abort();
}

CompilationLevel InterleaveProcess::preferred_compilation_level(bool) const {
    return CompilationLevel::high;
}

void InterleaveProcess::pretty_print(Printer& printer) const {
    nary_operator(printer, "SKIP", *this);
}

void InterleaveProcess::pretty_print_operator(Printer& printer) const {
    printer << " ||| ";
}

void InterleaveProcess::pretty_print_operator_description(Printer& printer) const {
    printer << "Interleave";
}

std::pair<unsigned, unsigned> InterleaveProcess::pretty_print_information() const {
    return {9, left_associative};
}

} // namespace Calder::ProcessCompiler::CSP
