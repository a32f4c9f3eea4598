#include "refinement/machine_side.h"

#include <bit>

namespace Calder::Refinement {

using StateSpace::ConfigurationTables;
using StateSpace::StateTree;

namespace {

/// Only a machine of one configuration is known to leave them alone.
unsigned spare_bits_of(ConfigurationTables const& tables) {
    if (!tables.is_static()) {
        return 0;
    }
    unsigned used = 0;
    StateSpace::Layout const& layout = tables.layout_of(tables.start().data());
    for (StateSpace::Layout::Slot const& slot : layout.slots()) {
        if (slot.word + 1 == layout.word_count() && slot.mask != 0) {
            used = slot.shift + static_cast<unsigned>(std::bit_width(slot.mask));
        }
    }
    return 64 - used;
}

} // namespace

MachineSide::MachineSide(RunningMachine machine, SearchMonitor& monitor,
                         std::uint32_t most_plain_words)
    : m_machine(std::move(machine)), m_monitor(monitor) {
    ConfigurationTables& tables = *m_machine.tables;
    tables.make_first(monitor);
    m_spare_bits = spare_bits_of(tables);
    if (tables.is_static() && tables.width() > most_plain_words) {
        m_spare_bits = 0;
        m_tree = std::make_unique<StateTree>(tables.width());
    }
}

std::vector<Word> MachineSide::start() const {
    std::vector<Word> words = m_machine.tables->start();
    if (m_tree) {
        StateTree::Node const root = m_tree->root_of(words.data(), m_machine.tables->width());
        words.assign(root.begin(), root.end());
    }
    return words;
}

void MachineSide::prepare(Word const* state) {
    ConfigurationTables& tables = *m_machine.tables;
    tables.table(tables.configuration_of(state), m_monitor);
}

bool MachineSide::is_prepared(Word const* state) const noexcept {
    ConfigurationTables const& tables = *m_machine.tables;
    return tables.is_met(tables.configuration_of(state));
}

void MachineSide::append_steps(Word const* state, Steps& steps, Scratch& scratch) {
    ConfigurationTables const& tables = *m_machine.tables;
    StateSpace::SuccessorTable const& table = tables.table(tables.configuration_of(state));
    if (!m_tree) {
        table.append_successors(state, steps, scratch.slots);
        return;
    }
    m_tree->begin(scratch.tree);
    Word const* const words = m_tree->begin_source(state, tables.width(), steps, scratch.tree);
    table.append_successors(words, scratch.tree.changes, scratch.slots);
    m_tree->join(steps, scratch.tree);
}

void MachineSide::begin_sharing(std::uint64_t additions, std::uint64_t known,
                                StateSpace::Team& team) {
    if (m_tree) {
        m_tree->begin_sharing(additions, known, team);
    }
}

void MachineSide::end_sharing() noexcept {
    if (m_tree) {
        m_tree->end_sharing();
    }
}

void MachineSide::go_on_sharing() noexcept {
    if (m_tree) {
        m_tree->go_on_sharing();
    }
}

std::vector<Word> MachineSide::machine_words(Word const* state) const {
    std::uint32_t const width = m_machine.tables->width();
    return m_tree ? m_tree->words(state, width) : std::vector(state, state + width);
}

} // namespace Calder::Refinement
