#include "script/syntax_tree.h"

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
}

void SyntaxTree::append_children_of(unsigned parent, unsigned list) {
    Node& from = m_nodes[list];
    if (from.first_child != none) {
        append(parent, from.first_child);
        m_nodes[parent].last_child = from.last_child;
    }
    from.kind = NodeKind::absorbed;
    from.first_child = none;
    from.last_child = none;
}

} // namespace Calder::Script
