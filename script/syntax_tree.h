#pragma once

#include "script/constructs.h"

#include <climits>

#include <string_view>
#include <unordered_set>
#include <vector>

namespace Calder::Script {

/// No node, no definition.
constexpr unsigned none = UINT_MAX;

enum class NodeKind : unsigned char {
    absorbed,    // nothing any more: another node has its children
    list,        // events, pairs or fields while they are being collected
    event,       // from its first token to its last
    listed_set,  // {a, b}: events
    closure_set, // {| a, b |}: events
    declaration, // channels, then fields
    channel,
    field, // values
    value, // a name, a number, or a range from its first token to its last
    name,
    construct, // sets and terms, or events and terms, in the order of the text
};

struct Node {
    NodeKind kind;
    Construct construct = Construct::stop;
    bool is_parenthesised = false;
    /// Where it is reported: an operator's own token, of a chain the first one.
    unsigned token = 0;
    unsigned last_token = 0;
    unsigned first_child = none;
    unsigned last_child = none;
    unsigned next = none; // of the same parent
};

/// Names that stand where something could not be read that may have said what they are. That they
/// are unknown is no further error.
struct LostNames {
    bool all = false;
    std::unordered_set<std::string_view> names;

    bool contains(std::string_view name) const { return all || names.contains(name); }
};

/// The syntax of a script, all in one array, so that neither building nor reading nor dropping it
/// recurses. Every term and every set stands behind the sets and terms it is made of: one loop from
/// the first node to the last meets parts before wholes.
class SyntaxTree {
  public:
    struct Definition {
        unsigned name; // its token
        /// Its nodes are those from `first_node` up to, without, `end_node`.
        unsigned first_node;
        unsigned end_node;
        /// Its term; none when that could not be read.
        unsigned root;
    };

    unsigned size() const { return static_cast<unsigned>(m_nodes.size()); }
    Node const& operator[](unsigned node) const { return m_nodes[node]; }
    Node& operator[](unsigned node) { return m_nodes[node]; }

    unsigned add(Node const& node);
    void append(unsigned parent, unsigned child);
    /// Appends all children of `list`, which is absorbed; costs the same for any number.
    void append_children_of(unsigned parent, unsigned list);

    class Children;
    Children children_of(unsigned node) const;

    std::vector<Definition> definitions; // in the order of the script
    std::vector<unsigned> declarations;
    LostNames lost_names;

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
