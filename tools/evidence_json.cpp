#include "tools/evidence_json.h"

#include "tools/limit_name.h"
#include "tools/run_json.h"

namespace Calder::Tools {

using Refinement::EvidenceStep;
using Refinement::Reason;

namespace {

/// Empty where there is nothing to show.
char const* reason_name(Reason reason) {
    switch (reason) {
    case Reason::none: return "";
    case Reason::event: return "event";
    case Reason::refusal: return "refusal";
    case Reason::divergence: return "divergence";
    case Reason::deadlock: return "deadlock";
    case Reason::nondeterminism: return "nondeterminism";
    }
    return "";
}

class EvidenceWriter {
  public:
    EvidenceWriter(Answered const& answered, JsonWriter& json)
        : m_question(answered.assertion.question), m_answer(answered.answer),
          m_evidence(m_answer.evidence), m_json(json), m_names(answered.script, m_answer.machine) {}

    void run() {
        std::string const limit = limit_name(m_answer.outcome);
        m_json.key("reason");
        m_json.text_or_null(limit.empty() ? reason_name(m_evidence.reason) : limit);
        write_steps("steps", m_evidence.steps);
        write_end();
        if (std::string const term = m_names.term(m_evidence.end); !term.empty()) {
            m_json.member("state", term);
        }
    }

  private:
    /// What matters where the steps end.
    void write_end() {
        switch (m_evidence.reason) {
        case Reason::none: break;
        case Reason::event:
            write_event();
            if (m_question == Script::Question::has_trace) {
                write_events("offered", m_evidence.offered);
            } else if (m_question != Script::Question::never) {
                write_events("allowed", m_evidence.allowed);
            }
            break;
        case Reason::refusal:
            write_events("offered", m_evidence.offered);
            m_json.key("demanded");
            m_json.begin_array();
            for (std::vector<unsigned> const& set : m_evidence.demanded) {
                m_json.value(m_names.events(set));
            }
            m_json.end_array();
            break;
        case Reason::divergence: write_steps("loop", m_evidence.loop); break;
        case Reason::deadlock:
            write_waiting(waiting_in(m_answer.machine, m_evidence.end), m_evidence.end, m_names,
                          m_json);
            break;
        case Reason::nondeterminism:
            write_event();
            write_events("offered", m_evidence.offered);
            write_steps("other", m_evidence.other);
            m_json.member("performs", std::string(m_evidence.other_performs ? "other" : "steps"));
            break;
        }
    }

    void write_event() { m_json.member("event", m_names.event(m_evidence.event)); }

    void write_steps(char const* name, std::vector<EvidenceStep> const& steps) {
        Tools::write_steps(name, steps, m_names, m_json);
    }

    void write_events(char const* name, std::vector<unsigned> const& events) {
        Tools::write_events(name, events, m_names, m_json);
    }

    Script::Question m_question;
    Refinement::Answer const& m_answer;
    Refinement::Evidence const& m_evidence;
    JsonWriter& m_json;
    RunNames m_names;
};

} // namespace

void write_evidence_json(Answered const& answered, JsonWriter& json) {
    EvidenceWriter(answered, json).run();
}

} // namespace Calder::Tools
