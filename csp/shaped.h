#pragma once

#include "csp/export.h"
#include "csp/shape.h"
#include "process_compiler/operator_process.h"

#include <utility>

namespace Calder::ProcessCompiler::CSP {

/// Answers from `Construct::shape` what processes and operators are asked alike.
template <typename Construct, typename Base> class Shaped : public Base {
  public:
    /// @{
    /// What the contract asks of every construct, from the row.
    RecursionType recursion_type() const override { return Construct::shape.recursion_type; }
    bool allows_recursion(unsigned index) const override {
        return holds_for(answer_of(Construct::shape.allow_recursion), index);
    }
    ArgumentState process_state(unsigned index) const override {
        return holds_for(answer_of(Construct::shape.run_at_start), index) ? ArgumentState::on
                                                                          : ArgumentState::off;
    }
    bool discarded_by(unsigned index) const override {
        return holds_for(answer_of(Construct::shape.discarded), index);
    }
    TurnedOnBy turned_on_by(unsigned) const override {
        return answer_of(Construct::shape.turned_on_by);
    }
    CompilationLevel preferred_compilation_level(bool high_wished) const override {
        constexpr Level level = Construct::shape.level;
        return as_wished(level == Level::as_wished ? high_wished : level == Level::high);
    }
    bool is_commutative() const override { return answer_of(Construct::shape.commutative); }

    std::pair<unsigned, unsigned> pretty_print_information() const override {
        return {Construct::shape.precedence, Construct::shape.associativity};
    }
    /// @}
};

/// The rest of what a row answers for a construct that holds its own arguments.
template <typename Construct> class ShapedProcess : public Shaped<Construct, CompilableProcess> {
  public:
    unsigned kind() const override { return Construct::shape.kind; }

    void pretty_print_operator(Printer& printer) const override {
        printer << Construct::shape.symbol;
    }
    void pretty_print_operator_description(Printer& printer) const override {
        printer << Construct::shape.description;
    }
    bool pretty_print_is_same_operator(Process const& other) const override {
        return other.kind() == Construct::shape.kind;
    }

  protected:
    /// `other` as what it is; its kind must be this one, which is not checked.
    static Construct const& same_kind(Process const& other) {
        return static_cast<Construct const&>(other);
    }
};

/// The rest of what a row answers for an operator.
template <typename Construct> class ShapedOperator : public Shaped<Construct, Operator> {
  public:
    unsigned operator_kind() const override { return Construct::shape.kind; }

    bool pretty_print_is_same_operator(Operator const& other) const override {
        if constexpr (Construct::shape.same_operator == SameOperator::with_equal_parameters) {
            return *this == other;
        } else {
            return other.operator_kind() == Construct::shape.kind;
        }
    }

  protected:
    /// `other` as what it is; its kind must be this one, which is not checked.
    static Construct const& same_kind(Operator const& other) {
        return static_cast<Construct const&>(other);
    }
};

} // namespace Calder::ProcessCompiler::CSP
