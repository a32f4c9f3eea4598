#include "script/scanner.h"

#include "script/characters.h"
#include "script/hints.h"
#include "script/lexeme.h"
#include "script/lexer.h"

#include <algorithm>
#include <memory>
#include <new>
#include <string>

namespace Calder::Script {

namespace {

/// The generated scanner over a copy of a text. Its tables treat a NUL byte as a possible end,
/// which costs time quadratic in a run of them; in the copy they stand as another control
/// character.
class Lexer {
  public:
    explicit Lexer(std::string_view text) : m_buffer(text) {
        std::replace(m_buffer.begin(), m_buffer.end(), '\0', '\x01');
        m_buffer.append(2, '\0');
        yyscan_t scanner = nullptr;
        if (calder_script_yylex_init_extra(&m_comment_depth, &scanner) != 0) {
            throw std::bad_alloc();
        }
        m_scanner.reset(scanner);
        calder_script_yy_scan_buffer(m_buffer.data(), m_buffer.size(), scanner);
    }
    Lexer(Lexer const&) = delete;
    Lexer& operator=(Lexer const&) = delete;

    /// The kind of the next lexeme; END, which is 0, behind the last one.
    int next() { return calder_script_yylex(m_scanner.get()); }
    unsigned length() const {
        return static_cast<unsigned>(calder_script_yyget_leng(m_scanner.get()));
    }
    unsigned comment_depth() const { return m_comment_depth; }

  private:
    struct Destroy {
        void operator()(void* scanner) const { calder_script_yylex_destroy(scanner); }
    };

    std::string m_buffer;
    unsigned m_comment_depth = 0;
    std::unique_ptr<void, Destroy> m_scanner;
};

class Scanner {
  public:
    Scanner(std::string_view text, Diagnostics& diagnostics)
        : m_offset(static_cast<unsigned>(byte_order_mark_length(text))),
          m_lexer(text.substr(m_offset)), m_diagnostics(diagnostics) {
        m_list.text = text;
    }

    TokenList run() {
        bool in_comment = false;
        Token comment_start{};
        while (int const kind = m_lexer.next()) {
            Token const lexeme{static_cast<TokenKind>(kind), m_offset, m_lexer.length(), m_line,
                               m_column};
            if (!in_comment) {
                comment_start = lexeme;
            }
            in_comment = m_lexer.comment_depth() > 0;
            take(kind, lexeme);
        }
        if (in_comment) {
            report(comment_start, "the comment is never closed: '-}' is missing");
            add(comment_start, Parser::token::BAD);
            m_list.ends_in_comment = true;
        }
        add_end();
        return std::move(m_list);
    }

  private:
    void take(int kind, Token const& lexeme) {
        if (kind == Parser::token::BAD) {
            Token const* const last = m_list.tokens.empty() ? nullptr : &m_list.tokens.back();
            if (last != nullptr && last->kind == Parser::token::BAD && m_bad_end == m_offset) {
                m_list.tokens.back().length += lexeme.length;
            } else {
                add(lexeme, Parser::token::BAD);
            }
        } else if (kind == Parser::token::EQUALS) {
            take_equals(lexeme);
        } else if (kind != skipped_lexeme) {
            add(lexeme, lexeme.kind);
            check_last();
        }
        advance(lexeme, kind == Parser::token::BAD);
        if (kind != skipped_lexeme) {
            m_end_line = m_line;
            m_end_column = m_column;
        }
    }

    /// Moves behind the lexeme and reports what in it is no character of a script: every one of a
    /// bad lexeme; bytes that are not UTF-8, and NUL, in a comment.
    void advance(Token const& lexeme, bool is_bad) {
        unsigned const end = lexeme.offset + lexeme.length;
        while (m_offset < end) {
            std::string_view const rest = m_list.text.substr(m_offset);
            auto const length = static_cast<unsigned>(sequence_length(rest));
            std::string_view const character = rest.substr(0, std::max(length, 1U));
            bool const is_nul = character[0] == '\0';
            if (is_bad || length == 0 || is_nul) {
                report_bad(lexeme, length == 0 ? "" : character);
            }
            m_offset += std::max(length, 1U);
            ++m_column;
            if (character == "\n") {
                ++m_line;
                m_column = 1;
            }
        }
    }

    /// A character of a run that was reported already only makes that report longer.
    void report_bad(Token const& lexeme, std::string_view character) {
        if (m_bad_end == m_offset && m_bad_end != 0) {
            ++m_diagnostics.back().location.length;
        } else {
            Location const here{m_line, m_column, 1};
            m_diagnostics.push_back({here, bad_message(lexeme, character)});
        }
        m_bad_end = m_offset + std::max<unsigned>(static_cast<unsigned>(character.size()), 1);
    }

    std::string bad_message(Token const& lexeme, std::string_view character) const {
        if (character.empty()) {
            return "this is not UTF-8 text";
        }
        if (character[0] == '\0') {
            return "a NUL byte may not stand in a script";
        }
        if (m_list.text.substr(lexeme.offset, lexeme.length) == "-}") {
            return "'-}' closes no comment";
        }
        return "unexpected character " + character_name(character) +
               character_hint(m_list.text, m_offset);
    }

    void add(Token token, TokenKind kind) {
        token.kind = kind;
        m_list.tokens.push_back(token);
    }

    void check_last() {
        unsigned const token = m_list.size() - 1;
        if (m_list.is_reported(token)) {
            std::string_view const text = m_list.text_of(token);
            report(m_list[token], text == "tau"
                                      ? "'tau' may not be written: it is the silent event"
                                      : "the number " + in_quotes(text) + " has a leading zero");
        }
    }

    /// Makes a definition of the name before it; a field of an event is no name, and a channel is not
    /// defined.
    void take_equals(Token const& equals) {
        std::vector<Token>& tokens = m_list.tokens;
        std::size_t const count = tokens.size();
        TokenKind const before = count > 1 ? tokens[count - 2].kind : Parser::token::END;
        if (count == 0 || before == Parser::token::DOT || before == Parser::token::CHANNEL) {
            add(equals, equals.kind);
            return;
        }
        if (is_reserved(tokens.back().kind)) {
            report(tokens.back(), in_quotes(m_list.text_of(m_list.size() - 1)) +
                                      " is a reserved word and cannot be defined");
        } else if (tokens.back().kind != Parser::token::NAME) {
            add(equals, equals.kind);
            return;
        }
        tokens.back().kind = Parser::token::DEFINED_NAME;
    }

    void add_end() {
        m_list.tokens.push_back({Parser::token::END, m_offset, 0, m_end_line, m_end_column});
    }

    void report(Token const& token, std::string message) {
        m_diagnostics.push_back({{token.line, token.column, token.length}, std::move(message)});
    }

    unsigned m_offset; // of what is scanned next, with its place
    unsigned m_line = 1;
    unsigned m_column = 1;
    unsigned m_end_line = 1; // behind the last token
    unsigned m_end_column = 1;
    unsigned m_bad_end = 0; // the end of the last run of bad characters
    Lexer m_lexer;
    TokenList m_list;
    Diagnostics& m_diagnostics;
};

} // namespace

TokenList scan(std::string_view text, Diagnostics& diagnostics) {
    return Scanner(text, diagnostics).run();
}

} // namespace Calder::Script
