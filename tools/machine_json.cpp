#include "tools/machine_json.h"

#include "tools/json_writer.h"

namespace Calder::Tools {

using HighLevelMachine::ComponentEvent;
using HighLevelMachine::UnCompiledFormat;
using HighLevelMachine::UnCompiledRule;
using StateSpace::Leaf;
using StateSpace::Part;

namespace {

class MachineWriter {
  public:
    MachineWriter(ShownMachine const& shown, std::function<void(std::string_view)> const& write)
        : m_shown(shown), m_json(write) {}

    void run() {
        m_json.begin_object();
        m_json.member("process", m_shown.process);
        m_json.member("start", m_shown.machine.start);
        m_json.key("parts");
        m_json.begin_array();
        for (StateSpace::PartNumber number = 0; number < m_shown.machine.parts.size(); ++number) {
            write_part(number);
        }
        m_json.end_array();
        m_json.end_object();
        m_json.finish();
    }

  private:
    void write_part(StateSpace::PartNumber number) {
        Part const& part = m_shown.machine.parts[number];
        m_json.begin_object();
        m_json.member("part", number);
        if (part.is_construct()) {
            write_construct(part);
        } else {
            write_leaf(part);
        }
        m_json.end_object();
    }

    void write_leaf(Part const& part) {
        Leaf const& leaf = *m_shown.machine.leaves[part.leaf];
        m_json.member("component", part.leaf);
        m_json.member("name", m_shown.names.name(part.leaf));
        m_json.member("states", leaf.state_count());
        m_json.member("transitions", leaf.transition_count());
        write_alphabet(part);
    }

    void write_construct(Part const& part) {
        m_json.member("construct", operator_text(*part.term, m_shown.script.session()));
        write_numbers("arguments", part.arguments);
        write_alphabet(part);
        if (part.formats.empty()) {
            return;
        }
        m_json.key("formats");
        m_json.begin_array();
        for (UnCompiledFormat const& format : part.formats) {
            m_json.begin_object();
            write_numbers("running", format.active_components);
            m_json.key("rules");
            m_json.begin_array();
            for (UnCompiledRule const& rule : format.rules) {
                write_rule(rule);
            }
            m_json.end_array();
            m_json.end_object();
        }
        m_json.end_array();
    }

    void write_rule(UnCompiledRule const& rule) {
        m_json.begin_object();
        m_json.member("event", event_name(rule.event));
        m_json.member("target", rule.target_format);
        m_json.key("participants");
        m_json.begin_array();
        for (ComponentEvent const& participant : rule.component_events) {
            if (participant.event != ProcessCompiler::no_event) {
                m_json.begin_object();
                m_json.member("argument", participant.component);
                m_json.member("event", event_name(participant.event));
                m_json.end_object();
            }
        }
        m_json.end_array();
        m_json.end_object();
    }

    void write_alphabet(Part const& part) {
        m_json.key("alphabet");
        m_json.begin_array();
        for (unsigned const event : part.alphabet) {
            m_json.value(event_name(event));
        }
        m_json.end_array();
    }

    template <typename Numbers> void write_numbers(char const* name, Numbers const& numbers) {
        m_json.key(name);
        m_json.begin_array();
        for (auto const number : numbers) {
            m_json.value(number);
        }
        m_json.end_array();
    }

    std::string const& event_name(unsigned event) const {
        return m_shown.script.session().event_object(event)->name();
    }

    ShownMachine const& m_shown;
    JsonWriter m_json;
};

} // namespace

void write_machine_json(ShownMachine const& shown,
                        std::function<void(std::string_view)> const& write) {
    MachineWriter(shown, write).run();
}

} // namespace Calder::Tools
