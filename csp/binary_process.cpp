#include "csp/binary_process.h"

#include "core/hash_combine.h"
#include "process_compiler/printing.h"

namespace Calder::ProcessCompiler::CSP {

namespace {

/// The other term of the same kind.
BinaryProcess const& as_binary(Process const& other) {
    return static_cast<BinaryProcess const&>(other);
}

} // namespace

BinaryProcess::BinaryProcess() = default;

BinaryProcess::BinaryProcess(ProcessPointer const& first, ProcessPointer const& second)
    : first_(first), second_(second) {}

BinaryProcess::~BinaryProcess() = default;

unsigned BinaryProcess::argument_count() const {
    return 2;
}

ProcessPointer const& BinaryProcess::argument(unsigned index) const {
    return index == 0 ? first_ : second_;
}

void BinaryProcess::set_arguments(ProcessArray const& arguments) {
    first_ = arguments[0];
    second_ = arguments[1];
}

std::uint64_t BinaryProcess::hash_from(std::uint64_t seed) const {
    return m_hash.get([this, seed] {
        return hash_combine(hash_combine(seed, hash_of(first_)), hash_of(second_));
    });
}

bool BinaryProcess::operator==(Process const& other) const {
    return other.kind() == kind() && *first_ == *as_binary(other).first_ &&
           *second_ == *as_binary(other).second_;
}

bool BinaryProcess::operator!=(Process const& other) const {
    return other.kind() != kind() || *first_ != *as_binary(other).first_ ||
           *second_ != *as_binary(other).second_;
}

bool BinaryProcess::is_commutative() const {
    return false;
}

void BinaryProcess::pretty_print(Printer& printer) const {
    print_infix(printer, *this);
}

bool BinaryProcess::pretty_print_is_same_operator(Process const& other) const {
    return other.kind() == kind();
}

} // namespace Calder::ProcessCompiler::CSP
