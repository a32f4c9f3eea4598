#pragma once

#include "tests/values/world.h"
#include "values/direct_expressions.h"
#include "values/evaluation.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <vector>

namespace Calder::Values::Testing {

/// Builds programs by hand. Every expression has as its place the number of expressions before it.
class ProgramBuilder {
  public:
    using Numbers = std::vector<unsigned>;

    explicit ProgramBuilder(World& world) : m_world(world) {}

    unsigned constant(char const* value) {
        return add({.kind = ExpressionKind::constant, .value = m_world.read(value)});
    }
    unsigned variable(unsigned slot) {
        return add({.kind = ExpressionKind::variable, .number = slot});
    }
    unsigned operation(Operation operation, Numbers const& operands) {
        return add({.kind = ExpressionKind::operation, .operation = operation}, operands);
    }
    unsigned choice(unsigned condition, unsigned yes, unsigned no) {
        return add({.kind = ExpressionKind::conditional}, {condition, yes, no});
    }
    unsigned both(unsigned left, unsigned right) {
        return add({.kind = ExpressionKind::conjunction}, {left, right});
    }
    unsigned either(unsigned left, unsigned right) {
        return add({.kind = ExpressionKind::disjunction}, {left, right});
    }
    unsigned call(unsigned definition, Numbers const& arguments) {
        return add({.kind = ExpressionKind::call, .number = definition}, arguments);
    }
    unsigned construct(unsigned number, Numbers const& operands) {
        return add({.kind = ExpressionKind::construct, .number = number}, operands);
    }
    unsigned broken() { return add({.kind = ExpressionKind::broken}); }
    unsigned comprehension(std::vector<Qualifier> qualifiers, Numbers results) {
        program.comprehensions.push_back({std::move(qualifiers), std::move(results)});
        return add({.kind = ExpressionKind::comprehension,
                    .number = static_cast<unsigned>(program.comprehensions.size() - 1)});
    }

    unsigned pattern(PatternKind kind, Numbers const& parts = {}, Value value = {}) {
        Pattern added{kind};
        added.first_part = static_cast<unsigned>(program.parts.size());
        added.part_count = static_cast<unsigned>(parts.size());
        added.value = value;
        program.parts.insert(program.parts.end(), parts.begin(), parts.end());
        program.patterns.push_back(added);
        return static_cast<unsigned>(program.patterns.size() - 1);
    }
    unsigned binding(unsigned slot) {
        unsigned const added = pattern(PatternKind::variable);
        program.patterns[added].number = slot;
        return added;
    }
    unsigned fixed(char const* value) {
        return pattern(PatternKind::constant, {}, m_world.read(value));
    }

    /// With a single clause that binds the parameters to the first slots.
    unsigned define(std::string const& name, CallMode mode, unsigned parameters, unsigned slots,
                    unsigned body) {
        Numbers patterns;
        for (unsigned parameter = 0; parameter < parameters; ++parameter) {
            patterns.push_back(binding(parameter));
        }
        unsigned const added = declare(name, mode, parameters, slots);
        program.definitions[added].clauses.push_back({patterns, body});
        return added;
    }
    /// Without clauses yet.
    unsigned declare(std::string const& name, CallMode mode, unsigned parameters, unsigned slots) {
        program.definitions.push_back({name, 0, mode, parameters, slots, {}});
        return static_cast<unsigned>(program.definitions.size() - 1);
    }
    void add_clause(unsigned definition, Numbers patterns, unsigned body) {
        program.definitions[definition].clauses.push_back({std::move(patterns), body});
    }

    Program program;

  private:
    unsigned add(Expression expression, Numbers const& operands = {}) {
        expression.place = static_cast<Place>(program.expressions.size());
        expression.first_operand = static_cast<unsigned>(program.operands.size());
        expression.operand_count = static_cast<unsigned>(operands.size());
        program.operands.insert(program.operands.end(), operands.begin(), operands.end());
        program.expressions.push_back(expression);
        return expression.place;
    }

    World& m_world;
};

/// Makes tuples of the number of the construct and its operands, and of a call that is not
/// evaluated; counts how often it is asked.
class TupleHost : public Host {
  public:
    explicit TupleHost(ValueStore& store) : m_store(store) {}

    Value construct(Expression const& expression, std::span<Value const> operands) override {
        return made(expression.number, operands);
    }
    Value refer(unsigned definition, std::span<Value const> arguments, Place) override {
        return made(definition, arguments);
    }

    unsigned questions = 0;

  private:
    Value made(unsigned number, std::span<Value const> values) {
        ++questions;
        std::vector<Value> parts = {m_store.integer(number), m_store.sequence(values)};
        return m_store.tuple(parts);
    }

    ValueStore& m_store;
};

/// A program with all that it takes to evaluate it. Everything is evaluated in two ways, which must
/// agree: by tasks alone, and with what is direct by recursion.
struct Evaluation {
    World world;
    ProgramBuilder build{world};
    TupleHost host{world.store};
    Evaluator evaluator{build.program, world.store, world.channels, host};
    TupleHost other_host{world.store};
    Evaluator other_evaluator{build.program, world.store, world.channels, other_host};

    /// The value, or `error @place`, and the calls under way as `name(arguments)@place`.
    std::string call(unsigned definition, char const* arguments) {
        return outcome_both_ways([&](Evaluator& either) {
            return either.call(definition, world.read_all(arguments), 1000);
        });
    }
    std::string value(unsigned expression, unsigned slots = 0) {
        return outcome_both_ways(
            [&](Evaluator& either) { return either.evaluate(expression, slots); });
    }

    template <typename Compute> std::string outcome_both_ways(Compute const& compute) {
        std::string const by_tasks = outcome([&] { return compute(evaluator); });
        mark_direct_expressions(build.program);
        EXPECT_EQ(outcome([&] { return compute(other_evaluator); }), by_tasks);
        EXPECT_EQ(other_host.questions, host.questions);
        for (Expression& expression : build.program.expressions) {
            expression.is_direct = false;
        }
        return by_tasks;
    }

    template <typename Compute> std::string outcome(Compute const& compute) {
        try {
            return world.text(compute());
        } catch (EvaluationError const& error) {
            std::string text = error.message() + " @" + std::to_string(error.place());
            for (Call const& call : error.calls) {
                text += call.definition == no_number
                            ? " …"
                            : " in " + build.program.definitions[call.definition].name +
                                  short_text_of(world.channels, call.arguments) + '@' +
                                  std::to_string(call.place);
            }
            return text;
        } catch (Unreadable const& error) {
            return error.what();
        }
    }
};

} // namespace Calder::Values::Testing
