#pragma once

#include "core/hash_combine.h"
#include "csp/shaped.h"
#include "process_compiler/printing.h"
#include "process_compiler/session.h"

namespace Calder::ProcessCompiler::CSP {

/// What the operators over one event set share: the set, their identity and the form `P op A op Q`,
/// for two arguments or for any number of them.
template <typename Construct> class EventSetOperator : public ShapedOperator<Construct> {
  public:
    std::uint64_t hash_code() const override {
        return this->m_hash.get(
            [this] { return hash_combine(Construct::shape.hash_seed, m_events.folded_words()); });
    }
    bool operator==(Operator const& other) const override {
        return other.operator_kind() == this->operator_kind() &&
               m_events == this->same_kind(other).m_events;
    }
    bool operator!=(Operator const& other) const override {
        return other.operator_kind() != this->operator_kind() ||
               m_events != this->same_kind(other).m_events;
    }

    void pretty_print(Printer& printer) const override {
        print_bracketed_set(printer, Construct::shape.symbol, m_events,
                            Construct::shape.symbol_end);
    }
    void pretty_print_description(Printer& printer) const override {
        print_event_set_description(printer, Construct::shape.description, m_events);
    }
    void pretty_print_operator_process(Printer& printer,
                                       OperatorProcess const& process) const override {
        if constexpr (Construct::shape.text_when_empty != nullptr) {
            nary_operator(printer, Construct::shape.text_when_empty, process);
        } else {
            print_infix(printer, process);
        }
    }

  protected:
    /// @{
    /// By name, events that the session does not declare are left out; by number, none is.
    explicit EventSetOperator(BitSet const& events) : m_events(events) {}
    EventSetOperator(Session& session, EventSet const& events)
        : m_events(session.event_number_set(events)) {}
    /// @}

    /// What the operator does with them, its rules say.
    BitSet m_events;
};

} // namespace Calder::ProcessCompiler::CSP
