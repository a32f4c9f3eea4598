#include "process_compiler/named_process_source.h"

#include "core/panic.h"

namespace Calder::ProcessCompiler {

NamedProcessSource::NamedProcessSource() = default;

NamedProcessSource::~NamedProcessSource() = default;

NamedProcessPointer const& NamedProcessSource::reference(std::string const& name) {
    auto const number = static_cast<unsigned>(m_references.size());
    auto const [entry, is_new] = m_numbers.try_emplace(name, number);
    if (is_new) {
        try {
            NamedProcessPointer made(new NamedProcess(name, number));
            m_processes.resize(std::size_t{number} + 1);
            m_references.push_back(std::move(made));
        } catch (...) {
            m_numbers.erase(entry);
            throw;
        }
    }
    return m_references[entry->second];
}

void NamedProcessSource::define(std::string const& name, ProcessPointer process) {
    m_processes[reference(name)->number()] = std::move(process);
}

bool NamedProcessSource::is_defined(NamedProcess const& reference) const {
    return m_processes[reference.number()] != nullptr;
}

ProcessPointer const& NamedProcessSource::process(NamedProcess const& reference) const {
    ProcessPointer const& process = m_processes[reference.number()];
    if (!process) {
        panic("The process " + reference.name() + " is not defined");
    }
    return process;
}

} // namespace Calder::ProcessCompiler
