#pragma once

#include "script/diagnostics.h"

#include <cstdio>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Calder::Tools {

/// What stands between two commas of a line.
struct TraceField {
    /// In the line, counted from 0, in bytes: a line has nothing but ASCII.
    std::size_t first;
    std::size_t length;
};

/// A line of a trace.
struct TraceLine {
    /// Counted from 1.
    unsigned number = 0;
    /// Without its line end.
    std::string text{};
    std::vector<TraceField> fields{};

    std::string_view field(std::size_t index) const {
        return std::string_view(text).substr(fields[index].first, fields[index].length);
    }
};

/// The name of an event as a trace has it.
struct EventText {
    bool operator==(EventText const&) const = default;

    std::string text;
    /// There was no room for all of it.
    bool is_cut = false;

    bool stands_for(std::string_view name) const {
        return is_cut ? name.starts_with(text) : name == text;
    }
};

/// A state on the way, and by what it goes on.
struct TraceRow {
    TraceLine line{};
    /// Column by column of whoever reads.
    std::vector<int> state{};
    /// Nothing in the last row, unless the way leads back to where it was.
    std::optional<EventText> event{};
};

/// A trace that cannot be read or followed, and where.
class TraceError : public std::exception {
  public:
    TraceError(Script::Diagnostic diagnostic, Script::Source source)
        : m_diagnostic(std::move(diagnostic)), m_source(std::move(source)) {}

    Script::Diagnostic const& diagnostic() const { return m_diagnostic; }
    /// The line alone.
    Script::Source const& source() const { return m_source; }
    char const* what() const noexcept override { return m_diagnostic.message.c_str(); }

  private:
    Script::Diagnostic m_diagnostic;
    Script::Source m_source;
};

/// Splits the line at its commas. Not in double quotes, which a field begins with or does not have.
std::vector<TraceField> fields_of(std::string_view line);

/// "\"eat.1\"" and, of a name that is not all ASCII, "#E6BC94#"; nothing for what is neither. A name of
/// more than some 4000 bytes ends in "\"..." or "#...".
std::optional<EventText> event_of(std::string_view field);

/// Reads a trace as `ltsmin-printtrace TRACE.gcf TRACE.csv` writes it (LTSmin 3.1): a line with the
/// columns, each as name:type, and a line for each state with the event that comes next. Columns may
/// stand in another order, as engines put them, and others among them, such as labels of states.
///
/// No library for comma-separated values reads it: a quote in quotes has a backslash in front, where RFC
/// 4180 doubles it, and one has to know where in the file each value stood.
class TraceRows {
  public:
    /// `file` is read up to its end and stays open. `columns` are those wanted. Throws what `next`
    /// throws.
    TraceRows(std::FILE* file, std::string name, std::vector<std::string> const& columns);

    /// False behind the last one; there is one. Throws TraceError, and std::system_error where the file cannot be
    /// read.
    bool next(TraceRow& row);

    /// @{
    /// What is wrong with a part of a row.
    TraceError error_at_column(TraceRow const& row, std::size_t column, std::string message) const;
    TraceError error_at_event(TraceRow const& row, std::string message) const;
    /// @}

  private:
    bool next_line(TraceLine& line);
    void read_columns(TraceLine const& head, std::vector<std::string> const& columns);
    [[noreturn]] void refuse_columns(TraceLine const& head, std::string const& column) const;
    TraceError error_at(TraceLine const& line, TraceField field, std::string message) const;
    /// With a note below that says how such a trace comes about.
    TraceError error_of_another(TraceLine const& line, TraceField field, std::string message) const;

    std::FILE* m_file;
    std::string m_name;
    unsigned m_line_number = 0;
    std::size_t m_field_count = 0;
    std::vector<std::size_t> m_places;        // of the columns wanted: which field
    std::optional<std::size_t> m_event_place; // of the event
};

} // namespace Calder::Tools
