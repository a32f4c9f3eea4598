#include "csp/external_choice_process.h"
#include "csp/prefix_process.h"

#include <cstring>

using Calder::OwningArray;
using namespace Calder::ProcessCompiler;

/// Drops a choice, whose arguments stay held by the rule of FixedArray; with the word `mistake`
/// also loses a term that no rule keeps. The leak checker must tell the two apart.
int main(int count, char** words) {
    OwningArray<ProcessPointer> const arguments{
        new CSP::PrefixProcess(3, new CSP::ExternalChoiceProcess(0U))};
    ProcessPointer(new CSP::ExternalChoiceProcess(arguments)).reset();
    if (count > 1 && std::strcmp(words[1], "mistake") == 0) {
        ProcessPointer lost(new CSP::PrefixProcess(4, arguments[0]));
        lost.detach();
    }
    return 0;
}
