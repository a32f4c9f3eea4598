#pragma once

#include "csp/export.h"
#include "process_compiler/process.h"

namespace Calder::ProcessCompiler::CSP {

/// What the process constructs with any number of arguments share: the arguments and their
/// comparison. The arguments stand in a FixedArray and so are never released.
class CALDER_CSP_EXPORT NaryProcess : public CompilableProcess {
  public:
    ~NaryProcess() override;

    unsigned argument_count() const override;
    ProcessPointer const& argument(unsigned index) const override;
    void set_arguments(ProcessArray const& arguments) override;

    /// Order matters, although the constructs are commutative.
    bool operator==(Process const& other) const override;
    bool operator!=(Process const& other) const override;

    bool is_commutative() const override;

    bool pretty_print_is_same_operator(Process const& other) const override;

  protected:
    /// `count` arguments that are null until `set_arguments`.
    explicit NaryProcess(unsigned count);
    explicit NaryProcess(ProcessArray const& arguments);
    /// The same arguments with the one at `index` replaced.
    NaryProcess(ProcessArray const& arguments, unsigned index, ProcessPointer const& replacement);

    std::uint64_t hash_from(std::uint64_t seed) const;

    ProcessArray arguments_;
};

} // namespace Calder::ProcessCompiler::CSP
