#include "script/syntax_tree.h"

#include <algorithm>

namespace Calder::Script {

unsigned SyntaxTree::add(Node const& node) {
    m_nodes.push_back(node);
    return size() - 1;
}

void SyntaxTree::append(unsigned parent, unsigned child) {
    Node& node = m_nodes[parent];
    if (node.first_child == none) {
        node.first_child = child;
    } else {
        m_nodes[node.last_child].next = child;
    }
    node.last_child = child;
    ++node.child_count;
    node.depth = std::max(node.depth, m_nodes[child].depth + 1);
}

void SyntaxTree::append_children_of(unsigned parent, unsigned list) {
    Node& from = m_nodes[list];
    if (from.first_child != none) {
        unsigned const count = from.child_count;
        append(parent, from.first_child);
        Node& node = m_nodes[parent];
        node.last_child = from.last_child;
        node.child_count += count - 1;
        node.depth = std::max(node.depth, from.depth);
    }
    from.kind = NodeKind::absorbed;
    from.first_child = none;
    from.last_child = none;
    from.child_count = 0;
}

unsigned SyntaxTree::child(unsigned node, unsigned number) const {
    unsigned child = m_nodes[node].first_child;
    for (; number > 0; --number) {
        child = m_nodes[child].next;
    }
    return child;
}

} // namespace Calder::Script
