#include "csp/nary_process.h"

#include "core/hash_combine.h"
#include "core/kept_references.h"
#include "process_compiler/argument_array.h"

namespace Calder::ProcessCompiler::CSP {

NaryProcess::NaryProcess(unsigned count) : arguments_(count) {}

NaryProcess::NaryProcess(ProcessArray const& arguments) : arguments_(arguments) {}

NaryProcess::NaryProcess(ProcessArray const& arguments, unsigned index,
                         ProcessPointer const& replacement)
    : arguments_(arguments, index, replacement) {}

NaryProcess::~NaryProcess() {
    record_kept_references(arguments_);
}

unsigned NaryProcess::argument_count() const {
    return static_cast<unsigned>(arguments_.size());
}

ProcessPointer const& NaryProcess::argument(unsigned index) const {
    return arguments_[index];
}

void NaryProcess::set_arguments(ProcessArray const& arguments) {
    replace_arguments(arguments_, arguments);
}

std::uint64_t NaryProcess::hash_from(std::uint64_t seed) const {
    return m_hash.get([this, seed] { return hash_combine(seed, hash_arguments(arguments_)); });
}

bool NaryProcess::operator==(Process const& other) const {
    return other.kind() == kind() &&
           arguments_equal(arguments_, static_cast<NaryProcess const&>(other).arguments_);
}

bool NaryProcess::operator!=(Process const& other) const {
    return other.kind() != kind() ||
           !arguments_equal(arguments_, static_cast<NaryProcess const&>(other).arguments_);
}

bool NaryProcess::is_commutative() const {
    return true;
}

bool NaryProcess::pretty_print_is_same_operator(Process const& other) const {
    return other.kind() == kind();
}

} // namespace Calder::ProcessCompiler::CSP
