#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace Calder::Tools {

/// Writes one JSON value, each call what comes next. The calls must make up a value:
/// in an object a key stands before each value, and what is begun is ended.
class JsonWriter {
  public:
    /// Members and elements on lines of their own, indented by 2, or all on one line.
    enum class Layout { lines, line };

    explicit JsonWriter(std::function<void(std::string_view)> const& write,
                        Layout layout = Layout::lines)
        : m_write(write), m_layout(layout) {}

    void begin_object() { begin('{'); }
    void end_object() { end('}'); }
    void begin_array() { begin('['); }
    void end_array() { end(']'); }
    void key(char const* name);
    void value(std::uint64_t number);
    /// Bytes that are not UTF-8 become U+FFFD.
    void value(std::string const& text);
    /// An array.
    void value(std::vector<std::string> const& words);
    /// Null for an empty text.
    void text_or_null(std::string const& text);
    /// With three places behind the point.
    void decimal(double number);
    void truth(bool value);
    void null();

    template <typename Value> void member(char const* name, Value const& each) {
        key(name);
        value(each);
    }

    /// Passes on what is pending.
    void flush();
    /// The same, with a newline.
    void finish();

  private:
    void begin(char bracket);
    void end(char bracket);
    /// The comma, the line and the blanks in front of a member or an element.
    void separate();
    void break_line();

    std::function<void(std::string_view)> const& m_write;
    Layout m_layout;
    std::string m_pending;
    unsigned m_depth = 0;
    bool m_is_first = true; // of what was begun last
    bool m_follows_key = false;
};

} // namespace Calder::Tools
