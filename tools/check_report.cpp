#include "tools/check_report.h"

#include "tools/evidence_json.h"
#include "tools/evidence_text.h"
#include "tools/standard_streams.h"
#include "tools/summary.h"
#include "tools/word_lists.h"

#include <fmt/core.h>

namespace Calder::Tools {

using Refinement::Verdict;

namespace {

char const* verdict_name(Verdict verdict) {
    switch (verdict) {
    case Verdict::holds: return "holds";
    case Verdict::fails: return "fails";
    case Verdict::undecided: return "undecided";
    }
    return "";
}

/// The script, an included file or the command line.
std::string const& source_name(Answered const& answered) {
    return answered.script.sources()[answered.assertion.location.source].name;
}

/// "3: 1 holds, 2 fail"
std::string counts_text(Totals const& totals) {
    std::vector<std::string> counts;
    auto const add = [&counts](std::size_t count, char const* one, char const* many) {
        if (count > 0) {
            counts.push_back(fmt::format("{} {}", count, count == 1 ? one : many));
        }
    };
    add(totals.holding, "holds", "hold");
    add(totals.failing, "fails", "fail");
    add(totals.undecided, "undecided", "undecided");
    return fmt::format("{}: {}", totals.holding + totals.failing + totals.undecided,
                       joined(counts));
}

class TextReport final : public CheckReport {
  public:
    void tell(Answered const& answered) override {
        Script::Location const& place = answered.assertion.location;
        std::string const evidence = evidence_text(answered);
        print_result(fmt::format("{}:{}:{}: {}: {}\n{}{}", source_name(answered), place.line,
                                 place.column, answered.assertion.text,
                                 verdict_name(answered.verdict()), evidence,
                                 evidence.empty() ? "" : "\n"));
        finish_results();
        m_ends_in_blank_line = !evidence.empty();
    }

    void finish(Totals const& totals) override {
        print_result(m_ends_in_blank_line ? "" : "\n");
        Tools::tell("assertions", counts_text(totals));
        Tools::tell("states", fmt::format("{}", totals.states));
        Tools::tell("transitions", fmt::format("{}", totals.transitions));
        tell_time_and_memory(totals.time);
        finish_results();
    }

    void break_off() override {}

  private:
    bool m_ends_in_blank_line = false;
};

class JsonReport final : public CheckReport {
  public:
    explicit JsonReport(std::string const& file) {
        m_json.begin_object();
        m_json.member("file", file);
        m_json.key("assertions");
        m_json.begin_array();
    }

    void tell(Answered const& answered) override {
        Script::Location const& place = answered.assertion.location;
        m_json.begin_object();
        m_json.member("file", source_name(answered));
        m_json.member("line", place.line);
        m_json.member("column", place.column);
        m_json.member("text", answered.assertion.text);
        m_json.member("verdict", std::string(verdict_name(answered.verdict())));
        write_evidence_json(answered, m_json);
        m_json.member("states", answered.answer.state_count);
        m_json.member("transitions", answered.answer.transition_count);
        m_json.key("seconds");
        m_json.decimal(answered.seconds);
        m_json.end_object();
        m_json.flush();
        finish_results();
    }

    void finish(Totals const&) override { end(); }

    void break_off() override { end(); }

  private:
    void end() {
        m_json.end_array();
        m_json.end_object();
        m_json.finish();
        finish_results();
    }

    std::function<void(std::string_view)> const m_write = print_result;
    JsonWriter m_json{m_write};
};

} // namespace

void Totals::add(Answered const& answered) {
    switch (answered.verdict()) {
    case Verdict::holds: ++holding; break;
    case Verdict::fails: ++failing; break;
    case Verdict::undecided: ++undecided; break;
    }
    states += answered.answer.state_count;
    transitions += answered.answer.transition_count;
}

std::unique_ptr<CheckReport> text_report() {
    return std::make_unique<TextReport>();
}

std::unique_ptr<CheckReport> json_report(std::string const& file) {
    return std::make_unique<JsonReport>(file);
}

} // namespace Calder::Tools
