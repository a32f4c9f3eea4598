#include "process_compiler/names_at_start.h"

#include "process_compiler/kinds.h"
#include "process_compiler/named_process.h"

#include <unordered_set>

namespace Calder::ProcessCompiler {

namespace {

/// So many arguments are visited before it is noted which terms were: few enough that visiting them
/// again costs less than the notes. Behind them arguments may be shared at every level.
constexpr unsigned visits_without_notes = 64;

} // namespace

void NamesAtStart::add_to(std::vector<unsigned>& numbers, Process const& term) {
    std::unordered_set<Process const*> seen; // allocates nothing while it is empty
    unsigned visits = 0;
    m_waiting.assign(1, &term);
    while (!m_waiting.empty()) {
        Process const& next = *m_waiting.back();
        m_waiting.pop_back();
        if (next.kind() == named_process_kind) {
            numbers.push_back(static_cast<NamedProcess const&>(next).number());
            continue;
        }
        bool is_first = true;
        for (unsigned index = next.argument_count(); index-- > 0;) {
            if (next.process_state(index) == ArgumentState::on) {
                // Here, as a term that runs nothing is not worth a note.
                if (is_first && visits >= visits_without_notes && !seen.insert(&next).second) {
                    break;
                }
                is_first = false;
                ++visits;
                m_waiting.push_back(next.argument(index).get());
            }
        }
    }
}

} // namespace Calder::ProcessCompiler
