#include "refinement/machine_side.h"

#include <bit>

namespace Calder::Refinement {

namespace {

/// Only a machine of one configuration is known to leave them alone.
unsigned spare_bits_of(StateSpace::ConfigurationTables const& tables) {
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

MachineSide::MachineSide(RunningMachine machine, SearchMonitor& monitor)
    : m_machine(std::move(machine)), m_monitor(monitor) {
    m_machine.tables->make_first(monitor);
    m_spare_bits = spare_bits_of(*m_machine.tables);
}

void MachineSide::prepare(Word const* state) {
    StateSpace::ConfigurationTables& tables = *m_machine.tables;
    tables.table(tables.configuration_of(state), m_monitor);
}

bool MachineSide::is_prepared(Word const* state) const noexcept {
    StateSpace::ConfigurationTables const& tables = *m_machine.tables;
    return tables.is_met(tables.configuration_of(state));
}

void MachineSide::append_steps(Word const* state, Steps& steps, Scratch& scratch) {
    StateSpace::ConfigurationTables const& tables = *m_machine.tables;
    tables.table(tables.configuration_of(state)).append_successors(state, steps, scratch);
}

} // namespace Calder::Refinement
