#include "tools/json_writer.h"

#include <fmt/core.h>
#include <nlohmann/json.hpp>

namespace Calder::Tools {

namespace {

constexpr std::size_t flushed_at = 1 << 16;
constexpr unsigned indentation = 2;

/// With everything escaped that JSON wants escaped.
std::string quoted(std::string const& text) {
    return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

} // namespace

void JsonWriter::key(char const* name) {
    separate();
    m_pending += quoted(name) + ": ";
    m_follows_key = true;
}

void JsonWriter::value(std::uint64_t number) {
    separate();
    m_pending += std::to_string(number);
}

void JsonWriter::value(std::string const& text) {
    separate();
    m_pending += quoted(text);
}

void JsonWriter::value(std::vector<std::string> const& words) {
    begin_array();
    for (std::string const& word : words) {
        value(word);
    }
    end_array();
}

void JsonWriter::text_or_null(std::string const& text) {
    if (text.empty()) {
        null();
    } else {
        value(text);
    }
}

void JsonWriter::decimal(double number) {
    separate();
    m_pending += fmt::format("{:.3f}", number);
}

void JsonWriter::truth(bool value) {
    separate();
    m_pending += value ? "true" : "false";
}

void JsonWriter::null() {
    separate();
    m_pending += "null";
}

void JsonWriter::flush() {
    m_write(m_pending);
    m_pending.clear();
}

void JsonWriter::finish() {
    m_pending += '\n';
    flush();
}

void JsonWriter::begin(char bracket) {
    separate();
    m_pending += bracket;
    m_is_first = true;
    ++m_depth;
}

void JsonWriter::end(char bracket) {
    --m_depth;
    if (!m_is_first) {
        break_line();
    }
    m_pending += bracket;
    m_is_first = false;
}

void JsonWriter::separate() {
    if (m_pending.size() >= flushed_at) {
        flush();
    }
    if (m_depth > 0 && !m_follows_key) {
        if (!m_is_first) {
            m_pending += m_layout == Layout::line ? ", " : ",";
        }
        break_line();
    }
    m_is_first = false;
    m_follows_key = false;
}

void JsonWriter::break_line() {
    if (m_layout == Layout::lines) {
        m_pending += '\n';
        m_pending.append(std::size_t{indentation} * m_depth, ' ');
    }
}

} // namespace Calder::Tools
