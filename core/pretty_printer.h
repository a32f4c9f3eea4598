#pragma once

#include "core/export.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <locale>
#include <ostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace Calder::PrettyPrinter {

/// The stream that terms print themselves into: it holds back the current line, breaks it between
/// pieces at a width, cuts long pieces, and stops when a character budget is spent.
///
/// Text is collected in `pending_text` until `end_piece` or a newline makes a piece of it; the
/// pieces of a line are written when the line ends. So but for the indentation nothing appears
/// before a newline, `flush` or the destructor, and a line is broken only where a piece ends. All
/// lengths are in bytes.
///
/// `Session` is whatever the printed things need to name themselves. The members are public because
/// the things that print read and set them.
template <typename Session, typename Char> class CALDER_CORE_EXPORT PrettyPrinter {
    static_assert(std::is_same_v<Char, char>, "texts are UTF-8 in char");

  public:
    /// Bytes of UTF-8.
    using Text = std::basic_string<Char>;

    /// @{
    /// What `piece_budget`, `line_width` and `most_pending` are at first.
    static constexpr unsigned no_piece_budget = 0xFFFFFFFF;
    static constexpr unsigned no_line_width = std::numeric_limits<unsigned>::max();
    static constexpr std::size_t no_pending_limit = std::numeric_limits<std::size_t>::max();
    /// @}

    /// A printer without a limit of any kind, writing to `stream`, which must outlive it.
    PrettyPrinter(std::basic_ostream<Char>& stream, Session printed_session)
        : output(stream), session(printed_session) {}

    PrettyPrinter(PrettyPrinter const&) = delete;
    PrettyPrinter& operator=(PrettyPrinter const&) = delete;

    /// Flushes. An exception ends the program: who wants to hear of it flushes before, and silences
    /// a printer that is given up.
    ~PrettyPrinter() { flush(); }

    /// Writes what is pending, without a final newline.
    void flush() {
        if (!is_spent()) {
            end_piece();
            write_pieces();
            clear_pieces();
        }
    }

    /// Whether the rest of the line would be dropped in any case, so that nothing more need be
    /// printed into it. Only where `most_pending` is set: otherwise everything is collected.
    [[nodiscard]] bool has_enough() const {
        if (most_pending == no_pending_limit) {
            return false;
        }
        bool const is_used_up = remaining_characters > 0 &&
                                m_pieces_length >= static_cast<std::size_t>(remaining_characters);
        return is_spent() || is_used_up || m_pieces_length + pending_text.size() >= most_pending;
    }

    /// Adds to the line that is collected; each newline in the text ends one. Does nothing once the
    /// budget is spent.
    PrettyPrinter& operator<<(Text const& text) {
        if (is_spent()) {
            return *this;
        }
        write_indent();
        std::size_t start = 0;
        for (std::size_t newline; (newline = text.find('\n', start)) != Text::npos;
             start = newline + 1) {
            collect(text, start, newline - start);
            end_line();
        }
        collect(text, start, Text::npos);
        return *this;
    }

    /// A null pointer throws std::logic_error.
    PrettyPrinter& operator<<(Char const* text) {
        if (text == nullptr) {
            throw std::logic_error("basic_string::_M_construct null not valid");
        }
        return *this << Text(text);
    }

    /// Closes the piece that is being collected: the line may be broken here.
    void end_piece() {
        if (is_spent()) {
            return;
        }
        if (!pending_text.empty() && piece_budget != 0) {
            if (piece_budget != no_piece_budget) {
                if (pending_text.size() > piece_budget) {
                    pending_text.resize(piece_budget - 1);
                    pending_text += "…";
                }
                piece_budget -= static_cast<unsigned>(
                    pending_text.size() < piece_budget ? pending_text.size() : piece_budget);
            }
            m_pieces_length += pending_text.size();
            pieces.push_back(std::move(pending_text));
        }
        pending_text.clear();
    }

    /// `number` in decimal, its digits grouped as the user's environment asks; without grouping
    /// when the environment names a locale that this machine does not have.
    template <typename Number> Text format_number(Number const& number) const {
        std::basic_ostringstream<Char> stream;
        stream.exceptions(std::ios_base::badbit); // so that a failed allocation is passed on
        try {
            stream.imbue(std::locale(""));
        } catch (std::runtime_error const&) {
            stream.imbue(std::locale::classic());
        }
        stream << number;
        return stream.str();
    }

    /// Where lines go; not owned.
    std::basic_ostream<Char>& output;
    /// Continuations and parameters are printed as "…".
    bool abbreviate = false;
    /// Characters that may still be written: 0 when the budget is spent, below 0 without limit.
    std::int32_t remaining_characters = -1;
    /// Passed on by who prints; the stream itself does not look at it.
    Session session;
    /// Of the piece that is being collected.
    Text pending_text;
    /// Of the line that is being collected, those that have ended.
    std::vector<Text> pieces;
    /// Blanks at the start of every line that is written.
    unsigned indent = 0;
    /// The blanks are written with the first text of a line, before it is known whether more
    /// follows.
    bool indent_written = false;
    /// A line is broken before a piece that would end beyond this column.
    unsigned line_width = no_line_width;
    /// Output operations do nothing.
    bool silenced = false;
    /// Nothing has been written since the last newline, or nothing at all yet.
    bool at_line_start = true;
    /// Bytes that pieces may still have in all; no_piece_budget means no limit.
    unsigned piece_budget = no_piece_budget;
    /// For who cuts the text in any case: a line is collected until its pieces use up
    /// `remaining_characters`, or until it has this many bytes, and then no further. By default it
    /// is collected whole, although only its beginning may be written.
    std::size_t most_pending = no_pending_limit;

  private:
    [[nodiscard]] bool is_spent() const { return silenced || remaining_characters == 0; }

    void collect(Text const& text, std::size_t start, std::size_t length) {
        if (!has_enough()) {
            pending_text.append(text, start, length);
        }
    }

    void clear_pieces() {
        pieces.clear();
        m_pieces_length = 0;
    }

    void write_indent() {
        if (!indent_written) {
            indent_written = true;
            output << Text(indent, ' ');
        }
    }

    /// Ends the line that `pending_text` and `pieces` hold. An empty line is dropped.
    void end_line() {
        if (is_spent() || (at_line_start && pending_text.empty() && pieces.empty())) {
            pending_text.clear();
            return;
        }
        write_indent();
        end_piece();
        write_pieces();
        output << '\n' << std::flush;
        indent_written = false;
        at_line_start = true;
        clear_pieces();
    }

    void write_pieces() {
        std::size_t column = indent;
        for (Text const& piece : pieces) {
            if (column > indent && column + piece.size() > line_width) {
                output << '\n' << std::flush << Text(indent, ' ');
                at_line_start = true;
                column = indent;
            }
            output << piece;
            at_line_start = false;
            column += piece.size();
            if (remaining_characters > 0 && spend(piece.size())) {
                return;
            }
        }
    }

    /// Lowers the budget by `length`; says whether that spent it.
    bool spend(std::size_t length) {
        std::int64_t const left = remaining_characters - static_cast<std::int64_t>(length);
        remaining_characters = left < 1 ? 0 : static_cast<std::int32_t>(left);
        return remaining_characters == 0;
    }

    std::size_t m_pieces_length = 0; // of all pieces together
};

/// What can print itself into such a stream.
template <typename Session, typename Char> class CALDER_CORE_EXPORT PrettyPrintable {
  public:
    virtual ~PrettyPrintable() = default;
    /// The whole of it, within the limits of the printer.
    virtual void pretty_print(PrettyPrinter<Session, Char>& printer) const = 0;

  protected:
    PrettyPrintable() = default;
    /// @{
    /// For those who derive from it: through the base, nothing is copied.
    PrettyPrintable(PrettyPrintable const&) = default;
    PrettyPrintable& operator=(PrettyPrintable const&) = default;
    /// @}
};

} // namespace Calder::PrettyPrinter
