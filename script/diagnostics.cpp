#include "script/diagnostics.h"

#include "script/characters.h"

#include <algorithm>
#include <cstddef>
#include <tuple>
#include <utility>

namespace Calder::Script {

namespace {

constexpr std::size_t longest_quotation = 60;
// The part of a long line that is shown: so many characters, and so many before the caret.
constexpr std::size_t excerpt_width = 150;
constexpr std::size_t excerpt_lead = 75;

/// A place that only moves on, so that many diagnostics in order cost one pass over the text.
class Cursor {
  public:
    explicit Cursor(Source const& source)
        : m_rest(std::string_view(source.text).substr(byte_order_mark_length(source.text))),
          m_line(source.first_line) {}

    bool is_behind(std::size_t line, std::size_t column) const {
        return m_line > line || (m_line == line && m_column > column);
    }

    /// To a character of a line, or to the end of that line.
    void move_to(std::size_t line, std::size_t column) {
        while (m_line < line && !m_rest.empty()) {
            m_rest.remove_prefix(std::min(m_rest.find('\n'), m_rest.size() - 1) + 1);
            ++m_line;
            m_column = 1;
        }
        while (m_column < column && !at_end_of_line()) {
            step();
        }
    }

    bool at_end_of_line() const {
        return m_rest.empty() || m_rest[0] == '\n' || m_rest.starts_with("\r\n");
    }
    std::size_t column() const { return m_column; }

    /// Moves behind a character; nothing for a byte that belongs to none.
    std::string_view step() {
        std::size_t const length = sequence_length(m_rest);
        std::string_view const character = m_rest.substr(0, length);
        m_rest.remove_prefix(std::max<std::size_t>(length, 1));
        ++m_column;
        return character;
    }

  private:
    std::string_view m_rest;
    std::size_t m_line;
    std::size_t m_column = 1;
};

/// The first column that is shown.
std::size_t excerpt_start(Location const& location) {
    return location.column > excerpt_width ? location.column - excerpt_lead : 1;
}

/// The part of the line around the caret, and the line of the caret. Leaves the cursor at its
/// start.
std::string excerpt(Location const& location, Cursor& cursor) {
    std::size_t const caret = location.column;
    std::size_t const first = excerpt_start(location);
    cursor.move_to(location.line, first);
    std::string source(first > 1 ? "…" : "");
    std::string marks(first > 1 ? " " : "");
    Cursor end = cursor;
    while (!end.at_end_of_line() && end.column() < first + excerpt_width) {
        std::size_t const column = end.column();
        std::string_view const character = end.step();
        bool const is_tab = character == "\t";
        bool const can_be_shown = is_tab || (!character.empty() && is_printable(character));
        source += can_be_shown ? character : "\uFFFD";
        if (column < caret) {
            marks += is_tab ? '\t' : ' ';
        } else if (column < caret + location.length) {
            marks += column == caret ? '^' : '~';
        }
    }
    if (end.column() <= caret) {
        marks.append(caret - end.column(), ' ') += '^';
    }
    return source + (end.at_end_of_line() ? "\n" : "…\n") + marks + "\n";
}

std::string heading(Diagnostic const& diagnostic, std::string_view file_name) {
    Location const& location = diagnostic.location;
    return std::string(file_name) + ":" + std::to_string(location.line) + ":" +
           std::to_string(location.column) + ": error: " + diagnostic.message + "\n";
}

} // namespace

Diagnostic diagnostic_at(Location const& location, Wording wording) {
    return {location, std::move(wording.text), {}, std::move(wording.suggestion)};
}

std::string render(Diagnostic const& diagnostic, Sources const& sources) {
    return render_all({diagnostic}, sources);
}

std::string render_all(Diagnostics const& diagnostics, Sources const& sources) {
    if (diagnostics.empty()) {
        return ""; // and there may be no sources
    }
    std::string lines;
    unsigned source = 0;
    Cursor cursor(sources[source]);
    std::size_t const told = std::min(diagnostics.size(), most_told);
    for (std::size_t index = 0; index < told; ++index) {
        Diagnostic const& diagnostic = diagnostics[index];
        Location const& location = diagnostic.location;
        if (location.source != source || cursor.is_behind(location.line, excerpt_start(location))) {
            source = location.source;
            cursor = Cursor(sources[source]);
        }
        lines += heading(diagnostic, sources[source].name) + excerpt(location, cursor);
        for (Note const& note : diagnostic.notes) {
            lines += "  " + note.text + "\n";
        }
    }
    if (std::size_t const more = diagnostics.size() - told; more > 0) {
        lines += sources[0].name + ": " + std::to_string(more) + " more error" +
                 (more == 1 ? "\n" : "s\n");
    }
    return lines;
}

std::string in_quotes(std::string_view text) {
    bool const is_long = text.size() > longest_quotation;
    return "'" + std::string(text.substr(0, longest_quotation)) + (is_long ? "…'" : "'");
}

void sort_and_remove_repetitions(Diagnostics& diagnostics) {
    std::stable_sort(diagnostics.begin(), diagnostics.end(),
                     [](Diagnostic const& a, Diagnostic const& b) {
                         return std::tie(a.location.source, a.location.line, a.location.column,
                                         a.location.length, a.message) <
                                std::tie(b.location.source, b.location.line, b.location.column,
                                         b.location.length, b.message);
                     });
    diagnostics.erase(std::unique(diagnostics.begin(), diagnostics.end()), diagnostics.end());
}

} // namespace Calder::Script
