#include "tools/step_lines.h"

#include "process_compiler/event_numbers.h"
#include "tools/fold.h"
#include "tools/summary.h"
#include "tools/word_lists.h"

#include <fmt/core.h>

#include <algorithm>
#include <unordered_map>

namespace Calder::Tools {

using ProcessCompiler::tau;
using Refinement::EvidenceStep;

namespace {

constexpr std::size_t indentation = 2;

class StepLines {
  public:
    StepLines(char const* title, std::vector<EvidenceStep> const& steps, RunNames& names)
        : m_title(title) {
        for (EvidenceStep const& step : steps) {
            m_words.push_back(words_of(step, names));
            m_width = std::max(m_width, step.event == tau ? 0 : m_words.back().event.size());
        }
    }

    std::string run() && {
        std::unordered_map<std::string, std::uint32_t> numbers;
        std::vector<std::uint32_t> symbols;
        for (Words const& words : m_words) {
            auto const number = static_cast<std::uint32_t>(numbers.size());
            symbols.push_back(
                numbers.try_emplace(words.event + '\0' + words.participants, number).first->second);
        }
        tell(folded(symbols), "");
        return std::move(m_text);
    }

  private:
    struct Words {
        std::string event;
        std::string participants; // of a silent step, part of the event
    };

    static Words words_of(EvidenceStep const& step, RunNames& names) {
        std::string const event = names.event(step.event);
        std::string const participants = joined(names.participants(step));
        if (step.event != tau || participants.empty()) {
            return {event, participants};
        }
        std::string const inner = joined(names.events(step.inner_events), " <-> ");
        return {fmt::format("{} ({}{}{})", event, inner, inner.empty() ? "" : ": ", participants),
                ""};
    }

    void tell(std::vector<Fold> const& folds, std::string const& margin) {
        for (Fold const& fold : folds) {
            if (fold.count > 1) {
                tell_line(fmt::format("{}{} times:", margin, fold.count));
                tell(fold.round, margin + std::string(indentation, ' '));
                continue;
            }
            for (std::size_t i = fold.first; i < fold.first + fold.length; ++i) {
                Words const& words = m_words[i];
                std::string const event = margin + words.event;
                tell_line(words.participants.empty()
                              ? event
                              : fmt::format("{:<{}} {}", event, m_width, words.participants));
            }
        }
    }

    void tell_line(std::string const& text) {
        m_text += titled_line(m_title, text);
        m_title = "";
    }

    char const* m_title;
    std::vector<Words> m_words;
    std::size_t m_width = least_column_width;
    std::string m_text;
};

} // namespace

std::string step_lines(char const* title, std::vector<EvidenceStep> const& steps, RunNames& names) {
    return StepLines(title, steps, names).run();
}

std::string after(std::size_t steps) {
    return steps == 0 ? "at the start"
                      : fmt::format("after {} step{}", steps, steps == 1 ? "" : "s");
}

} // namespace Calder::Tools
