#include "refinement/answers.h"

#include "process_compiler/event_numbers.h"

namespace Calder::Refinement {

using ProcessCompiler::tick;

NodeNumber Answers::next_node(NodeNumber node, unsigned event) {
    NodeNumber next = m_next_nodes.find(node, event);
    if (next == not_known) {
        next = m_observer.after(node, event);
        if (event == tick && next != forbidden) {
            next = nothing_matters;
        }
        m_next_nodes.insert(node, event, next);
    }
    return next;
}

} // namespace Calder::Refinement
