#include "csp/alphabetised_parallel_operator.h"

#include "core/hash_combine.h"
#include "csp/colours.h"
#include "csp/operator_helpers.h"
#include "csp/visit_each.h"
#include "process_compiler/printing.h"

namespace Calder::ProcessCompiler::CSP {

namespace {

/// Sets the runs of all arguments on `event`: of those that have it in their alphabet, their
/// transitions; of the others, the entry at the end by which they stay as they are. False when one
/// that must take part cannot.
bool find_runs(FixedArray<BitSet> const& alphabets, KeptVectors const& vectors, unsigned event,
               CartProductScratch& scratch) {
    for (std::size_t i = 0; i < vectors.size(); ++i) {
        if (!alphabets[i].member(event)) {
            scratch.end[i] = static_cast<unsigned>(vectors[i].size());
            scratch.start[i] = scratch.end[i] - 1;
        } else if (!scratch.find_run(vectors, i, event, 1)) {
            return false;
        }
    }
    return true;
}

} // namespace

AlphabetisedParallelOperator::AlphabetisedParallelOperator(std::vector<BitSet> const& alphabets)
    : m_alphabets(alphabets.size()) {
    for (std::size_t i = 0; i < alphabets.size(); ++i) {
        m_alphabets[i] = alphabets[i];
        m_alphabets[i].insert(tick);
    }
}

AlphabetisedParallelOperator::~AlphabetisedParallelOperator() = default;

bool AlphabetisedParallelOperator::visit_transitions(NamedProcessSource const& source,
                                                     TransitionVisitor const& visitor,
                                                     ProcessArray const& arguments) const {
    if (arguments.empty()) {
        return true;
    }
    struct Visit : SynchronisedVisit {
        using SynchronisedVisit::SynchronisedVisit;
        BitSet offered; // by arguments that have it in their alphabets
    } visit(self(), arguments, visitor);
    if (!visit_each(arguments, visit.moving, source,
                    [this, &visit](unsigned event, ProcessPointer const& successor) {
                        if (event == tau) {
                            return visit.move(tau, successor);
                        }
                        if (!m_alphabets[visit.moving].member(event)) {
                            return true;
                        }
                        visit.offered.insert(event);
                        return visit.keep(event, successor);
                    })) {
        return false;
    }
    sort_kept(visit.vectors);
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        visit.vectors[i].add(no_event, arguments[i]); // by which it stays as it is
    }
    CartProductScratch scratch(arguments.size());
    for (unsigned const event : visit.offered) { // what nobody offers nobody performs
        if (find_runs(m_alphabets, visit.vectors, event, scratch) &&
            !visit.combine(scratch, event)) {
            return false;
        }
    }
    return true;
}

std::unique_ptr<Formats>
AlphabetisedParallelOperator::high_level_formats(std::vector<BitSet> const& alphabets) const {
    auto const count = static_cast<unsigned>(alphabets.size());
    auto formats = std::make_unique<Formats>(1);
    HighLevelMachine::UnCompiledFormat& running = formats->at(0);
    activate_first_components(running, count);
    BitSet all;
    bool can_terminate = true;
    for (unsigned index = 0; index < count; ++index) {
        all.setunion(m_alphabets[index]);
        can_terminate = can_terminate && alphabets[index].member(tick);
    }
    for (unsigned const event : all) {
        HighLevelMachine::UnCompiledRule& rule = append_rule(running, event, 0);
        for (unsigned index = 0; index < count; ++index) {
            if (m_alphabets[index].member(event)) {
                rule.component_events.emplace_back(std::pair(index, event));
            }
        }
    }
    if (can_terminate) {
        append_joint_rules(running, count, {tick}); // a second time
    }
    for (unsigned index = 0; index < count; ++index) {
        if (alphabets[index].member(tau)) {
            append_rule(running, tau, 0, {std::pair(index, tau)});
        }
    }
    return formats;
}

std::uint64_t AlphabetisedParallelOperator::hash_code() const {
    return m_hash.get([this] {
        return hash_combine(shape.hash_seed, hash_sequence(m_alphabets, [](BitSet const& alphabet) {
                                return alphabet.folded_words();
                            }));
    });
}

bool AlphabetisedParallelOperator::operator==(Operator const& other) const {
    return other.operator_kind() == shape.kind &&
           has_same_elements(m_alphabets, same_kind(other).m_alphabets);
}

bool AlphabetisedParallelOperator::operator!=(Operator const& other) const {
    return other.operator_kind() != shape.kind ||
           !has_same_elements(m_alphabets, same_kind(other).m_alphabets);
}

void AlphabetisedParallelOperator::pretty_print(Printer& printer) const {
    printer << shape.symbol;
}

void AlphabetisedParallelOperator::pretty_print_description(Printer& printer) const {
    IndentedDescription const indented(printer, shape.description);
    for (unsigned index = 0; index < m_alphabets.size(); ++index) {
        printer << printer.format_number(index) << ": ";
        print_event_set(printer, m_alphabets[index]);
        printer << "\n";
    }
}

void AlphabetisedParallelOperator::pretty_print_operator_process(
    Printer& printer, OperatorProcess const& process) const {
    if (printer.abbreviate) {
        nary_operator(printer, shape.text_when_empty, process);
        return;
    }
    printer << "|| (a, p) : {";
    for (unsigned index = 0; index < process.argument_count(); ++index) {
        printer << "(";
        print_event_set(printer, m_alphabets[index]);
        printer << ", ";
        print_within_budget(printer, *process.argument(index));
        printer << ")";
    }
    printer << "} @ [a] p";
}

} // namespace Calder::ProcessCompiler::CSP
