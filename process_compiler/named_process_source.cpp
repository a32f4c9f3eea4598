#include "process_compiler/named_process_source.h"

#include "core/panic.h"
#include "process_compiler/process_maker.h"

#include <algorithm>

namespace Calder::ProcessCompiler {

NamedProcessSource::NamedProcessSource() = default;

NamedProcessSource::~NamedProcessSource() = default;

NamedProcessPointer const& NamedProcessSource::reference(std::string const& name) {
    auto const number = static_cast<unsigned>(m_references.size());
    auto const [entry, is_new] = m_numbers.try_emplace(name, number);
    if (is_new) {
        std::size_t const names_before = m_names.size();
        try {
            m_names.push_back(Name{number, &entry->first});
            add_reference();
        } catch (...) {
            m_names.resize(names_before);
            m_numbers.erase(entry);
            throw;
        }
    }
    return m_references[entry->second];
}

NamedProcessPointer const& NamedProcessSource::add_reference() {
    auto const number = static_cast<unsigned>(m_references.size());
    NamedProcessPointer made(new NamedProcess(*this, number));
    if (m_processes.size() == number) { // and not where memory ran out behind it before
        m_processes.emplace_back();
    }
    return m_references.emplace_back(std::move(made));
}

void NamedProcessSource::define(std::string const& name, ProcessPointer process) {
    define(*reference(name), std::move(process));
}

void NamedProcessSource::define(NamedProcess const& reference, ProcessPointer process) {
    m_processes[reference.number()] = std::move(process);
}

void NamedProcessSource::declare_sequential(NamedProcess const& reference) {
    if (reference.number() > m_sequentials.size()) {
        m_sequentials.resize(reference.number());
    }
    if (reference.number() == m_sequentials.size()) {
        m_sequentials.push_back(true);
    } else {
        m_sequentials[reference.number()] = true;
    }
}

bool NamedProcessSource::is_sequential(NamedProcess const& reference) const {
    return reference.number() < m_sequentials.size() && m_sequentials[reference.number()];
}

bool NamedProcessSource::is_defined(NamedProcess const& reference) const {
    return m_processes[reference.number()] != nullptr;
}

bool NamedProcessSource::is_instance(NamedProcess const& reference) const {
    return stored_name(reference.number()) == nullptr;
}

ProcessPointer const& NamedProcessSource::process(NamedProcess const& reference) const {
    ProcessPointer& process = m_processes[reference.number()];
    if (!process) [[unlikely]] {
        make(reference, process);
    }
    return process;
}

std::string NamedProcessSource::name(NamedProcess const& reference) const {
    if (std::string const* const stored = stored_name(reference.number())) {
        return *stored;
    }
    return m_maker != nullptr ? m_maker->name(reference.number())
                              : "#" + std::to_string(reference.number());
}

/// Null for an instance.
std::string const* NamedProcessSource::stored_name(unsigned number) const {
    auto const found =
        std::lower_bound(m_names.begin(), m_names.end(), number,
                         [](Name const& name, unsigned wanted) { return name.number < wanted; });
    return found != m_names.end() && found->number == number ? found->text : nullptr;
}

void NamedProcessSource::make(NamedProcess const& reference, ProcessPointer& process) const {
    if (m_maker != nullptr) {
        process = m_maker->make(reference.number());
    }
    if (!process) {
        panic("The process " + name(reference) + " is not defined");
    }
}

} // namespace Calder::ProcessCompiler
