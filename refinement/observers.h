#pragma once

#include "core/bit_set.h"
#include "refinement/determinisation.h"
#include "refinement/normal_form.h"
#include "refinement/observer.h"
#include "refinement/questions.h"

namespace Calder::Refinement {

/// A refinement: follows the abstract side's normal form. Below a divergence of the abstract side, in
/// that model, nothing matters.
class RefinementObserver final : public Observer {
  public:
    RefinementObserver(Side& abstract, Model model, SearchMonitor& monitor)
        : m_normal_form(abstract, monitor), m_model(model) {}

    NodeNumber start() override { return strict(m_normal_form.start()); }
    NodeNumber after(NodeNumber node, unsigned event) override {
        return strict(m_normal_form.after(node, event));
    }
    Offers looks_at() const noexcept override {
        return m_model == Model::traces ? Offers::none : Offers::all;
    }
    bool allows_offer(NodeNumber node, std::span<unsigned const> events) override;
    bool is_known_to_allow(NodeNumber node, std::span<unsigned const> events) const override;
    bool forbids_loops() const noexcept override { return m_model == Model::failures_divergences; }

    [[nodiscard]] NormalForm& normal_form() noexcept { return m_normal_form; }

  private:
    NodeNumber strict(NodeNumber node);

    NormalForm m_normal_form;
    Model m_model;
};

/// Determinism: the process refines its determinisation, and goes round nowhere.
class DeterminismObserver final : public Observer {
  public:
    DeterminismObserver(Side& process, SearchMonitor& monitor)
        : m_determinisation(process, monitor) {}

    NodeNumber start() override { return m_determinisation.start(); }
    NodeNumber after(NodeNumber node, unsigned event) override {
        return m_determinisation.after(node, event);
    }
    Offers looks_at() const noexcept override { return Offers::all; }
    bool is_known_to_allow(NodeNumber node, std::span<unsigned const> events) const override;
    bool forbids_loops() const noexcept override { return true; }

    [[nodiscard]] Determinisation& determinisation() noexcept { return m_determinisation; }

  private:
    Determinisation m_determinisation;
};

/// Determinism by its definition, beside all runs with the same trace at once: forbids an event that one
/// of them refuses, and a state that refuses what one of them performs. It sees the soonest of both, where
/// the determinisation sees what differs from its own run; but of a process that is not deterministic
/// the sets of states can be many and large.
class UniformityObserver final : public Observer {
  public:
    /// Throws SearchEnded when it has looked at so many members of nodes.
    UniformityObserver(Side& process, SearchMonitor& monitor, std::uint64_t most_members)
        : m_normal_form(process, monitor), m_members_left(most_members) {}

    NodeNumber start() override { return counted(m_normal_form.start()); }
    NodeNumber after(NodeNumber node, unsigned event) override;
    Offers looks_at() const noexcept override { return Offers::all; }
    bool is_known_to_allow(NodeNumber node, std::span<unsigned const> events) const override;

    /// The first event that can come and is not among these.
    [[nodiscard]] unsigned first_refused(NodeNumber node, std::span<unsigned const> accepted);

  private:
    NodeNumber counted(NodeNumber node);

    NormalForm m_normal_form;
    std::uint64_t m_members_left;
    std::vector<Events> m_events; // by node: what can come
};

/// One node, whatever happened.
class ForgetfulObserver : public Observer {
  public:
    NodeNumber start() override { return 0; }
    NodeNumber after(NodeNumber, unsigned) override { return 0; }
};

class DeadlockObserver final : public ForgetfulObserver {
  public:
    Offers looks_at() const noexcept override { return Offers::empty; }
    bool is_known_to_allow(NodeNumber, std::span<unsigned const>) const override { return false; }
};

class LoopObserver final : public ForgetfulObserver {
  public:
    bool forbids_loops() const noexcept override { return true; }
};

/// Forbids some events.
class NeverObserver final : public ForgetfulObserver {
  public:
    explicit NeverObserver(BitSet const& events) : m_events(events) {}

    NodeNumber after(NodeNumber, unsigned event) override {
        return m_events.member(event) ? forbidden : 0;
    }

  private:
    BitSet const& m_events;
};

/// Forbids the last event of a trace, after the others: a search for it. The node is how many came.
class TraceObserver final : public Observer {
  public:
    explicit TraceObserver(std::span<unsigned const> trace) : m_trace(trace) {}

    NodeNumber start() override { return m_trace.empty() ? nothing_matters : 0; }
    NodeNumber after(NodeNumber node, unsigned event) override;

  private:
    std::span<unsigned const> m_trace;
};

/// Forbids to refuse an event after a trace: a search for a run that does. The node is as above.
class RefusalObserver final : public Observer {
  public:
    RefusalObserver(std::span<unsigned const> trace, unsigned event)
        : m_trace(trace), m_event(event) {}

    NodeNumber start() override { return 0; }
    NodeNumber after(NodeNumber node, unsigned event) override;
    Offers looks_at() const noexcept override { return Offers::all; }
    bool is_known_to_allow(NodeNumber node, std::span<unsigned const> events) const override;

  private:
    std::span<unsigned const> m_trace;
    unsigned m_event;
};

} // namespace Calder::Refinement
