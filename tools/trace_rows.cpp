#include "tools/trace_rows.h"

#include "script/characters.h"

#include <fmt/core.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <system_error>
#include <unordered_map>
#include <unordered_set>

namespace Calder::Tools {

namespace {

/// The edge label by which engines know events.
constexpr std::string_view event_column = "action";

/// A column has some 20 bytes, and a machine rarely a thousand of them: what has no end in so many bytes
/// is no line.
constexpr std::size_t most_line_bytes = std::size_t{1} << 26;

constexpr char const* how_to_write =
    "a trace is made readable by 'ltsmin-printtrace TRACE.gcf TRACE.csv'";
constexpr char const* why_another = "the trace may be of another script or process, or of other "
                                    "constants, or not as it was written";

bool is_shown(char letter) {
    return letter >= ' ' && letter <= '~';
}

std::optional<int> digit_of(char letter) {
    bool const is_decimal = letter >= '0' && letter <= '9';
    bool const is_letter = letter >= 'A' && letter <= 'F';
    return is_decimal  ? std::optional(letter - '0')
           : is_letter ? std::optional(letter - 'A' + 10)
                       : std::nullopt;
}

/// Behind the first of the two quotes.
std::optional<std::string> unquoted(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '"') {
            return std::nullopt;
        }
        if (text[i] == '\\') {
            ++i;
            if (i == text.size() || (text[i] != '"' && text[i] != '\\')) {
                return std::nullopt;
            }
        }
        result += text[i];
    }
    return result;
}

std::optional<std::string> of_hexadecimal(std::string_view text) {
    std::string result;
    for (; text.size() >= 2; text.remove_prefix(2)) {
        auto const high = digit_of(text[0]);
        auto const low = digit_of(text[1]);
        if (!high || !low) {
            return std::nullopt;
        }
        result += static_cast<char>(*high * 16 + *low);
    }
    return text.empty() ? std::optional(result) : std::nullopt;
}

/// "leaf3:state": the name.
std::string_view name_of(std::string_view column) {
    return column.substr(0, column.rfind(':'));
}

/// "leaf" of "leaf3"; empty where there is no number.
std::string_view stem_of(std::string_view name) {
    std::size_t const last = name.find_last_not_of("0123456789");
    return last == std::string_view::npos || last + 1 == name.size() ? ""
                                                                     : name.substr(0, last + 1);
}

} // namespace

std::vector<TraceField> fields_of(std::string_view line) {
    std::vector<TraceField> fields;
    bool is_quoted = false;
    std::size_t first = 0;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '"') {
            is_quoted = !is_quoted && i == first;
        } else if (is_quoted) {
            i += line[i] == '\\' ? 1 : 0;
        } else if (line[i] == ',') {
            fields.push_back({first, i - first});
            first = i + 1;
        }
    }
    fields.push_back({first, line.size() - first});
    return fields;
}

std::optional<EventText> event_of(std::string_view field) {
    EventText event;
    if (field.ends_with("...")) {
        event.is_cut = true;
        field.remove_suffix(3);
    }
    if (field.size() < 2 || field.front() != field.back()) {
        return std::nullopt;
    }
    std::string_view const inner = field.substr(1, field.size() - 2);
    auto const text = field.front() == '"'   ? unquoted(inner)
                      : field.front() == '#' ? of_hexadecimal(inner)
                                             : std::nullopt;
    if (!text) {
        return std::nullopt;
    }
    event.text = *text;
    return event;
}

TraceRows::TraceRows(std::FILE* file, std::string name, std::vector<std::string> const& columns)
    : m_file(file), m_name(std::move(name)) {
    TraceLine head;
    if (!next_line(head)) {
        head.number = 1;
        throw error_at(head, {0, 0}, fmt::format("the file is empty; {}", how_to_write));
    }
    read_columns(head, columns);
}

bool TraceRows::next(TraceRow& row) {
    TraceLine& line = row.line;
    if (!next_line(line)) {
        if (line.number == 2) {
            throw error_at(line, {0, 0}, "the first state is missing below the columns");
        }
        return false;
    }
    if (line.fields.size() != m_field_count) {
        throw error_at(line, line.fields.back(),
                       fmt::format("the line has {} value{}, and not {} as there are columns; is "
                                   "it all that was written?",
                                   line.fields.size(), line.fields.size() == 1 ? "" : "s",
                                   m_field_count));
    }
    row.state.clear();
    for (std::size_t const place : m_places) {
        std::string_view const text = line.field(place);
        int number = 0;
        auto const [rest, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        if (error != std::errc() || rest != text.data() + text.size()) {
            throw error_at(line, line.fields[place],
                           fmt::format("the number of a state stands here, and not {}",
                                       Script::in_quotes(text)));
        }
        row.state.push_back(number);
    }
    row.event.reset();
    if (m_event_place && !line.field(*m_event_place).empty()) {
        row.event = event_of(line.field(*m_event_place));
        if (!row.event) {
            bool const is_number = line.field(*m_event_place).find_first_not_of("0123456789") ==
                                   std::string_view::npos;
            throw error_at(
                line, line.fields[*m_event_place],
                is_number ? "the number of an event stands here, and not its name; "
                            "ltsmin-printtrace writes names without --values=idx"
                          : "the name of an event stands here, between double quotes; is the line "
                            "all that was written?");
        }
    }
    return true;
}

TraceError TraceRows::error_at_column(TraceRow const& row, std::size_t column,
                                      std::string message) const {
    return error_of_another(row.line, row.line.fields[m_places[column]], std::move(message));
}

TraceError TraceRows::error_at_event(TraceRow const& row, std::string message) const {
    TraceField const end{row.line.text.size(), 0};
    return error_of_another(row.line, m_event_place ? row.line.fields[*m_event_place] : end,
                            std::move(message));
}

bool TraceRows::next_line(TraceLine& line) {
    line.number = ++m_line_number;
    line.text.clear();
    int letter = 0;
    while ((letter = getc_unlocked(m_file)) != EOF && letter != '\n' &&
           line.text.size() < most_line_bytes) {
        line.text += static_cast<char>(letter);
    }
    if (std::ferror(m_file) != 0) {
        throw std::system_error(errno, std::generic_category());
    }
    if (letter == EOF && line.text.empty()) {
        return false;
    }
    if (letter == '\n' && line.text.ends_with('\r')) {
        line.text.pop_back();
    }
    if (line.number == 1) {
        line.text.erase(0, Script::byte_order_mark_length(line.text));
    }
    auto const wrong = std::find_if_not(line.text.begin(), line.text.end(), is_shown);
    if (wrong != line.text.end() || line.text.size() == most_line_bytes) {
        auto const first = static_cast<std::size_t>(wrong - line.text.begin());
        throw error_at(line, {first, 1},
                       fmt::format("this is no line of comma-separated values; {}", how_to_write));
    }
    line.fields = fields_of(line.text);
    return true;
}

void TraceRows::read_columns(TraceLine const& head, std::vector<std::string> const& columns) {
    m_field_count = head.fields.size();
    std::unordered_map<std::string_view, std::size_t> places;
    for (std::size_t place = 0; place < head.fields.size(); ++place) {
        std::string_view const name = name_of(head.field(place));
        if (!places.try_emplace(name, place).second) {
            throw error_at(head, head.fields[place],
                           fmt::format("the column '{}' stands here again", name));
        }
    }
    if (auto const found = places.find(event_column); found != places.end()) {
        m_event_place = found->second;
    }
    std::unordered_set<std::string_view> stems;
    for (std::string const& column : columns) {
        auto const found = places.find(column);
        if (found == places.end()) {
            refuse_columns(head, column);
        }
        m_places.push_back(found->second);
        places.erase(found);
        stems.insert(stem_of(column));
    }
    stems.erase("");
    for (TraceField const field : head.fields) {
        std::string_view const name =
            name_of(std::string_view(head.text).substr(field.first, field.length));
        if (places.contains(name) && stems.contains(stem_of(name))) {
            throw error_of_another(head, field,
                                   fmt::format("a trace of this process has no column '{}'", name));
        }
    }
}

/// Of those wanted, this one is the first that is missing.
void TraceRows::refuse_columns(TraceLine const& head, std::string const& column) const {
    if (head.text.find(column + ":") != std::string::npos) {
        throw error_at(head, head.fields[0],
                       "the columns have commas between them; ltsmin-printtrace writes these "
                       "without another --csv-separator");
    }
    if (m_places.empty() && !m_event_place) { // a column of events is one of a trace
        throw error_at(head, head.fields[0],
                       fmt::format("a trace begins with its columns, '{}' among them; {}", column,
                                   how_to_write));
    }
    throw error_of_another(head, head.fields[0],
                           fmt::format("a trace of this process has a column '{}'", column));
}

TraceError TraceRows::error_at(TraceLine const& line, TraceField field, std::string message) const {
    // Everything in front of the place is ASCII: bytes are characters.
    Script::Location const location{line.number, static_cast<unsigned>(field.first) + 1,
                                    std::max(static_cast<unsigned>(field.length), 1U)};
    return {{location, std::move(message)}, {m_name, line.text, line.number}};
}

TraceError TraceRows::error_of_another(TraceLine const& line, TraceField field,
                                       std::string message) const {
    TraceError const error = error_at(line, field, std::move(message));
    Script::Diagnostic diagnostic = error.diagnostic();
    diagnostic.notes.push_back({why_another});
    return {std::move(diagnostic), error.source()};
}

} // namespace Calder::Tools
