#pragma once

#include "csp/export.h"
#include "process_compiler/session.h"

namespace Calder::ProcessCompiler::CSP {

/// What the terms over an event set and without arguments share. They are only ever explored by
/// their transitions, so the questions about arguments and formats abort.
class CALDER_CSP_EXPORT EventSetProcess : public CompilableProcess {
  public:
    ~EventSetProcess() override;

    unsigned argument_count() const override;
    ProcessPointer const& argument(unsigned index) const override;
    void set_arguments(ProcessArray const& arguments) override;

    std::unique_ptr<Formats>
    high_level_formats(std::vector<BitSet> const& alphabets) const override;

    bool operator==(Process const& other) const override;
    bool operator!=(Process const& other) const override;

    RecursionType recursion_type() const override;
    bool allows_recursion(unsigned index) const override;
    ArgumentState process_state(unsigned index) const override;
    bool discarded_by(unsigned index) const override;
    TurnedOnBy turned_on_by(unsigned index) const override;
    CompilationLevel preferred_compilation_level(bool high_wished) const override;

    void pretty_print(Printer& printer) const override;
    std::pair<unsigned, unsigned> pretty_print_information() const override;
    bool pretty_print_is_same_operator(Process const& other) const override;

  protected:
    EventSetProcess(Session& session, EventSet const& events);
    explicit EventSetProcess(BitSet const& events);

    std::uint64_t hash_from(std::uint64_t seed) const;

    BitSet events_;
};

} // namespace Calder::ProcessCompiler::CSP
