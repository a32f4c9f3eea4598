#pragma once

#include "core/large_array.h"
#include "process_compiler/named_process_source.h"
#include "script/call_graph.h"
#include "values/call_table.h"
#include "values/channel_table.h"
#include "values/evaluation.h"
#include "values/value_error.h"

#include <vector>

namespace Calder::Script {

/// A term is deeper than the nesting limit.
class NestedTerm : public Values::ValueError {
  public:
    NestedTerm();
};

/// Builds terms for the evaluator: foreign values are numbers of terms. A call of a process on
/// a recursive cycle becomes the reference of its instance, which is found by one hash of the
/// definition and its values, and is made when somebody asks for it.
class TermHost final : public Values::Host {
  public:
    TermHost(NameTable const& names, Values::Program const& program, CallGraph const& graph,
             Values::ChannelTable const& channels, ProcessCompiler::NamedProcessSource& source);
    ~TermHost() override;

    Values::Value construct(Values::Expression const& expression,
                            std::span<Values::Value const> operands) override;
    Values::Value refer(unsigned definition, std::span<Values::Value const> arguments,
                        Values::Place place) override;

    void look() override;

    /// The term of a foreign value, until one is added. Those that are not kept are forgotten by `forget`, to be called
    /// when nothing is being evaluated.
    ProcessCompiler::ProcessPointer const& term(Values::Value value) const;
    void forget() { m_built.clear(); }
    /// Whether the value is a term that is kept as long as the script.
    static bool is_kept(Values::Value value);

    /// What a value stands for where a set of events is wanted, or a trace, in which `tick` may stand
    /// at the end. Throws ValueError.
    BitSet const& events_in(Values::Value set) const;
    std::vector<unsigned> trace_in(Values::Value sequence) const;

    /// The instance that a reference stands for, and where it first came up: its number in `calls`,
    /// and the place in the body of `parent`, another instance or none.
    struct Instance {
        unsigned call;
        unsigned parent;
        Values::Place place;
    };
    /// By the number of a reference.
    Instance const& instance(unsigned reference) const { return m_instances[reference]; }
    Values::CallTable const& calls() const { return m_calls; }
    /// Whose body is built: the number of a reference, or none.
    void set_parent(unsigned reference) { m_parent = reference; }
    /// Of an instance, made now if it is new.
    ProcessCompiler::NamedProcess const&
    reference(unsigned definition, std::span<Values::Value const> arguments, Values::Place place);

  private:
    struct Built {
        ProcessCompiler::ProcessPointer term;
        unsigned depth;
    };
    /// What the number of a foreign value is, in its low bits.
    enum class Storage : unsigned { built, kept, reference };

    unsigned instance_of(unsigned definition, std::span<Values::Value const> arguments,
                         Values::Place place);
    void take(Values::Expression const& expression, std::span<Values::Value const> operands);
    void take_pair(Values::Value left, Values::Value right, bool is_link);
    void take_completions(Values::Value left, Values::Value right);
    std::vector<Values::Value> components_of(unsigned event) const;
    Values::Value built_prefix(std::span<Values::Value const> operands);
    Values::Value built_chain(Construct construct);
    Values::Value built_of_parts(Construct construct);
    void check_one_set(Values::Expression const& expression,
                       std::span<Values::Value const> operands) const;
    unsigned event(Values::Value event) const;
    unsigned visible_event(Values::Value event) const;
    std::string incomplete(Values::Value channel) const;
    Values::Value add(ProcessCompiler::ProcessPointer term, unsigned depth);
    static Values::Value stored(Storage storage, std::size_t number);
    static Storage storage_of(Values::Value value);
    static std::size_t number_of(Values::Value value);
    unsigned depth_of(Values::Value value) const;
    ProcessCompiler::ProcessPointer take_term(Values::Value value);
    unsigned depth_of_processes() const;

    NameTable const& m_names;
    Values::Program const& m_program;
    CallGraph const& m_graph;
    Values::ChannelTable const& m_channels;
    ProcessCompiler::NamedProcessSource& m_source;

    std::vector<Built> m_built; // of what is being evaluated
    std::vector<Built> m_kept;
    Values::CallTable m_calls;
    LargeVector<ProcessCompiler::ProcessPointer> m_references; // by call; null until there is one
    LargeVector<Instance> m_instances;                         // by reference
    unsigned m_parent = none;

    // The operands of the construct that is built, by what they are.
    std::vector<Values::Value> m_processes;
    std::vector<Values::Value> m_sets;
    std::vector<unsigned> m_events;
};

} // namespace Calder::Script
