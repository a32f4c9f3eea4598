#pragma once

#include "csp/export.h"
#include "process_compiler/process.h"

namespace Calder::ProcessCompiler::CSP {

/// What the process constructs with exactly two arguments share: the arguments, their comparison,
/// and the infix form `P op Q`.
class CALDER_CSP_EXPORT BinaryProcess : public CompilableProcess {
  public:
    ~BinaryProcess() override;

    unsigned argument_count() const override;
    /// The first argument for index 0, the second for any other.
    ProcessPointer const& argument(unsigned index) const override;
    void set_arguments(ProcessArray const& arguments) override;

    bool operator==(Process const& other) const override;
    bool operator!=(Process const& other) const override;

    bool is_commutative() const override;

    void pretty_print(Printer& printer) const override;
    bool pretty_print_is_same_operator(Process const& other) const override;

  protected:
    /// Both arguments null until `set_arguments`.
    BinaryProcess();
    BinaryProcess(ProcessPointer const& first, ProcessPointer const& second);

    std::uint64_t hash_from(std::uint64_t seed) const;

    ProcessPointer first_;
    ProcessPointer second_;
};

} // namespace Calder::ProcessCompiler::CSP
