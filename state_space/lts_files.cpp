#include "state_space/lts_files.h"

#include "state_space/output_file.h"

#include <fmt/compile.h>
#include <fmt/format.h>

namespace Calder::StateSpace {

using ProcessCompiler::Session;

namespace {

constexpr std::size_t flushed_at = 1 << 16;

/// The file and what is not yet written to it.
class TextWriter {
  public:
    TextWriter(std::filesystem::path const& path, std::function<bool()> const& keep_going)
        : m_path(path), m_keep_going(keep_going), m_file(path) {}

    template <typename Format, typename... Values>
    void print(Format const& format, Values const&... values) {
        fmt::format_to(fmt::appender(m_buffer), format, values...);
        if (m_buffer.size() >= flushed_at) {
            flush();
        }
    }

    void finish() {
        flush();
        stop_if_not_wanted();
        m_file.commit();
    }

  private:
    void stop_if_not_wanted() const {
        if (m_keep_going && !m_keep_going()) {
            throw LtsFileStopped(fmt::format("{} was not written: interrupted", m_path.native()));
        }
    }

    void flush() {
        stop_if_not_wanted();
        m_file.write({m_buffer.data(), m_buffer.size()});
        m_buffer.clear();
    }

    std::filesystem::path const& m_path;
    std::function<bool()> const& m_keep_going;
    OutputFile m_file;
    fmt::memory_buffer m_buffer;
};

/// A name between double quotes, where both formats escape alike: a backslash before double quotes
/// and backslashes, and \n for a line break. Graphviz also reads entities such as &lt; in labels.
std::string quoted(std::string const& name, LtsFormat format) {
    std::string text = "\"";
    for (char const letter : name) {
        if (letter == '\n') {
            text += "\\n";
        } else if (letter == '&' && format == LtsFormat::dot) {
            text += "&amp;";
        } else {
            text.append(letter == '"' || letter == '\\' ? "\\" : "").push_back(letter);
        }
    }
    return text + '"';
}

/// The labels of a file, quoted once for all transitions.
class Labels {
  public:
    Labels(Session const& session, LtsFormat format, std::string const& tau_label,
           std::filesystem::path const& path)
        : m_path(path), m_tau_label(tau_label), m_by_event(session.number_bound()) {
        for (unsigned event = ProcessCompiler::tau; event < session.number_bound(); ++event) {
            bool const is_tau = event == ProcessCompiler::tau;
            std::string const& name = is_tau ? tau_label : session.event_object(event)->name();
            if (is_tau || name != tau_label) {
                m_by_event[event] = quoted(name, format);
            }
        }
    }

    /// Throws LtsFileError when the event has no label that tells it apart.
    std::string const& operator[](unsigned event) const {
        if (event >= m_by_event.size() || event == ProcessCompiler::no_event) {
            throw LtsFileError(fmt::format("cannot write {}: event number {} has no name",
                                           m_path.native(), event));
        }
        if (m_by_event[event].empty()) {
            throw LtsFileError(fmt::format("cannot write {}: the process has an event named {}, "
                                           "which is how tau would be written",
                                           m_path.native(), m_tau_label));
        }
        return m_by_event[event];
    }

  private:
    std::filesystem::path const& m_path;
    std::string const& m_tau_label;
    std::vector<std::string> m_by_event; // by number; empty where there is none
};

void write_aut(TextWriter& writer, LabelledTransitionSystem const& lts, Labels const& labels) {
    writer.print(FMT_COMPILE("des (0, {}, {})\n"), lts.transition_count(), lts.state_count());
    for (StateNumber source = 0; source < lts.explored_count(); ++source) {
        for (auto const [event, target] : lts.transitions(source)) {
            writer.print(FMT_COMPILE("({}, {}, {})\n"), source, labels[event], target);
        }
    }
}

void write_dot(TextWriter& writer, LabelledTransitionSystem const& lts, Labels const& labels) {
    writer.print(FMT_COMPILE("digraph lts {{\n    node [shape=circle];\n"
                             "    start [shape=point];\n    start -> 0;\n"));
    for (StateNumber state = 0; state < lts.state_count(); ++state) {
        writer.print(FMT_COMPILE("    {};\n"), state);
    }
    for (StateNumber source = 0; source < lts.explored_count(); ++source) {
        for (auto const [event, target] : lts.transitions(source)) {
            writer.print(FMT_COMPILE("    {} -> {} [label={}];\n"), source, target, labels[event]);
        }
    }
    writer.print(FMT_COMPILE("}}\n"));
}

} // namespace

LtsFormat lts_format_of(std::filesystem::path const& path) {
    std::filesystem::path const ending = path.extension();
    if (ending == ".aut") {
        return LtsFormat::aut;
    }
    if (ending == ".dot") {
        return LtsFormat::dot;
    }
    throw LtsFileError(fmt::format("cannot write {}: its ending chooses the format, and must be "
                                   ".aut or .dot",
                                   path.native()));
}

void check_lts_file(std::filesystem::path const& path) {
    lts_format_of(path);
    OutputFile const never_committed(path);
}

void write_lts_file(std::filesystem::path const& path, LabelledTransitionSystem const& lts,
                    Session const& session, LtsFileOptions const& options) {
    LtsFormat const format = lts_format_of(path);
    std::string const tau_label = format == LtsFormat::aut ? options.tau_label : "tau";
    Labels const labels(session, format, tau_label, path);
    TextWriter writer(path, options.keep_going);
    switch (format) {
    case LtsFormat::aut: write_aut(writer, lts, labels); break;
    case LtsFormat::dot: write_dot(writer, lts, labels); break;
    }
    writer.finish();
}

} // namespace Calder::StateSpace
