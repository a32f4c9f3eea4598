#include "csp/external_choice_process.h"
#include "csp/prefix_process.h"
#include "process_compiler/named_process_source.h"

using Calder::OwningArray;
using namespace Calder::ProcessCompiler;

/// Builds a -> STOP [] b -> STOP with the library that this module was loaded with, and counts its
/// transitions.
extern "C" __attribute__((visibility("default"))) unsigned count_transitions() {
    ProcessPointer const stop(new CSP::ExternalChoiceProcess(0U));
    OwningArray<ProcessPointer> const arguments{new CSP::PrefixProcess(3, stop),
                                                new CSP::PrefixProcess(4, stop)};
    ProcessPointer const choice(new CSP::ExternalChoiceProcess(arguments));
    unsigned count = 0;
    choice->visit_transitions(NamedProcessSource(), [&](unsigned, ProcessPointer const&) {
        ++count;
        return true;
    });
    return count;
}
