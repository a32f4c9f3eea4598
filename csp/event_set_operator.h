#pragma once

#include "csp/export.h"
#include "process_compiler/operator_process.h"
#include "process_compiler/session.h"

namespace Calder::ProcessCompiler::CSP {

/// What the operators over one event set share: the set and their comparison by it.
class CALDER_CSP_EXPORT EventSetOperator : public Operator {
  public:
    ~EventSetOperator() override;

    bool operator==(Operator const& other) const override;
    bool operator!=(Operator const& other) const override;

  protected:
    explicit EventSetOperator(BitSet const& events);
    EventSetOperator(Session& session, EventSet const& events);

    std::uint64_t hash_from(std::uint64_t seed) const;

    BitSet events_;
};

} // namespace Calder::ProcessCompiler::CSP
