#include "csp/alphabetised_parallel_operator.h"

#include "core/hash_combine.h"
#include "csp/colours.h"
#include "csp/operator_helpers.h"
#include "process_compiler/printing.h"

#include <algorithm>

namespace Calder::ProcessCompiler::CSP {

namespace {

constexpr unsigned alphabetised_parallel_kind = 0;
constexpr std::uint64_t hash_seed = 0x36d;

/// The other operator as one of this kind; only asked of such a one.
AlphabetisedParallelOperator const& as_alphabetised_parallel(Operator const& other) {
    return static_cast<AlphabetisedParallelOperator const&>(other);
}

/// Sets the runs of all arguments on `event`: of those that have it in their alphabet, their
/// transitions; of the others, the entry at the end by which they stay as they are. False when one
/// that must take part cannot.
bool find_runs(FixedArray<BitSet> const& alphabets, SyncVectors const& vectors, unsigned event,
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
    : alphabets_(alphabets.size()) {
    for (std::size_t i = 0; i < alphabets.size(); ++i) {
        alphabets_[i] = alphabets[i];
        alphabets_[i].insert(tick);
        alphabet_union_.setunion(alphabets_[i]);
    }
}

AlphabetisedParallelOperator::~AlphabetisedParallelOperator() = default;

bool AlphabetisedParallelOperator::visit_transitions(NamedProcessSource const& source,
                                                     TransitionVisitor const& visitor,
                                                     ProcessArray const& arguments) const {
    if (arguments.empty()) {
        return true;
    }
    SynchronisedVisit visit(self(), arguments, visitor);
    TransitionVisitor const argument_visitor = [this, &visit](unsigned event,
                                                              ProcessPointer const& successor) {
        if (event == tau) {
            return visit.move(tau, successor);
        }
        return !alphabets_[visit.moving].member(event) || visit.keep(event, successor);
    };
    for (; visit.moving < arguments.size(); ++visit.moving) {
        if (!arguments[visit.moving]->visit_transitions(source, argument_visitor)) {
            return false;
        }
    }
    sort_sync_vectors(visit.vectors);
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        visit.vectors[i].emplace_back(no_event, arguments[i]); // by which it stays as it is
    }
    CartProductScratch scratch(arguments.size());
    for (unsigned const event : alphabet_union_) {
        if (find_runs(alphabets_, visit.vectors, event, scratch) &&
            !cart_product(arguments, visit.vectors, scratch.start, scratch.end,
                          scratch.joint_arguments, scratch.current, visitor, event, visit.op)) {
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
    for (unsigned index = 0; index < count; ++index) {
        all.setunion(alphabets_[index]);
    }
    for (unsigned const event : all) {
        HighLevelMachine::UnCompiledRule& rule = append_rule(running, event, 0);
        for (unsigned index = 0; index < count; ++index) {
            if (alphabets_[index].member(event)) {
                rule.component_events.emplace_back(std::pair(index, event));
            }
        }
    }
    auto const has = [](unsigned event) {
        return [event](BitSet const& alphabet) { return alphabet.member(event); };
    };
    if (std::all_of(alphabets.begin(), alphabets.end(), has(tick))) {
        append_rule(running, tick, 0,
                    HighLevelMachine::every_component(count, tick)); // a second time
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
        std::uint64_t hash = hash_combine(0xc1, alphabets_.size());
        for (BitSet const& alphabet : alphabets_) {
            hash = hash_combine(hash, alphabet.folded_words());
        }
        return hash_combine(hash_seed, hash);
    });
}

bool AlphabetisedParallelOperator::operator==(Operator const& other) const {
    return other.operator_kind() == alphabetised_parallel_kind &&
           has_same_elements(alphabets_, as_alphabetised_parallel(other).alphabets_);
}

bool AlphabetisedParallelOperator::operator!=(Operator const& other) const {
    return other.operator_kind() != alphabetised_parallel_kind ||
           !has_same_elements(alphabets_, as_alphabetised_parallel(other).alphabets_);
}

unsigned AlphabetisedParallelOperator::operator_kind() const {
    return alphabetised_parallel_kind;
}

bool AlphabetisedParallelOperator::is_commutative() const {
    return true;
}

void AlphabetisedParallelOperator::pretty_print(Printer& printer) const {
    printer << " […||…] "; // never with its alphabets
}

void AlphabetisedParallelOperator::pretty_print_description(Printer& printer) const {
    printer << "Alphabetised Parallel with process alphabets:\n";
    printer.indent += 4;
    for (unsigned index = 0; index < alphabets_.size(); ++index) {
        printer << printer.format_number(index) << ": ";
        print_event_set(printer, alphabets_[index]);
        printer << "\n";
    }
    printer.indent -= 4;
}

void AlphabetisedParallelOperator::pretty_print_operator_process(
    Printer& printer, OperatorProcess const& process) const {
    if (printer.abbreviate) {
        nary_operator(printer, "SKIP", process);
        return;
    }
    printer << "|| (a, p) : {";
    for (unsigned index = 0; index < process.argument_count(); ++index) {
        printer << "(";
        print_event_set(printer, alphabets_[index]);
        printer << ", ";
        print_within_budget(printer, *process.argument(index));
        printer << ")";
    }
    printer << "} @ [a] p";
}

std::pair<unsigned, unsigned> AlphabetisedParallelOperator::pretty_print_information() const {
    return {8, non_associative};
}

bool AlphabetisedParallelOperator::pretty_print_is_same_operator(Operator const& other) const {
    return other.operator_kind() == alphabetised_parallel_kind;
}

} // namespace Calder::ProcessCompiler::CSP
