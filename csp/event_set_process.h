#pragma once

#include "core/hash_combine.h"
#include "csp/shaped.h"
#include "process_compiler/printing.h"
#include "process_compiler/session.h"

#include <cstdlib>

namespace Calder::ProcessCompiler::CSP {

/// What the terms over an event set and without arguments share: the set, their identity and the
/// form `OP(A)`. They are only ever explored by their transitions: to be asked for an argument or
/// for formats ends the program.
template <typename Construct> class EventSetProcess : public ShapedProcess<Construct> {
  public:
    unsigned argument_count() const override { return 0; }
    ProcessPointer const& argument(unsigned) const override { std::abort(); }
    void set_arguments(ProcessArray const&) override {}

    std::unique_ptr<Formats> high_level_formats(std::vector<BitSet> const&) const override {
        std::abort();
    }

    std::uint64_t hash_code() const override {
        return this->m_hash.get(
            [this] { return hash_combine(Construct::shape.hash_seed, m_events.folded_words()); });
    }
    bool operator==(Process const& other) const override {
        return other.kind() == this->kind() && m_events == this->same_kind(other).m_events;
    }
    bool operator!=(Process const& other) const override {
        return other.kind() != this->kind() || m_events != this->same_kind(other).m_events;
    }
    ProcessPointer clone(bool) const override { return new Construct(m_events); }

    void pretty_print(Printer& printer) const override {
        printer << Construct::shape.symbol;
        if (printer.abbreviate) {
            printer << "(…) ";
            return;
        }
        printer << "(";
        print_event_set(printer, m_events);
        printer << ")";
    }
    void pretty_print_operator_description(Printer& printer) const override {
        print_event_set_description(printer, Construct::shape.description, m_events);
    }

  protected:
    /// @{
    /// By name, events that the session does not declare are left out; by number, none is.
    EventSetProcess(Session& session, EventSet const& events)
        : m_events(session.event_number_set(events)) {}
    explicit EventSetProcess(BitSet const& events) : m_events(events) {}
    /// @}

    /// What it offers.
    BitSet m_events;
};

} // namespace Calder::ProcessCompiler::CSP
