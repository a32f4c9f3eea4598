#include "csp/internal_choice_process.h"

#include "csp/colours.h"

namespace Calder::ProcessCompiler::CSP {

InternalChoiceProcess::InternalChoiceProcess(unsigned count) : NaryProcess(count) {}

InternalChoiceProcess::InternalChoiceProcess(ProcessArray const& arguments)
    : NaryProcess(arguments) {}

InternalChoiceProcess::~InternalChoiceProcess() = default;

bool InternalChoiceProcess::needs_memoisation() const {
    return false;
}

bool InternalChoiceProcess::visit_transitions(NamedProcessSource const&,
                                              TransitionVisitor const& visitor) const {
    for (ProcessPointer const& argument : m_arguments) {
        if (!visitor(tau, argument)) {
            return false;
        }
    }
    return true;
}

void InternalChoiceProcess::visit_high_level_transitions(std::vector<BitSet> const&,
                                                         HighLevelVisitor const& visitor) const {
    ProcessPointer const same = self();
    for (ProcessPointer const& argument : m_arguments) {
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

} // namespace Calder::ProcessCompiler::CSP
