#pragma once

#include "core/hash_combine.h"
#include "process_compiler/process.h"

#include <cstdlib>
#include <string>

namespace Calder::ProcessCompiler::Testing {

/// A construct that is all settings: what the host does can be tested with it before there is any
/// real construct. It prints as `name(argument, …)`, its operator as " name ".
class FakeProcess : public CompilableProcess {
  public:
    explicit FakeProcess(std::string text, unsigned number_of_arguments = 0)

        : name(std::move(text)), arguments(number_of_arguments) {}
    FakeProcess(std::string text, ProcessArray const& given)
        : name(std::move(text)), arguments(given) {}

    std::string name;
    OwningArray<ProcessPointer> arguments;
    std::vector<std::pair<unsigned, ProcessPointer>> transitions;
    unsigned own_kind = 99;
    unsigned precedence = 0;
    unsigned associativity = non_associative;
    ArgumentState state = ArgumentState::on;
    std::uint64_t hash = 42;

    unsigned argument_count() const override { return static_cast<unsigned>(arguments.size()); }
    ProcessPointer const& argument(unsigned index) const override { return arguments[index]; }
    void set_arguments(ProcessArray const& given) override {
        for (std::size_t i = 0; i < arguments.size(); ++i) {
            arguments[i] = given[i];
        }
    }

    bool visit_transitions(NamedProcessSource const&,
                           TransitionVisitor const& visitor) const override {
        for (auto const& [event, successor] : transitions) {
            if (!visitor(event, successor)) {
                return false;
            }
        }
        return true;
    }
    std::unique_ptr<Formats> high_level_formats(std::vector<BitSet> const&) const override {
        return std::make_unique<Formats>(1);
    }

    std::uint64_t hash_code() const override { return hash; }
    bool operator==(Process const& other) const override {
        return other.kind() == own_kind && static_cast<FakeProcess const&>(other).name == name;
    }
    bool operator!=(Process const& other) const override { return !(*this == other); }
    ProcessPointer clone(bool) const override { return new FakeProcess(name); }

    unsigned kind() const override { return own_kind; }
    RecursionType recursion_type() const override { return RecursionType::keeps_running; }
    bool allows_recursion(unsigned) const override { return true; }
    ArgumentState process_state(unsigned) const override { return state; }
    bool discarded_by(unsigned) const override { return false; }
    TurnedOnBy turned_on_by(unsigned) const override { std::abort(); }
    CompilationLevel preferred_compilation_level(bool wish) const override {
        return as_wished(wish);
    }
    bool is_commutative() const override { return false; }

    void pretty_print(Printer& printer) const override { printer << name; }
    void pretty_print_operator(Printer& printer) const override { printer << " " << name << " "; }
    void pretty_print_operator_description(Printer& printer) const override { printer << name; }
    std::pair<unsigned, unsigned> pretty_print_information() const override {
        return {precedence, associativity};
    }
    bool pretty_print_is_same_operator(Process const& other) const override {
        return other.kind() == own_kind;
    }
};

using FakePointer = boost::intrusive_ptr<FakeProcess>;

} // namespace Calder::ProcessCompiler::Testing
