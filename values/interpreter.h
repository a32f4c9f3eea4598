#pragma once

#include "values/call_table.h"
#include "values/evaluation.h"
#include "values/matching.h"
#include "values/operations.h"

#include <span>
#include <string>
#include <vector>

namespace Calder::Values {

/// What an Evaluator does. The expressions under way are tasks on a stack, each above the one of
/// which it is an operand; what has been computed for them lies in the same order on a stack of
/// values. A call has its arguments there, then its slots, then what its body computes. Nothing is
/// allocated once the stacks have grown. What is marked as direct is no task, but computed at once.
class Interpreter {
  public:
    Interpreter(Program const& program, ValueStore& store, ChannelTable const& channels,
                Host& host);

    Value call(unsigned definition, std::span<Value const> arguments, Place place);
    Value evaluate(unsigned expression, unsigned slot_count);
    void visit_remembered(std::function<void(Evaluator::Remembered const&)> const& visit) const;

  private:
    /// An expression under way. References end with the next one that is begun.
    struct Task {
        Expression const* expression;
        unsigned step;  // how many operands were begun; of a comprehension, where it is
        unsigned first; // where its operands begin on the stack of values
    };
    struct Frame {
        unsigned definition;
        Place place;
        unsigned first; // of its arguments
        unsigned slots;
        unsigned remembered; // where the result is to be kept; or no_number
    };

    template <typename Start> Value run(Start const& start);
    void step();
    void forget_all();
    void add_calls(EvaluationError& error) const;

    bool begin(unsigned expression);
    Value direct(Expression const& expression);
    Value direct_operation(Expression const& expression);
    Value direct_condition(Expression const& expression);
    Value direct_question(Expression const& expression);
    Expression const& operand_of(Expression const& expression, unsigned index) const;
    bool direct_truth(Expression const& expression, unsigned index);
    template <typename Make> Value with_operands(Expression const& expression, Make const& make);
    static bool is_at_hand(Expression const& expression) {
        return expression.kind == ExpressionKind::constant ||
               expression.kind == ExpressionKind::variable;
    }
    bool has_operands(Task& task);
    void finish(unsigned first, Value result);
    void choose(Task& task);
    void connect(Task& task);
    bool truth_of(Value value, unsigned expression) const;

    void step_call(Task& task);
    void begin_remembered(unsigned definition, unsigned first, Place place);
    void begin_body(unsigned definition, unsigned first, Place place,
                    unsigned remembered = no_number);
    unsigned fitting_body(Definition const& definition, unsigned first, unsigned slots);
    void end_call(unsigned first);

    void step_comprehension(Task& task);
    bool take(Qualifier const& qualifier);
    bool find_next(Qualifier const& generator);
    bool go_back(Task& task, Comprehension const& comprehension, std::size_t behind);

    std::span<Value const> values_from(unsigned first) const {
        return std::span(m_values).subspan(first);
    }
    unsigned height() const { return static_cast<unsigned>(m_values.size()); }

    Program const& m_program;
    ValueStore& m_store;
    ChannelTable const& m_channels;
    Host& m_host;
    Operations m_operations;
    Matcher m_matcher;

    std::vector<Task> m_tasks;
    std::vector<Value> m_values;
    std::vector<Frame> m_frames;
    Expression const* m_direct = nullptr;         // of which a direct one is computed, if any
    unsigned m_slots = 0;                         // where those of the innermost call begin
    unsigned m_steps = 0;                         // since the last look, in however many short runs
    Expression m_outermost{ExpressionKind::call}; // what `call` was asked

    CallTable m_calls;
    std::vector<Value> m_results; // of m_calls: nothing, a mark, or the value
};

} // namespace Calder::Values
