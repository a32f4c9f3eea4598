#include "process_compiler/guarded_maker.h"

#include "core/panic.h"

#include <algorithm>
#include <utility>

namespace Calder::ProcessCompiler {

namespace {

/// So many processes of a chain that is too long are told.
constexpr std::size_t longest_told_chain = 3;

} // namespace

/// Leaves nothing of the path behind, however the visits end.
class GuardedMaker::Path {
  public:
    explicit Path(GuardedMaker& maker) : m_maker(maker) { m_maker.m_is_making = true; }
    ~Path() {
        for (Visit const& visit : m_maker.m_path) {
            m_maker.m_states[visit.number] = State::unknown;
        }
        m_maker.m_path.clear();
        m_maker.m_waiting.clear();
        m_maker.m_made_on_path = 0;
        m_maker.m_is_making = false;
    }
    Path(Path const&) = delete;
    Path& operator=(Path const&) = delete;

  private:
    GuardedMaker& m_maker;
};

GuardedMaker::GuardedMaker(NamedProcessSource& source, ProcessMaker& maker)
    : m_source(source), m_maker(maker) {}

GuardedMaker::~GuardedMaker() = default;

ProcessPointer GuardedMaker::make(unsigned number) {
    if (m_is_making) {
        panic("The process " + m_source.references()[number]->name() +
              " was asked for while another one was made");
    }
    Path const path(*this);
    enter(number);
    ProcessPointer made = m_path.front().term;
    while (!m_path.empty()) {
        if (m_waiting.size() == m_path.back().waiting_before) {
            leave();
            continue;
        }
        unsigned const next = m_waiting.back();
        m_waiting.pop_back();
        if (next >= m_states.size() || m_states[next] == State::unknown) {
            enter(next);
        } else if (m_states[next] == State::on_path) {
            refuse_cycle(next);
        }
    }
    return made;
}

std::string GuardedMaker::name(unsigned number) const {
    return m_maker.name(number);
}

void GuardedMaker::enter(unsigned number) {
    NamedProcess const& reference = *m_source.references()[number];
    bool const must_make = !m_source.is_defined(reference);
    if (must_make && m_made_on_path > unguarded_chain_limit) {
        refuse_long_chain();
    }
    ProcessPointer term = must_make ? m_maker.make(number) : m_source.process(reference);
    if (m_states.size() < m_source.references().size()) {
        m_states.resize(m_source.references().size());
    }
    m_path.push_back(Visit{number, must_make, term, m_waiting.size()});
    m_states[number] = State::on_path;
    m_made_on_path += must_make ? 1 : 0;
    if (term) {
        m_names.add_to(m_waiting, *term);
        auto const first = static_cast<std::ptrdiff_t>(m_path.back().waiting_before);
        std::reverse(m_waiting.begin() + first, m_waiting.end()); // they are taken from the back
    }
}

/// Whatever it runs is guarded, so it is. What was asked for is left to whoever asked.
void GuardedMaker::leave() {
    Visit visit = std::move(m_path.back());
    m_path.pop_back();
    m_states[visit.number] = visit.term ? State::guarded : State::unknown;
    if (visit.was_made) {
        --m_made_on_path;
        if (!m_path.empty()) {
            m_source.define(*m_source.references()[visit.number], std::move(visit.term));
        }
    }
}

void GuardedMaker::refuse_cycle(unsigned first) const {
    NameCycle cycle;
    auto visit = std::find_if(m_path.begin(), m_path.end(),
                              [first](Visit const& each) { return each.number == first; });
    for (; visit != m_path.end(); ++visit) {
        cycle.push_back(m_source.references()[visit->number]);
    }
    std::string const message = describe(cycle);
    throw UnguardedRecursion(message, std::move(cycle));
}

/// "P(0) runs more than 1000 processes from the start, one within the other: P(1), P(2), P(3) and
/// so on".
void GuardedMaker::refuse_long_chain() const {
    NameCycle chain;
    for (Visit const& visit : m_path) {
        chain.push_back(m_source.references()[visit.number]);
    }
    std::string message = chain.front()->name() + " runs more than " +
                          std::to_string(unguarded_chain_limit) +
                          " processes from the start, one within the other: ";
    for (std::size_t index = 1; index <= longest_told_chain; ++index) {
        message += (index == 1 ? "" : ", ") + chain[index]->name();
    }
    throw UnguardedRecursion(message + " and so on", std::move(chain));
}

} // namespace Calder::ProcessCompiler
