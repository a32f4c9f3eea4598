#include "csp/rename_operator.h"

#include "core/hash_combine.h"
#include "csp/colours.h"
#include "csp/shared_stop.h"
#include "process_compiler/printing.h"
#include "process_compiler/transition_memory.h"

#include <algorithm>
#include <sstream>

namespace Calder::ProcessCompiler::CSP {

namespace {

/// `a -> b` as the printer would print it, without its budget.
std::string pair_text(Printer const& printer, unsigned from, unsigned to) {
    std::ostringstream text;
    text.exceptions(std::ios_base::badbit); // so that a failed allocation is passed on
    Printer line(text, printer.session);
    line.abbreviate = printer.abbreviate;
    line.line_width = printer.line_width;
    try {
        print_event(line, from);
        line << " -> ";
        print_event(line, to);
        line.flush();
    } catch (...) {
        line.silenced = true;
        throw;
    }
    return text.str();
}

} // namespace

// The hash runs over the pairs as given: operators that differ only in the order of their pairs are
// equal and hash differently.
RenameOperator::RenameOperator(FixedArray<std::pair<unsigned, unsigned>> const& pairs) {
    m_event_map.reserve(std::max<std::size_t>(pairs.size(), 1));
    for (auto const& pair : pairs) {
        m_event_map.insert(pair); // in front of those with the same key
    }
    m_hash.keep(hash_combine(shape.hash_seed, hash_pairs(pairs)));
}

RenameOperator::~RenameOperator() = default;

bool RenameOperator::visit_transitions(NamedProcessSource const& source,
                                       TransitionVisitor const& visitor,
                                       ProcessArray const& arguments) const {
    struct {
        std::unordered_multimap<unsigned, unsigned> const& event_map;
        OperatorPointer const op;
        TransitionVisitor const& visitor;
    } const step{m_event_map, self(), visitor};
    return visit_argument(
        arguments[0], source, [&step](unsigned event, ProcessPointer const& successor) {
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
        auto [target, end] = m_event_map.equal_range(event);
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
    return other.operator_kind() == shape.kind && m_event_map == same_kind(other).m_event_map;
}

bool RenameOperator::operator!=(Operator const& other) const {
    return other.operator_kind() != shape.kind || m_event_map != same_kind(other).m_event_map;
}

void RenameOperator::pretty_print(Printer& printer) const {
    if (printer.abbreviate) {
        printer << "[[…]]";
        return;
    }
    char const* separator = "";
    printer << shape.symbol;
    for (auto const& [from, to] : m_event_map) {
        printer << separator;
        print_event(printer, from);
        printer << " <- ";
        print_event(printer, to);
        separator = ", ";
    }
    printer << shape.symbol_end;
}

void RenameOperator::pretty_print_description(Printer& printer) const {
    std::vector<std::string> lines;
    for (auto const& [from, to] : m_event_map) {
        lines.push_back(pair_text(printer, from, to));
    }
    std::sort(lines.begin(), lines.end());
    IndentedDescription const indented(printer, shape.description);
    for (std::string const& line : lines) {
        printer << line << "\n";
    }
}

void RenameOperator::pretty_print_operator_process(Printer& printer,
                                                   OperatorProcess const& process) const {
    print_postfix(printer, process, *this);
}

} // namespace Calder::ProcessCompiler::CSP
