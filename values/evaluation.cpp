#include "values/evaluation.h"

#include "values/interpreter.h"

namespace Calder::Values {

Evaluator::Evaluator(Program const& program, ValueStore& store, ChannelTable const& channels,
                     Host& host)
    : m_interpreter(std::make_unique<Interpreter>(program, store, channels, host)) {}

Evaluator::~Evaluator() = default;

Value Evaluator::call(unsigned definition, std::span<Value const> arguments, Place place) {
    return m_interpreter->call(definition, arguments, place);
}

Value Evaluator::evaluate(unsigned expression, unsigned slot_count) {
    return m_interpreter->evaluate(expression, slot_count);
}

void Evaluator::visit_remembered(std::function<void(Remembered const&)> const& visit) const {
    m_interpreter->visit_remembered(visit);
}

} // namespace Calder::Values
