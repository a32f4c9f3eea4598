#pragma once

#include "values/expression.h"

#include <exception>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace Calder::Values {

class ChannelTable;
class Interpreter;
class ValueStore;

/// A call that was under way.
struct Call {
    unsigned definition;
    std::vector<Value> arguments;
    Place place; // where it was called
};

/// What only values show: a division by zero, the head of an empty sequence, a call that no clause
/// fits, a limit.
class EvaluationError : public std::exception {
  public:
    EvaluationError(Place place, std::string message)
        : m_place(place), m_message(std::move(message)) {}

    Place place() const { return m_place; }
    std::string const& message() const { return m_message; }
    char const* what() const noexcept override { return m_message.c_str(); }

    /// Those under way, the innermost first; of very many the first and the last ones, with one
    /// whose definition is no_number between them.
    std::vector<Call> calls;

  private:
    Place m_place;
    std::string m_message;
};

/// What is evaluated could not be read in the first place, and that was reported.
class Unreadable : public std::exception {
  public:
    char const* what() const noexcept override { return "what is evaluated could not be read"; }
};

/// What the evaluator leaves to whoever knows what a `construct` is. It may throw: EvaluationErrors
/// get the calls under way added, ValueErrors their place and those; everything else passes through.
/// It does not ask the evaluator that asks it.
class Host {
  public:
    virtual ~Host() = default;
    /// The meaning of a `construct` with these operands; usually foreign, with a number below
    /// no_number.
    virtual Value construct(Expression const& expression, std::span<Value const> operands) = 0;
    /// The meaning of a call of a definition of mode `refer`.
    virtual Value refer(unsigned definition, std::span<Value const> arguments, Place place) = 0;
    /// Called now and then while something is evaluated, which may take long; what it throws ends
    /// that.
    virtual void look() {}
};

/// Evaluates expressions of one program. Keeps its own stacks, so neither the depth of the program
/// nor that of the data is the program's own stack; what limits them is in values/limits.h.
class Evaluator {
  public:
    /// They must live as long. The program may grow between two calls.
    Evaluator(Program const& program, ValueStore& store, ChannelTable const& channels, Host& host);
    ~Evaluator();

    /// The value of a definition of these arguments, whatever its mode. Throws EvaluationError and
    /// Unreadable, and can be used again afterwards.
    Value call(unsigned definition, std::span<Value const> arguments, Place place);
    /// Of an expression without variables, but for those of its own comprehensions, which need so
    /// many slots.
    Value evaluate(unsigned expression, unsigned slot_count = 0);

    /// What a call of mode `remember` gave.
    struct Remembered {
        unsigned definition;
        std::span<Value const> arguments;
        Value result;
    };
    /// In the order in which they were first made. Nothing may be evaluated meanwhile.
    void visit_remembered(std::function<void(Remembered const&)> const& visit) const;

  private:
    std::unique_ptr<Interpreter> m_interpreter;
};

} // namespace Calder::Values
