#pragma once

#include "csp/event_set_operator.h"
#include "process_compiler/transition_memory.h"

namespace Calder::ProcessCompiler::CSP {

/// What hiding and projection share: one argument that runs unchanged while each of its events is
/// performed as another one, by the set, and the form `P op A`.
///
///             P --e--> P'
///     --------------------------- f = event_outside(e)
///     P op A  --f-->  P' op A
template <typename Construct> class RelabellingOperator : public EventSetOperator<Construct> {
  public:
    bool visit_transitions(NamedProcessSource const& source, TransitionVisitor const& visitor,
                           ProcessArray const& arguments) const override {
        struct {
            Construct const& relabelling;
            OperatorPointer const op;
            TransitionVisitor const& visitor;
        } const step{this->same_kind(*this), this->self(), visitor};
        return visit_argument(arguments[0], source,
                              [&step](unsigned event, ProcessPointer const& successor) {
                                  return step.visitor(step.relabelling.event_outside(event),
                                                      new OperatorProcess(step.op, successor));
                              });
    }

    std::unique_ptr<Formats>
    high_level_formats(std::vector<BitSet> const& alphabets) const override {
        auto formats = std::make_unique<Formats>(1);
        activate_first_components(formats->at(0), 1);
        append_argument_rules(formats->at(0), 0, alphabets[0], [this](unsigned event) {
            return HighLevelMachine::Move{this->same_kind(*this).event_outside(event), 0};
        });
        return formats;
    }

    void pretty_print(Printer& printer) const override {
        print_postfix_set(printer, Construct::shape.symbol, this->m_events);
    }
    void pretty_print_operator_process(Printer& printer,
                                       OperatorProcess const& process) const override {
        print_postfix(printer, process, *this);
    }

  protected:
    using EventSetOperator<Construct>::EventSetOperator;
};

} // namespace Calder::ProcessCompiler::CSP
