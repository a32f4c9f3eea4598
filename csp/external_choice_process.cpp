#include "csp/external_choice_process.h"

#include "core/hash_combine.h"
#include "core/kept_references.h"
#include "csp/colours.h"
#include "process_compiler/argument_array.h"
#include "process_compiler/printing.h"

#include <cstdlib>
#include <numeric>

namespace Calder::ProcessCompiler::CSP {

namespace {

constexpr unsigned external_choice_kind = 10;
constexpr std::uint64_t hash_seed = 0x493;

/// The other term as a choice; only asked of a term of that kind.
ExternalChoiceProcess const& as_external_choice(Process const& other) {
    return static_cast<ExternalChoiceProcess const&>(other);
}

} // namespace

ExternalChoiceProcess::ExternalChoiceProcess(unsigned count) : arguments_(count) {}

ExternalChoiceProcess::ExternalChoiceProcess(ProcessArray const& arguments)
    : arguments_(arguments) {}

ExternalChoiceProcess::ExternalChoiceProcess(ProcessArray const& arguments, unsigned index,
                                             ProcessPointer const& replacement)
    : arguments_(arguments, index, replacement) {}

ExternalChoiceProcess::~ExternalChoiceProcess() {
    record_kept_references(arguments_);
}

unsigned ExternalChoiceProcess::argument_count() const {
    return static_cast<unsigned>(arguments_.size());
}

ProcessPointer const& ExternalChoiceProcess::argument(unsigned index) const {
    return arguments_[index];
}

void ExternalChoiceProcess::set_arguments(ProcessArray const& arguments) {
    replace_arguments(arguments_, arguments);
}

bool ExternalChoiceProcess::visit_transitions(NamedProcessSource const& source,
                                              TransitionVisitor const& visitor) const {
    struct {
        ProcessArray const& arguments;
        TransitionVisitor const& visitor;
        unsigned moving;
    } step{arguments_, visitor, 0};
    TransitionVisitor const argument_visitor = [&step](unsigned event,
                                                       ProcessPointer const& successor) {
        if (event == tau) {
            return step.visitor(tau,
                                new ExternalChoiceProcess(step.arguments, step.moving, successor));
        }
        return step.visitor(event, successor);
    };
    for (; step.moving < arguments_.size(); ++step.moving) {
        if (!arguments_[step.moving]->visit_transitions(source, argument_visitor)) {
            return false;
        }
    }
    return true;
}

std::unique_ptr<Formats>
ExternalChoiceProcess::high_level_formats(std::vector<BitSet> const& alphabets) const {
    auto const count = static_cast<unsigned>(alphabets.size());
    auto formats = std::make_unique<Formats>(count + 1);
    HighLevelMachine::UnCompiledFormat& open = formats->at(0);
    open.active_components.resize(count);
    std::iota(open.active_components.begin(), open.active_components.end(), 0U);
    for (unsigned index = 0; index < count; ++index) {
        for (unsigned const event : alphabets[index]) {
            append_rule(open, event, event == tau ? 0 : index + 1, {std::pair(index, event)});
        }
        make_identity_format(*formats, index + 1, alphabets[index], index);
    }
    return formats;
}

std::uint64_t ExternalChoiceProcess::hash_code() const {
    return m_hash.get([this] { return hash_combine(hash_seed, hash_arguments(arguments_)); });
}

bool ExternalChoiceProcess::operator==(Process const& other) const {
    return other.kind() == external_choice_kind &&
           arguments_equal(arguments_, as_external_choice(other).arguments_);
}

bool ExternalChoiceProcess::operator!=(Process const& other) const {
    return other.kind() != external_choice_kind ||
           !arguments_equal(arguments_, as_external_choice(other).arguments_);
}

ProcessPointer ExternalChoiceProcess::clone(bool deep) const {
    if (deep) {
        return new ExternalChoiceProcess(clone_arguments(arguments_));
    }
    return new ExternalChoiceProcess(argument_count());
}

unsigned ExternalChoiceProcess::kind() const {
    return external_choice_kind;
}

RecursionType ExternalChoiceProcess::recursion_type() const {
    return RecursionType::ends_others;
}

bool ExternalChoiceProcess::allows_recursion(unsigned) const {
    return true;
}

ArgumentState ExternalChoiceProcess::process_state(unsigned) const {
    return ArgumentState::on;
}

bool ExternalChoiceProcess::discarded_by(unsigned) const {
    return true;
}

TurnedOnBy ExternalChoiceProcess::turned_on_by(unsigned) const {
    std::abort();
}

CompilationLevel ExternalChoiceProcess::preferred_compilation_level(bool high_wished) const {
    return as_wished(high_wished);
}

bool ExternalChoiceProcess::is_commutative() const {
    return true;
}

void ExternalChoiceProcess::pretty_print(Printer& printer) const {
    nary_operator(printer, "STOP", *this);
}

void ExternalChoiceProcess::pretty_print_operator(Printer& printer) const {
    printer << " [] ";
}

void ExternalChoiceProcess::pretty_print_operator_description(Printer& printer) const {
    printer << "External Choice";
}

std::pair<unsigned, unsigned> ExternalChoiceProcess::pretty_print_information() const {
    return {6, left_associative};
}

bool ExternalChoiceProcess::pretty_print_is_same_operator(Process const& other) const {
    return other.kind() == external_choice_kind;
}

} // namespace Calder::ProcessCompiler::CSP
