#pragma once

#include "script/assertion.h"
#include "script/constructs.h"

#include <climits>

#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace Calder::Script {

/// No node, no definition.
constexpr unsigned none = UINT_MAX;

enum class NodeKind : unsigned char {
    absorbed, // nothing any more: another node has its children
    list,     // while it is collected; parameters; the results of a comprehension

    // Values, and what only names can tell from processes.
    name,
    number,    // from its sign, if it has one, to its digits
    call,      // the arguments
    dotted,    // what stands before the first dot, then the fields
    tuple,     // two parts or more
    sequence,  // elements, ranges, or one comprehension
    set,       // the same
    closure,   // {| a, b |}: the beginnings, or one comprehension
    range,     // from and to
    operation, // its token tells which one
    conjunction,
    disjunction,
    conditional,   // condition, then, else
    let,           // definitions, then what they are for
    comprehension, // a list of results, then generators and conditions
    generator,     // a pattern, and what it goes through
    pair,          // a <- b, a <-> b

    // Processes.
    construct,     // sets and processes in the order of the text
    communication, // an event or a set; behind that one or more of the next three
    output,        // a value
    input,         // a pattern, and the set if there is one
    chosen_input,

    definition,  // a list of the parameters, and what it says, which is missing if it is unreadable
    declaration, // channels, then the fields, if there are any
    channel,
    datatype, // the alternatives
};

struct Node {
    NodeKind kind;
    Construct construct = Construct::stop;
    /// Pairs right around it, which belong to what it is a part of.
    unsigned parentheses = 0;
    /// Where it is reported: an operator's own token, of a chain the first one.
    unsigned token = 0;
    unsigned first_token = 0;
    unsigned last_token = 0;
    unsigned first_child = none;
    unsigned last_child = none;
    unsigned next = none; // of the same parent
    unsigned child_count = 0;
    /// Of a leaf 1.
    unsigned depth = 1;
};

/// Names that stand where something could not be read that may have said what they are. That they
/// are unknown is no further error.
struct LostNames {
    bool all = false;
    std::unordered_set<std::string_view> names;

    bool contains(std::string_view name) const { return all || names.contains(name); }
};

/// An `assert`, as far as it could be read.
struct AssertionSyntax {
    Question question = Question::trace_refinement;
    unsigned keyword = none;
    unsigned token = none; // of the question: `[T=`, `:[`; none where it could not be read
    unsigned negations = 0;
    unsigned parentheses = 0; // around the question, behind all `not`
    /// The processes in the order of the text, then the trace or the events: a term each, and in the
    /// tree a definition of it.
    std::vector<unsigned> parts{};
};

/// The syntax of a script, all in one array, so that neither building nor reading nor dropping it
/// recurses. Every node stands behind those it is made of.
class SyntaxTree {
  public:
    unsigned size() const { return static_cast<unsigned>(m_nodes.size()); }
    Node const& operator[](unsigned node) const { return m_nodes[node]; }
    Node& operator[](unsigned node) { return m_nodes[node]; }

    unsigned add(Node const& node);
    void append(unsigned parent, unsigned child);
    /// Appends all children of `list`, which is absorbed; costs the same for any number.
    void append_children_of(unsigned parent, unsigned list);

    class Children;
    Children children_of(unsigned node) const;
    /// The child of this number, from 0; there must be so many.
    unsigned child(unsigned node, unsigned number) const;

    std::vector<unsigned> definitions; // those of the script itself, in its order
    std::vector<unsigned> declarations;
    std::vector<unsigned> datatypes;
    std::vector<AssertionSyntax> assertions;
    LostNames lost_names;
    /// By definition that is unreadable: the largest parts that were read of what it says, where
    /// nothing in it binds names. What is wrong in them can be told all the same.
    std::unordered_map<unsigned, std::vector<unsigned>> fragments;

  private:
    std::vector<Node> m_nodes;
};

/// The children of a node, for a range-based loop.
class SyntaxTree::Children {
  public:
    class iterator {
      public:
        iterator(SyntaxTree const& tree, unsigned node) : m_tree(&tree), m_node(node) {}
        unsigned operator*() const { return m_node; }
        iterator& operator++() {
            m_node = (*m_tree)[m_node].next;
            return *this;
        }
        bool operator!=(iterator const& other) const { return m_node != other.m_node; }

      private:
        SyntaxTree const* m_tree;
        unsigned m_node;
    };

    Children(SyntaxTree const& tree, unsigned parent) : m_tree(tree), m_parent(parent) {}
    iterator begin() const { return {m_tree, m_tree[m_parent].first_child}; }
    iterator end() const { return {m_tree, none}; }

  private:
    SyntaxTree const& m_tree;
    unsigned m_parent;
};

inline SyntaxTree::Children SyntaxTree::children_of(unsigned node) const {
    return {*this, node};
}

} // namespace Calder::Script
