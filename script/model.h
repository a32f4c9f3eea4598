#pragma once

#include "process_compiler/guarded_maker.h"
#include "script/script.h"
#include "script/term_host.h"
#include "script/value_errors.h"

namespace Calder::Script {

/// A script that was read: its syntax, with which errors are told, and what makes its terms.
class Script::Model final : public ProcessCompiler::ProcessMaker {
  public:
    Model(Sources const& sources, ProcessCompiler::NamedProcessSource& source);
    ~Model() override;

    /// Whether anything can still be made, or go wrong.
    bool has_instances() const;

    // What processes stand for when they are asked for. Errors are ScriptErrors.
    ProcessCompiler::ProcessPointer make(unsigned number) override;
    std::string name(unsigned number) const override;

    void name_calls(NamesOfTerms& terms) const;
    /// The term of a process of the script without parameters. Throws as the evaluator does.
    ProcessCompiler::ProcessPointer body_of(unsigned definition);
    /// What an assertion asks. Throws ScriptError.
    Assertion assertion(std::size_t number, AssertionHead const& head);
    Diagnostic diagnostic_of(Values::EvaluationError const& error) const;
    Location location_of(ProcessCompiler::NamedProcess const& reference) const;

    TokenList tokens;
    SyntaxTree tree;
    NameTable names;
    Values::ValueStore store;
    Values::ChannelTable channels{store};
    Translation translation;
    CallGraph graph;
    TermHost host;
    Values::Evaluator evaluator{translation.program, store, channels, host};

  private:
    /// Makes each term alone, whatever it runs from its start.
    class Alone final : public ProcessCompiler::ProcessMaker {
      public:
        explicit Alone(Model& model) : m_model(model) {}
        ProcessCompiler::ProcessPointer make(unsigned number) override;
        std::string name(unsigned number) const override { return m_model.name(number); }

      private:
        Model& m_model;
    };

    std::string text_of_call(unsigned definition, std::span<Values::Value const> arguments) const;
    Telling telling() const;
    template <typename Use> auto part_of_assertion(unsigned definition, Use const& use);
    void add_callers(unsigned reference, Diagnostic& diagnostic) const;

    ProcessCompiler::NamedProcessSource& m_source;
    Alone m_alone;
    ProcessCompiler::GuardedMaker m_guarded;
};

} // namespace Calder::Script
