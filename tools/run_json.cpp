#include "tools/run_json.h"

#include "process_compiler/event_numbers.h"

namespace Calder::Tools {

namespace {

void write_components(char const* name, std::vector<std::uint32_t> const& slots,
                      std::vector<std::string> const& components, JsonWriter& json) {
    json.key(name);
    json.begin_array();
    for (std::uint32_t const slot : slots) {
        json.value(components[slot]);
    }
    json.end_array();
}

void write_wanted(Refinement::Wanted const& wanted, std::vector<std::string> const& components,
                  RunNames const& names, JsonWriter& json) {
    json.begin_object();
    json.member("event", names.event(wanted.part_event));
    json.key("as");
    if (wanted.event == ProcessCompiler::no_event) {
        json.null();
    } else {
        json.value(names.event(wanted.event));
    }
    write_components("with", wanted.missing, components, json);
    json.end_object();
}

} // namespace

void write_events(char const* name, std::vector<unsigned> const& events, RunNames const& names,
                  JsonWriter& json) {
    json.member(name, names.events(events));
}

void write_steps(char const* name, std::vector<Refinement::EvidenceStep> const& steps,
                 RunNames& names, JsonWriter& json) {
    json.key(name);
    json.begin_array();
    for (Refinement::EvidenceStep const& step : steps) {
        json.begin_object();
        json.member("event", names.event(step.event));
        if (!step.inner_events.empty()) {
            write_events("inner", step.inner_events, names, json);
        }
        json.member("participants", names.participants(step));
        json.end_object();
    }
    json.end_array();
}

void write_waiting(std::vector<Refinement::Waiting> const& waiting,
                   Refinement::RunState const& state, RunNames& names, JsonWriter& json) {
    if (waiting.empty()) {
        return;
    }
    std::vector<std::string> const& components = names.components(state);
    json.key("waiting");
    json.begin_array();
    for (Refinement::Waiting const& each : waiting) {
        json.begin_object();
        json.member("component", components[each.slot]);
        json.key("wanted");
        json.begin_array();
        for (Refinement::Wanted const& wanted : each.wanted) {
            write_wanted(wanted, components, names, json);
        }
        json.end_array();
        json.end_object();
    }
    json.end_array();
    write_components("cycle", waiting_cycle(waiting), components, json);
}

} // namespace Calder::Tools
