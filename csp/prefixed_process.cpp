#include "csp/prefixed_process.h"

#include <cstdlib>

namespace Calder::ProcessCompiler::CSP {

PrefixedProcess::PrefixedProcess(ProcessPointer const& destination) : destination_(destination) {}

PrefixedProcess::~PrefixedProcess() = default;

unsigned PrefixedProcess::argument_count() const {
    return 1;
}

ProcessPointer const& PrefixedProcess::argument(unsigned) const {
    return destination_;
}

void PrefixedProcess::set_arguments(ProcessArray const& arguments) {
    destination_ = arguments[0];
}

bool PrefixedProcess::needs_memoisation() const {
    return false;
}

std::unique_ptr<Formats>
PrefixedProcess::formats_before_continuation(std::vector<BitSet> const& alphabets) const {
    auto formats = std::make_unique<Formats>(2);
    make_identity_format(*formats, 1, alphabets[0], 0);
    return formats;
}

RecursionType PrefixedProcess::recursion_type() const {
    return RecursionType::starts_none;
}

bool PrefixedProcess::allows_recursion(unsigned) const {
    return true;
}

ArgumentState PrefixedProcess::process_state(unsigned) const {
    return ArgumentState::off;
}

bool PrefixedProcess::discarded_by(unsigned) const {
    std::abort();
}

TurnedOnBy PrefixedProcess::turned_on_by(unsigned) const {
    return TurnedOnBy::visible_event;
}

CompilationLevel PrefixedProcess::preferred_compilation_level(bool) const {
    return CompilationLevel::low;
}

void PrefixedProcess::pretty_print_operator(Printer& printer) const {
    printer << "->";
}

std::pair<unsigned, unsigned> PrefixedProcess::pretty_print_information() const {
    return {2, right_associative};
}

bool PrefixedProcess::pretty_print_is_same_operator(Process const& other) const {
    return other.kind() == kind();
}

} // namespace Calder::ProcessCompiler::CSP
