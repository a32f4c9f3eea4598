#include "csp/generalised_parallel_operator.h"

#include "csp/colours.h"
#include "csp/operator_helpers.h"
#include "process_compiler/printing.h"

namespace Calder::ProcessCompiler::CSP {

namespace {

constexpr unsigned generalised_parallel_kind = 2;
constexpr std::uint64_t hash_seed = 0x551;

} // namespace

GeneralisedParallelOperator::GeneralisedParallelOperator(BitSet const& synchronised)
    : StaticOperator(synchronised) {
    events_.insert(tick);
}

GeneralisedParallelOperator::~GeneralisedParallelOperator() = default;

bool GeneralisedParallelOperator::visit_transitions(NamedProcessSource const& source,
                                                    TransitionVisitor const& visitor,
                                                    ProcessArray const& arguments) const {
    if (arguments.empty()) {
        return true;
    }
    SynchronisedVisit visit(self(), arguments, visitor);
    TransitionVisitor const argument_visitor = [this, &visit](unsigned event,
                                                              ProcessPointer const& successor) {
        return events_.member(event) ? visit.keep(event, successor) : visit.move(event, successor);
    };
    for (; visit.moving < arguments.size(); ++visit.moving) {
        if (!arguments[visit.moving]->visit_transitions(source, argument_visitor)) {
            return false;
        }
    }
    sort_sync_vectors(visit.vectors);
    return cart_product_synchronised_events(events_, visit.vectors, arguments, visitor, visit.op);
}

std::unique_ptr<Formats>
GeneralisedParallelOperator::high_level_formats(std::vector<BitSet> const& alphabets) const {
    auto const count = static_cast<unsigned>(alphabets.size());
    auto formats = std::make_unique<Formats>(1);
    HighLevelMachine::UnCompiledFormat& running = formats->at(0);
    activate_first_components(running, count);
    for (unsigned const event : events_) {
        append_rule(running, event, 0, HighLevelMachine::every_component(count, event));
    }
    append_rule(running, tick, 0, HighLevelMachine::every_component(count, tick)); // a second time
    for (unsigned index = 0; index < count; ++index) {
        for (unsigned const event : alphabets[index]) {
            if (!events_.member(event)) {
                append_rule(running, event, 0, {std::pair(index, event)});
            }
        }
    }
    return formats;
}

std::uint64_t GeneralisedParallelOperator::hash_code() const {
    return hash_from(hash_seed);
}

unsigned GeneralisedParallelOperator::operator_kind() const {
    return generalised_parallel_kind;
}

bool GeneralisedParallelOperator::is_commutative() const {
    return true;
}

void GeneralisedParallelOperator::pretty_print(Printer& printer) const {
    print_bracketed_set(printer, "[|", events_, "|]");
}

void GeneralisedParallelOperator::pretty_print_description(Printer& printer) const {
    print_event_set_description(printer, "Generalised Parallel synchronising:", events_);
}

void GeneralisedParallelOperator::pretty_print_operator_process(
    Printer& printer, OperatorProcess const& process) const {
    nary_operator(printer, "SKIP", process);
}

std::pair<unsigned, unsigned> GeneralisedParallelOperator::pretty_print_information() const {
    return {8, non_associative};
}

bool GeneralisedParallelOperator::pretty_print_is_same_operator(Operator const& other) const {
    return *this == other;
}

} // namespace Calder::ProcessCompiler::CSP
