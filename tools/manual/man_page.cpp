#include "tools/manual/manual.h"
#include "tools/options.h"
#include "tools/word_lists.h"

#include <fmt/core.h>

#include <cctype>
#include <sstream>
#include <utility>

namespace Calder::Tools {

namespace {

/// The code point that a text begins with, and its length; the text is UTF-8.
std::pair<char32_t, std::size_t> first_character(std::string_view text) {
    auto const lead = static_cast<unsigned char>(text[0]);
    std::size_t const length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    char32_t code = length == 1 ? lead : lead & (0x7FU >> length);
    for (std::size_t index = 1; index < length; ++index) {
        code = code << 6U | (static_cast<unsigned char>(text[index]) & 0x3FU);
    }
    return {code, length};
}

/// As text for groff and mandoc: each character stands for itself, a minus for one that can be copied
/// into a shell, and no line is taken for a request.
std::string escaped(std::string_view text) {
    std::string result(text.starts_with('.') || text.starts_with('\'') ? "\\&" : "");
    while (!text.empty()) {
        auto const [code, length] = first_character(text);
        switch (code) {
        case U'\\': result += "\\e"; break;
        case U'-': result += "\\-"; break;
        case U'\'': result += "\\(aq"; break;
        case U'`': result += "\\(ga"; break;
        case U'^': result += "\\(ha"; break;
        case U'~': result += "\\(ti"; break;
        default:
            result += length == 1 ? std::string(text.substr(0, 1))
                                  : fmt::format("\\[u{:04X}]", static_cast<unsigned>(code));
        }
        text.remove_prefix(length);
    }
    return result;
}

/// A sentence in lines as short as those of a text that is written by hand.
std::string filled(std::string const& text) {
    constexpr std::size_t width = 78;
    std::istringstream rest(text);
    std::string lines;
    std::size_t length = 0;
    for (std::string word; rest >> word;) {
        word = escaped(word);
        bool const fits = length + 1 + word.size() <= width;
        lines += lines.empty() ? "" : fits ? " " : "\n";
        length = fits && !lines.empty() ? length + 1 + word.size() : word.size();
        lines += word;
    }
    return lines + ".\n";
}

std::string bold(std::string_view text) {
    return "\\fB" + escaped(text) + "\\fP";
}

std::string italic(std::string_view text) {
    return "\\fI" + escaped(text) + "\\fP";
}

/// "--engine machine|terms": what is written as it stands is bold.
std::string heading(OptionEntry const& option) {
    std::string text;
    for (std::string const& name : option.names) {
        text += (text.empty() ? "" : ", ") + bold(name);
    }
    if (option.words.empty()) {
        return option.value.empty() ? text : text + " " + italic(option.value);
    }
    for (std::string const& word : option.words) {
        text += (word == option.words.front() ? " " : "|") + bold(word);
    }
    return text;
}

std::string options_text(CommandEntry const& command) {
    std::string text;
    for (OptionEntry const& option : command.options) {
        std::string const otherwise =
            option.words.empty() ? "" : "; by default " + option.words.front();
        text += ".TP\n" + heading(option) + "\n" + filled(option.description + otherwise);
    }
    return text;
}

std::string operands_text(CommandEntry const& command) {
    std::vector<std::string> names;
    for (OperandEntry const& operand : command.operands) {
        names.push_back(italic(operand.name));
    }
    return joined(names, " ");
}

std::string synopsis(Manual const& manual) {
    std::string text;
    for (CommandEntry const& command : manual.commands) {
        text += fmt::format("{} [{} ...] {}\n.br\n", bold("calder " + command.name),
                            italic("option"), operands_text(command));
    }
    for (OptionEntry const& option : manual.calder.options) {
        text += fmt::format("{}{}\n", bold("calder " + option.names.back()),
                            &option == &manual.calder.options.back() ? "" : "\n.br");
    }
    return text;
}

std::string commands_text(Manual const& manual) {
    std::string text;
    for (CommandEntry const& command : manual.commands) {
        text += ".SS " + escaped("calder " + command.name) + "\n" + filled(command.description) +
                options_text(command);
    }
    return text;
}

std::string exit_status_text() {
    std::string text;
    for (std::size_t code = 0; code < exit_meanings.size(); ++code) {
        std::string meaning = exit_meanings[code];
        meaning[0] = static_cast<char>(std::toupper(meaning[0]));
        text += ".TP\n" + bold(std::to_string(code)) + "\n" + filled(meaning);
    }
    return text;
}

constexpr std::string_view description = R"(.SH DESCRIPTION
Models are processes of CSP (Communicating Sequential Processes), written in
a text notation, which
.I docs/notation.md
of the documentation describes; it is installed in
.IR share/doc/calder ,
with examples.
.B calder
finds what they can do: it explores a process, term by term or as the machine
that it compiles to, looks for deadlocks, writes transition systems to files,
and answers the assertions of a script.
.PP
.I FILE
is the script, and
.I TRACE
what
.B ltsmin\-printtrace
made of a trace that LTSmin found;
.B \-
is standard input.
An option stands before or behind them, and its value behind a blank or an
equals sign.
The process is the one that the script defines last, unless
.B \-\-process
says otherwise.
.PP
Results go to standard output, everything else to standard error.
)";

constexpr std::string_view exit_status_notes = R"(.PP
A deadlock that was found is 1, however the search ended, and so is an
assertion that fails.
A search stops early at a limit, by SIGINT, SIGTERM or SIGHUP, or for lack of
memory.
)";

constexpr std::string_view environment_and_examples = R"(.SH ENVIRONMENT
.TP
.B CALDER_SMALL_BLOCKS
With
.BR malloc ,
each small piece of memory is allocated by itself, for tools that watch
allocations.
Otherwise they are cut from larger blocks, which is faster.
.SH FILES
.TP
.IR NAME .csp
A script.
.TP
.IR NAME .csv
A trace, as
.B calder trace
reads it.
.TP
.IR NAME .aut
A transition system in the Aldebaran format, as
.B calder explore \-\-output
writes it.
.TP
.IR NAME .dot
The same as a drawing for
.BR dot (1).
.SH EXAMPLES
Look for a deadlock among seven philosophers, and tell who takes part in each
step to it:
.PP
.RS
.EX
calder explore philosophers.csp \-\-define N=7 \-\-deadlock
.EE
.RE
.PP
Answer what a script asserts, and one question more, for a program:
.PP
.RS
.EX
calder check model.csp \-\-assert \(aqSYSTEM :[deadlock free]\(aq \-\-json
.EE
.RE
.SH SEE ALSO
.BR dot (1)
)";

} // namespace

std::string man_page(Manual const& manual, std::string const& version, std::string const& date) {
    std::string text = fmt::format(".TH CALDER 1 {} \"Calder {}\" \"User Commands\"\n",
                                   date.empty() ? "\"\"" : date, version);
    text += ".SH NAME\ncalder \\- explore, check, compile, print and describe CSP processes\n";
    text += ".SH SYNOPSIS\n" + synopsis(manual);
    text += description;
    text += ".SH OPTIONS\n" + options_text(manual.calder);
    text += ".SH COMMANDS\n" + commands_text(manual);
    text += ".SH EXIT STATUS\n" + exit_status_text();
    text += exit_status_notes;
    text += environment_and_examples;
    return text;
}

} // namespace Calder::Tools
