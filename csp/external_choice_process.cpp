#include "csp/external_choice_process.h"

#include "csp/colours.h"
#include "csp/visit_each.h"

namespace Calder::ProcessCompiler::CSP {

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
        Successors successors;
        TransitionVisitor const& visitor;
        unsigned moving;
    } step{Successors(m_arguments), visitor, 0};
    return visit_each(
        m_arguments, step.moving, source, [&step](unsigned event, ProcessPointer const& successor) {
            if (event == tau) {
                return step.visitor(tau, step.successors.with(step.moving, successor));
            }
            return step.visitor(event, successor);
        });
}

std::unique_ptr<Formats>
ExternalChoiceProcess::high_level_formats(std::vector<BitSet> const& alphabets) const {
    auto const count = static_cast<unsigned>(alphabets.size());
    auto formats = std::make_unique<Formats>(count + 1);
    activate_first_components(formats->at(0), count);
    for (unsigned index = 0; index < count; ++index) {
        append_argument_rules(formats->at(0), index, alphabets[index],
                              [index](unsigned event) { return event == tau ? 0 : index + 1; });
        make_identity_format(*formats, index + 1, alphabets[index], index);
    }
    return formats;
}

bool ExternalChoiceProcess::operator==(Process const& other) const {
    return other.kind() == shape.kind && arguments_equal(m_arguments, same_kind(other).m_arguments);
}

} // namespace Calder::ProcessCompiler::CSP
