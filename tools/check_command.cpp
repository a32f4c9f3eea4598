#include "tools/check_command.h"

#include "state_space/memory.h"
#include "tools/address_space_bound.h"
#include "tools/ask.h"
#include "tools/check_report.h"
#include "tools/command_error.h"
#include "tools/interruption.h"
#include "tools/messages.h"
#include "tools/progress_line.h"

#include <fmt/core.h>

#include <algorithm>
#include <charconv>
#include <new>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

namespace Calder::Tools {

namespace {

/// "2,5": ascending, each once.
std::vector<std::size_t> numbers_of(std::string_view text) {
    std::vector<std::size_t> numbers;
    for (bool is_more = true; is_more;) {
        std::string_view const word = text.substr(0, text.find(','));
        is_more = word.size() < text.size();
        text.remove_prefix(is_more ? word.size() + 1 : word.size());
        std::size_t number = 0;
        char const* const end = word.data() + word.size();
        auto const [rest, error] = std::from_chars(word.data(), end, number);
        if (error != std::errc() || rest != end) {
            throw CommandError(
                fmt::format("--only wants numbers of assertions, as in '1,3', and not '{}'", word));
        }
        numbers.push_back(number);
    }
    std::sort(numbers.begin(), numbers.end());
    numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
    return numbers;
}

/// Which assertions are answered, counted from 0; `only` counts from 1, and is empty for all.
std::vector<std::size_t> selected(Script::Script const& script, Input const& input,
                                  std::vector<std::size_t> only) {
    std::size_t const count = script.assertion_count();
    if (count == 0) {
        throw CommandError(fmt::format(
            "{} asks nothing: it has no 'assert', and there is no --assert", input.name()));
    }
    if (only.empty()) {
        for (std::size_t number = 1; number <= count; ++number) {
            only.push_back(number);
        }
    }
    for (std::size_t& number : only) {
        if (number < 1 || number > count) {
            throw CommandError(
                fmt::format("--only: there is no assertion {}; {} asks {}, and the first one is 1",
                            number, input.name(), count));
        }
        --number;
    }
    return only;
}

/// Their terms, before any is asked about; what values show of all of them is told together.
std::vector<Script::Assertion> make_assertions(Script::Script const& script,
                                               std::vector<std::size_t> const& numbers) {
    std::vector<Script::Assertion> assertions;
    Script::Diagnostics errors;
    for (std::size_t const number : numbers) {
        try {
            assertions.push_back(script.assertion(number));
        } catch (Script::ScriptError const& error) {
            errors.push_back(error.diagnostic());
        }
    }
    if (!errors.empty()) {
        sort_and_remove_repetitions(errors);
        throw Script::ScriptErrors(std::move(errors), script.sources());
    }
    return assertions;
}

/// The same within the memory that reading a script may take.
std::vector<Script::Assertion> make_assertions(Script::Script const& script,
                                               std::vector<std::size_t> const& numbers,
                                               Input const& input, std::uint64_t max_memory) {
    try {
        AddressSpaceBound const bound(max_memory);
        return make_assertions(script, numbers);
    } catch (std::bad_alloc const&) {
        throw CommandError(
            fmt::format("what {} asks was not read: the limit on memory was reached", input.name()),
            exit_stopped_early);
    }
}

using Clock = std::chrono::steady_clock;

/// Answers questions one after the other.
class Check {
  public:
    Check(Script::Script const& script, SearchOptions const& options, std::uint64_t max_memory,
          CheckReport& report)
        : m_script(script), m_options(options), m_max_memory(max_memory), m_report(report) {}

    int run(std::vector<Script::Assertion> const& assertions) {
        InterruptionWatch const watch;
        auto const start = Clock::now();
        for (std::size_t i = 0; i < assertions.size(); ++i) {
            std::string const progress =
                assertions.size() > 1 ? fmt::format("{} of {}: ", i + 1, assertions.size()) : "";
            answer(assertions[i], progress, watch);
        }
        m_totals.time = Clock::now() - start;
        m_report.finish(m_totals);
        return m_totals.failing > 0     ? exit_fails
               : m_totals.undecided > 0 ? exit_stopped_early
                                        : exit_holds;
    }

  private:
    /// What the search took is free again before the next question begins.
    void answer(Script::Assertion const& assertion, std::string const& progress,
                InterruptionWatch const& watch) {
        auto const start = Clock::now();
        Refinement::Answer answer;
        answer.outcome = StateSpace::Outcome::interrupted;
        if (!watch.interrupted()) {
            answer = asked(assertion, progress, watch);
        }
        std::chrono::duration<double> const time = Clock::now() - start;
        Answered const answered{m_script, assertion, answer, time.count()};
        m_report.tell(answered);
        m_totals.add(answered);
    }

    Refinement::Answer asked(Script::Assertion const& assertion, std::string const& progress,
                             InterruptionWatch const& watch) {
        StateSpace::give_back_freed_memory(); // of the question before
        ProgressLine line(m_options.shows_progress(), progress);
        Refinement::QuestionOptions bounds;
        bounds.max_states = m_options.max_states.value_or(bounds.max_states);
        bounds.max_memory = m_max_memory;
        bounds.by_machine = m_options.engine == Engine::machine;
        bounds.threads = m_options.thread_count();
        bounds.progress = [&](StateSpace::Progress const& found) {
            line.update(found);
            return !watch.interrupted();
        };
        return ask(assertion, m_script, bounds, [this](Message const& note) {
            if (!m_options.quiet && m_notes.insert(note.shown()).second) {
                tell_message(note);
            }
        });
    }

    Script::Script const& m_script;
    SearchOptions const& m_options;
    std::uint64_t m_max_memory;
    CheckReport& m_report;
    Totals m_totals;
    std::set<std::string> m_notes; // told already: several questions may be about one process
};

int check(Script::Script const& script, CheckOptions const& options,
          std::vector<std::size_t> const& only, std::uint64_t max_memory) {
    auto const numbers = selected(script, options.input, only);
    auto const assertions = make_assertions(script, numbers, options.input, max_memory);
    auto const report = options.json ? json_report(options.input.name()) : text_report();
    try {
        return Check(script, options.search, max_memory, *report).run(assertions);
    } catch (Script::ScriptError const&) {
        report->break_off();
        throw;
    }
}

} // namespace

int check_script(CheckOptions const& options) {
    auto const only = options.only ? numbers_of(*options.only) : std::vector<std::size_t>();
    std::uint64_t const max_memory = options.search.memory_limit();
    return run_with_script(
        options.input,
        [&](Script::Script const& script) { return check(script, options, only, max_memory); },
        max_memory);
}

} // namespace Calder::Tools
