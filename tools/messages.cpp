#include "tools/messages.h"

#include "tools/error_format.h"
#include "tools/json_writer.h"
#include "tools/standard_streams.h"

#include <fmt/core.h>

#include <functional>
#include <utility>

namespace Calder::Tools {

namespace {

char const* severity_name(Severity severity) {
    switch (severity) {
    case Severity::error: return "error";
    case Severity::warning: return "warning";
    case Severity::note: return "note";
    }
    return "";
}

/// One message as a line of JSON.
class MessageWriter {
  public:
    void run(Severity severity, std::optional<Place> const& place, Script::Wording const& wording,
             std::vector<Remark> const& remarks) {
        m_json.begin_object();
        m_json.member("severity", std::string(severity_name(severity)));
        write_place(place);
        m_json.member("message", wording.text);
        m_json.key("suggestion");
        m_json.text_or_null(wording.suggestion);
        m_json.key("notes");
        m_json.begin_array();
        for (Remark const& each : remarks) {
            m_json.begin_object();
            write_place(each.place);
            m_json.member("message", each.text);
            m_json.end_object();
        }
        m_json.end_array();
        m_json.end_object();
        m_json.finish();
        print_message(m_line);
    }

  private:
    void write_place(std::optional<Place> const& place) {
        if (place) {
            m_json.member("file", place->file);
            m_json.member("line", place->location.line);
            m_json.member("column", place->location.column);
            m_json.member("length", place->location.length);
            return;
        }
        for (char const* const name : {"file", "line", "column", "length"}) {
            m_json.key(name);
            m_json.null();
        }
    }

    std::string m_line;
    std::function<void(std::string_view)> const m_write = [this](std::string_view text) {
        m_line += text;
    };
    JsonWriter m_json{m_write, JsonWriter::Layout::line};
};

/// The name of a source by its number.
using Files = std::function<std::string(unsigned source)>;

Place place_of(Script::Location const& location, Files const& files) {
    return {files(location.source), location};
}

/// For programs alone: people see them with what they belong to.
std::vector<Remark> remarks_of(std::vector<Script::Note> const& notes, Files const& files) {
    std::vector<Remark> remarks;
    for (Script::Note const& note : notes) {
        remarks.push_back({note.text, std::nullopt, ""});
        if (note.location) {
            remarks.back().place = place_of(*note.location, files);
        }
    }
    return remarks;
}

void write_diagnostic(Script::Diagnostic const& diagnostic, Files const& files) {
    MessageWriter().run(Severity::error, place_of(diagnostic.location, files),
                        {diagnostic.message, diagnostic.suggestion},
                        remarks_of(diagnostic.notes, files));
}

Files files_of(Script::ScriptError const& error) {
    return [&error](unsigned source) { return error.files()[source]; };
}

} // namespace

std::string Message::shown() const {
    std::string text = "calder: " + wording.text + "\n";
    for (Remark const& each : remarks) {
        text += each.shown;
    }
    return text;
}

Remark remark(std::string const& text) {
    return {text, std::nullopt, text + "\n"};
}

Remark remark_at(Place place, std::string const& text) {
    std::string shown = fmt::format("{}:{}:{}: note: {}\n", place.file, place.location.line,
                                    place.location.column, text);
    return {text, std::move(place), std::move(shown)};
}

std::vector<Remark> remarks_of(Script::ScriptError const& error) {
    Script::Diagnostic const& diagnostic = error.diagnostic();
    Files const files = files_of(error);
    std::vector<Remark> remarks = remarks_of(diagnostic.notes, files);
    remarks.insert(remarks.begin(),
                   {diagnostic.message, place_of(diagnostic.location, files), error.what()});
    return remarks;
}

void tell_message(Message const& message) {
    if (error_format() == ErrorFormat::text) {
        print_message(message.shown());
    } else {
        MessageWriter().run(message.severity, std::nullopt, message.wording, message.remarks);
    }
}

void tell_error(Script::Wording const& wording) {
    tell_message({Severity::error, wording});
}

void tell_script_error(Script::ScriptError const& error) {
    if (error_format() == ErrorFormat::text) {
        print_message(error.what());
    } else {
        write_diagnostic(error.diagnostic(), files_of(error));
    }
}

void tell_script_errors(Script::Diagnostics const& diagnostics, Script::Sources const& sources) {
    if (error_format() == ErrorFormat::text) {
        print_message(Script::render_all(diagnostics, sources));
        return;
    }
    for (Script::Diagnostic const& diagnostic : diagnostics) {
        write_diagnostic(diagnostic, [&](unsigned source) { return sources[source].name; });
    }
}

} // namespace Calder::Tools
