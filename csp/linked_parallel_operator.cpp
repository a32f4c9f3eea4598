#include "csp/linked_parallel_operator.h"

#include "core/hash_combine.h"
#include "csp/colours.h"
#include "csp/operator_helpers.h"
#include "process_compiler/printing.h"

#include <algorithm>

namespace Calder::ProcessCompiler::CSP {

namespace {

constexpr unsigned linked_parallel_kind = 3;
constexpr std::uint64_t hash_seed = 0xa75;

/// The other operator as one of this kind; only asked of such a one.
LinkedParallelOperator const& as_linked_parallel(Operator const& other) {
    return static_cast<LinkedParallelOperator const&>(other);
}

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

LinkedParallelOperator::LinkedParallelOperator(Links const& links) : links_(with_tick(links)) {
    for (auto const& [left, right] : links_) {
        left_linked_.insert(left);
        right_linked_.insert(right);
    }
}

LinkedParallelOperator::~LinkedParallelOperator() = default;

bool LinkedParallelOperator::visit_transitions(NamedProcessSource const& source,
                                               TransitionVisitor const& visitor,
                                               ProcessArray const& arguments) const {
    SynchronisedVisit visit(self(), arguments, visitor);
    TransitionVisitor const argument_visitor = [this, &visit](unsigned event,
                                                              ProcessPointer const& successor) {
        BitSet const& linked = visit.moving == 0 ? left_linked_ : right_linked_;
        return linked.member(event) ? visit.keep(event, successor) : visit.move(event, successor);
    };
    for (; visit.moving < 2; ++visit.moving) {
        if (!arguments[visit.moving]->visit_transitions(source, argument_visitor)) {
            return false;
        }
    }
    sort_sync_vectors(visit.vectors);
    CartProductScratch scratch(arguments.size());
    for (auto const& [left, right] : links_) {
        if (scratch.find_run(visit.vectors, 0, left) && scratch.find_run(visit.vectors, 1, right) &&
            !cart_product(arguments, visit.vectors, scratch.start, scratch.end,
                          scratch.joint_arguments, scratch.current, visitor, joint_event(left),
                          visit.op)) {
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
    for (auto const& [left, right] : links_) {
        if (alphabets[0].member(left) && alphabets[1].member(right)) {
            append_rule(running, joint_event(left), 0, {std::pair(0, left), std::pair(1, right)});
        }
    }
    for (unsigned index = 0; index < 2; ++index) {
        BitSet const& linked = index == 0 ? left_linked_ : right_linked_;
        for (unsigned const event : alphabets[index]) {
            if (!linked.member(event)) {
                append_rule(running, event, 0, {std::pair(index, event)});
            }
        }
    }
    return formats;
}

std::uint64_t LinkedParallelOperator::hash_code() const {
    return m_hash.get([this] {
        std::uint64_t hash = hash_combine(0xc1, links_.size());
        for (auto const& [left, right] : links_) {
            hash = hash_combine(hash, hash_combine(left, right));
        }
        return hash_combine(hash_seed, hash);
    });
}

bool LinkedParallelOperator::operator==(Operator const& other) const {
    return other.operator_kind() == linked_parallel_kind &&
           has_same_elements(links_, as_linked_parallel(other).links_);
}

bool LinkedParallelOperator::operator!=(Operator const& other) const {
    return other.operator_kind() != linked_parallel_kind ||
           !has_same_elements(links_, as_linked_parallel(other).links_);
}

unsigned LinkedParallelOperator::operator_kind() const {
    return linked_parallel_kind;
}

bool LinkedParallelOperator::is_commutative() const {
    return false;
}

void LinkedParallelOperator::pretty_print(Printer& printer) const {
    if (printer.abbreviate) {
        printer << " […<->…] ";
        return;
    }
    char const* separator = " [";
    for (auto const& [left, right] : links_) {
        printer << separator;
        print_link(printer, left, right);
        separator = ", ";
    }
    printer << "] ";
}

void LinkedParallelOperator::pretty_print_description(Printer& printer) const {
    printer << "Link Parallel synchronising:\n";
    printer.indent += 4;
    for (auto const& [left, right] : links_) {
        print_link(printer, left, right);
        printer << "\n";
    }
    printer.indent -= 4;
}

void LinkedParallelOperator::pretty_print_operator_process(Printer& printer,
                                                           OperatorProcess const& process) const {
    print_infix(printer, process);
}

std::pair<unsigned, unsigned> LinkedParallelOperator::pretty_print_information() const {
    return {8, non_associative};
}

bool LinkedParallelOperator::pretty_print_is_same_operator(Operator const& other) const {
    return other.operator_kind() == linked_parallel_kind;
}

} // namespace Calder::ProcessCompiler::CSP
