#include "csp/rename_operator.h"

#include "core/hash_combine.h"
#include "csp/colours.h"
#include "csp/shared_stop.h"
#include "process_compiler/printing.h"

#include <algorithm>
#include <sstream>

namespace Calder::ProcessCompiler::CSP {

namespace {

constexpr unsigned rename_kind = 5;
constexpr std::uint64_t hash_seed = 0xe27;

/// The other operator as one of this kind; only asked of such a one.
RenameOperator const& as_rename(Operator const& other) {
    return static_cast<RenameOperator const&>(other);
}

std::uint64_t hash_of_pairs(FixedArray<std::pair<unsigned, unsigned>> const& pairs) {
    std::uint64_t hash = hash_combine(0xc1, pairs.size());
    for (auto const& [from, to] : pairs) {
        hash = hash_combine(hash, hash_combine(from, to));
    }
    return hash_combine(hash_seed, hash);
}

/// `a -> b` as the printer would print it, without its budget.
std::string pair_text(Printer const& printer, unsigned from, unsigned to) {
    std::ostringstream text;
    {
        Printer line(text, printer.session);
        line.abbreviate = printer.abbreviate;
        line.line_width = printer.line_width;
        print_event(line, from);
        line << " -> ";
        print_event(line, to);
    }
    return text.str();
}

} // namespace

// The hash runs over the pairs as given: operators that differ only in the order of their pairs are
// equal and hash differently.
RenameOperator::RenameOperator(FixedArray<std::pair<unsigned, unsigned>> const& pairs) {
    event_map_.reserve(std::max<std::size_t>(pairs.size(), 1));
    for (auto const& pair : pairs) {
        event_map_.insert(pair); // in front of those with the same key
    }
    m_hash.keep(hash_of_pairs(pairs));
}

RenameOperator::~RenameOperator() = default;

bool RenameOperator::visit_transitions(NamedProcessSource const& source,
                                       TransitionVisitor const& visitor,
                                       ProcessArray const& arguments) const {
    struct {
        std::unordered_multimap<unsigned, unsigned> const& event_map;
        OperatorPointer const op;
        TransitionVisitor const& visitor;
    } const step{event_map_, self(), visitor};
    return arguments[0]->visit_transitions(
        source, [&step](unsigned event, ProcessPointer const& successor) {
            if (event == tick) {
                return step.visitor(tick, shared_stop);
            }
            auto [target, end] = step.event_map.equal_range(event);
            if (target == end) {
                return step.visitor(event, new OperatorProcess(step.op, successor));
            }
            for (; target != end; ++target) {
                if (!step.visitor(target->second, new OperatorProcess(step.op, successor))) {
                    return false;
                }
            }
            return true;
        });
}

std::unique_ptr<Formats>
RenameOperator::high_level_formats(std::vector<BitSet> const& alphabets) const {
    auto formats = std::make_unique<Formats>(1);
    HighLevelMachine::UnCompiledFormat& running = formats->at(0);
    activate_first_components(running, 1);
    for (unsigned const event : alphabets[0]) {
        auto [target, end] = event_map_.equal_range(event);
        if (target == end) {
            append_rule(running, event, 0, {std::pair(0, event)});
        }
        for (; target != end; ++target) {
            append_rule(running, target->second, 0, {std::pair(0, event)});
        }
    }
    return formats;
}

std::uint64_t RenameOperator::hash_code() const {
    return m_hash.kept();
}

bool RenameOperator::operator==(Operator const& other) const {
    return other.operator_kind() == rename_kind && event_map_ == as_rename(other).event_map_;
}

bool RenameOperator::operator!=(Operator const& other) const {
    return other.operator_kind() != rename_kind || event_map_ != as_rename(other).event_map_;
}

unsigned RenameOperator::operator_kind() const {
    return rename_kind;
}

bool RenameOperator::is_commutative() const {
    return false;
}

void RenameOperator::pretty_print(Printer& printer) const {
    if (printer.abbreviate) {
        printer << "[[…]]";
        return;
    }
    char const* separator = "[[";
    for (auto const& [from, to] : event_map_) {
        printer << separator;
        print_event(printer, from);
        printer << " <- ";
        print_event(printer, to);
        separator = ", ";
    }
    printer << (event_map_.empty() ? "[[]]" : "]]");
}

void RenameOperator::pretty_print_description(Printer& printer) const {
    std::vector<std::string> lines;
    for (auto const& [from, to] : event_map_) {
        lines.push_back(pair_text(printer, from, to));
    }
    std::sort(lines.begin(), lines.end());
    print_lines_description(printer, "Rename with event map:", lines);
}

void RenameOperator::pretty_print_operator_process(Printer& printer,
                                                   OperatorProcess const& process) const {
    print_postfix(printer, process);
}

std::pair<unsigned, unsigned> RenameOperator::pretty_print_information() const {
    return {1, left_associative};
}

bool RenameOperator::pretty_print_is_same_operator(Operator const& other) const {
    return other.operator_kind() == rename_kind;
}

} // namespace Calder::ProcessCompiler::CSP
