#include "csp/linked_parallel_operator.h"

#include "core/hash_combine.h"
#include "csp/colours.h"
#include "csp/operator_helpers.h"
#include "csp/visit_each.h"
#include "process_compiler/printing.h"

#include <algorithm>

namespace Calder::ProcessCompiler::CSP {

namespace {

LinkedParallelOperator::Links with_tick(LinkedParallelOperator::Links const& links) {
    LinkedParallelOperator::Links all(links.size() + 1);
    std::copy(links.begin(), links.end(), all.begin());
    all[links.size()] = {tick, tick};
    return all;
}

unsigned joint_event(unsigned left) {
    return left == tick ? tick : tau;
}

void print_link(Printer& printer, unsigned left, unsigned right) {
    print_event(printer, left);
    printer << " <-> ";
    print_event(printer, right);
}

} // namespace

LinkedParallelOperator::LinkedParallelOperator(Links const& links) : m_links(with_tick(links)) {
    for (auto const& [left, right] : m_links) {
        m_left_linked.insert(left);
        m_right_linked.insert(right);
    }
}

LinkedParallelOperator::~LinkedParallelOperator() = default;

bool LinkedParallelOperator::visit_transitions(NamedProcessSource const& source,
                                               TransitionVisitor const& visitor,
                                               ProcessArray const& arguments) const {
    SynchronisedVisit visit(self(), arguments, visitor);
    if (!visit_each(arguments, visit.moving, source,
                    [this, &visit](unsigned event, ProcessPointer const& successor) {
                        BitSet const& linked = visit.moving == 0 ? m_left_linked : m_right_linked;
                        return linked.member(event) ? visit.keep(event, successor)
                                                    : visit.move(event, successor);
                    })) {
        return false;
    }
    sort_kept(visit.vectors);
    CartProductScratch scratch(arguments.size());
    for (auto const& [left, right] : m_links) {
        if (scratch.find_run(visit.vectors, 0, left) && scratch.find_run(visit.vectors, 1, right) &&
            !visit.combine(scratch, joint_event(left))) {
            return false;
        }
    }
    return true;
}

std::unique_ptr<Formats>
LinkedParallelOperator::high_level_formats(std::vector<BitSet> const& alphabets) const {
    auto formats = std::make_unique<Formats>(1);
    HighLevelMachine::UnCompiledFormat& running = formats->at(0);
    activate_first_components(running, static_cast<unsigned>(alphabets.size()));
    for (auto const& [left, right] : m_links) {
        if (alphabets[0].member(left) && alphabets[1].member(right)) {
            append_rule(running, joint_event(left), 0, {std::pair(0, left), std::pair(1, right)});
        }
    }
    for (unsigned index = 0; index < 2; ++index) {
        BitSet const& linked = index == 0 ? m_left_linked : m_right_linked;
        append_argument_rules(running, index, alphabets[index].without(linked),
                              [](unsigned) { return 0U; });
    }
    return formats;
}

std::uint64_t LinkedParallelOperator::hash_code() const {
    return m_hash.get([this] { return hash_combine(shape.hash_seed, hash_pairs(m_links)); });
}

bool LinkedParallelOperator::operator==(Operator const& other) const {
    return other.operator_kind() == shape.kind &&
           has_same_elements(m_links, same_kind(other).m_links);
}

bool LinkedParallelOperator::operator!=(Operator const& other) const {
    return other.operator_kind() != shape.kind ||
           !has_same_elements(m_links, same_kind(other).m_links);
}

void LinkedParallelOperator::pretty_print(Printer& printer) const {
    if (printer.abbreviate) {
        printer << " […<->…] ";
        return;
    }
    char const* separator = shape.symbol;
    for (auto const& [left, right] : m_links) {
        printer << separator;
        print_link(printer, left, right);
        separator = ", ";
    }
    printer << shape.symbol_end;
}

void LinkedParallelOperator::pretty_print_description(Printer& printer) const {
    IndentedDescription const indented(printer, shape.description);
    for (auto const& [left, right] : m_links) {
        print_link(printer, left, right);
        printer << "\n";
    }
}

void LinkedParallelOperator::pretty_print_operator_process(Printer& printer,
                                                           OperatorProcess const& process) const {
    print_infix(printer, process);
}

} // namespace Calder::ProcessCompiler::CSP
