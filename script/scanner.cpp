#include "script/scanner.h"

#include "script/characters.h"
#include "script/hints.h"
#include "script/lexeme.h"
#include "script/lexer.h"
#include "script/limits.h"
#include "script/token_classes.h"

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

/// Whether an operand may end with a token, so that an operator follows and not an operand.
bool ends_operand(TokenKind kind) {
    using T = Parser::token;
    return kind == T::NAME || kind == T::NUMBER || kind == T::RIGHT_PARENTHESIS ||
           kind == T::RIGHT_BRACE || kind == T::CLOSURE_CLOSE || kind == T::RENAMING_CLOSE ||
           kind == T::GREATER;
}

/// The tokens of one source.
class Scanner {
  public:
    Scanner(unsigned source, Source const& read, Diagnostics& diagnostics)
        : m_source(source), m_text(read.text), m_line(read.first_line), m_end_line(read.first_line),
          m_offset(static_cast<unsigned>(byte_order_mark_length(m_text))),
          m_lexer(m_text.substr(m_offset)), m_diagnostics(diagnostics) {}

    /// Ends in END. `ends_in_comment` becomes true if a comment is never closed.
    std::vector<Token> run(bool& ends_in_comment) {
        bool in_comment = false;
        Token comment_start{};
        while (int const kind = m_lexer.next()) {
            Token const lexeme{static_cast<TokenKind>(kind),
                               m_source,
                               m_offset,
                               m_lexer.length(),
                               m_line,
                               m_column};
            if (!in_comment) {
                comment_start = lexeme;
            }
            in_comment = m_lexer.comment_depth() > 0;
            take(kind, lexeme);
        }
        if (in_comment) {
            report(comment_start, "the comment is never closed: '-}' is missing" +
                                      comment_hint(m_text, comment_start.offset));
            add(comment_start, Parser::token::BAD);
            ends_in_comment = true;
        }
        // Behind the last token; of a text of which nobody wrote any, at its start.
        bool const is_written = m_end_line > 0;
        m_tokens.push_back({Parser::token::END, m_source, m_offset, 0, is_written ? m_end_line : 1,
                            is_written ? m_end_column : 1});
        return std::move(m_tokens);
    }

  private:
    void take(int kind, Token const& lexeme) {
        TokenKind const before = m_tokens.empty() ? Parser::token::END : m_tokens.back().kind;
        if (kind == Parser::token::BAD) {
            if (before == Parser::token::BAD && m_bad_end == m_offset) {
                m_tokens.back().length += lexeme.length;
            } else {
                add(lexeme, Parser::token::BAD);
            }
        } else if (kind == Parser::token::RENAMES && !ends_operand(before)) {
            // <-1, 2>
            Token sign = lexeme;
            ++sign.offset;
            ++sign.column;
            sign.length = 1;
            add(lexeme, Parser::token::LESS);
            m_tokens.back().length = 1;
            add(sign, Parser::token::MINUS);
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
            std::string_view const rest = m_text.substr(m_offset);
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
            Location const here{m_line, m_column, 1, m_source};
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
        if (m_text.substr(lexeme.offset, lexeme.length) == "-}") {
            return "'-}' closes no comment";
        }
        return "unexpected character " + character_name(character) +
               character_hint(m_text, m_offset);
    }

    void add(Token token, TokenKind kind) {
        token.kind = kind;
        m_tokens.push_back(token);
    }

    void check_last() {
        Token const& last = m_tokens.back();
        std::string_view const text = m_text.substr(last.offset, last.length);
        if (is_refused(last.kind, text)) {
            report(last, text == "tau" ? "'tau' may not be written: it is the silent event"
                                       : "the number " + in_quotes(text) + " has a leading zero");
        }
    }

    void report(Token const& token, std::string message) {
        m_diagnostics.push_back(
            {{token.line, token.column, token.length, m_source}, std::move(message)});
    }

    unsigned m_source;
    std::string_view m_text;
    unsigned m_line;     // of what is scanned next
    unsigned m_end_line; // behind the last token
    unsigned m_offset;
    unsigned m_column = 1;
    unsigned m_end_column = 1;
    unsigned m_bad_end = 0; // the end of the last run of bad characters
    Lexer m_lexer;
    std::vector<Token> m_tokens;
    Diagnostics& m_diagnostics;
};

/// Puts the tokens of included files in the place of what includes them. Each file once, so the
/// depth is bounded by the number of files.
class Splicer {
  public:
    Splicer(Sources& sources, Include const& include, Diagnostics& diagnostics)
        : m_sources(sources), m_include(include), m_diagnostics(diagnostics) {}

    TokenList run() {
        m_list.sources = &m_sources;
        auto const given = static_cast<unsigned>(m_sources.size());
        for (unsigned source = 0; source < given; ++source) {
            m_total += m_sources[source].text.size();
        }
        // The script last: its end is the end of the list.
        for (unsigned source = given; source-- > 0;) {
            open(source);
            run_open();
        }
        m_list.tokens.back().kind = Parser::token::END;
        return std::move(m_list);
    }

  private:
    /// A source of which the tokens up to `next` are in the list.
    struct Open {
        std::vector<Token> tokens;
        std::size_t next = 0;
    };

    void open(unsigned source) {
        m_open.push_back(
            {Scanner(source, m_sources[source], m_diagnostics).run(m_list.ends_in_comment)});
    }

    void run_open() {
        while (!m_open.empty()) {
            Open& top = m_open.back();
            Token token = top.tokens[top.next++];
            if (token.kind == Parser::token::END) {
                token.kind = Parser::token::FILE_END;
                m_list.tokens.push_back(token);
                m_open.pop_back();
            } else if (token.kind == Parser::token::INCLUDE &&
                       top.tokens[top.next].kind == Parser::token::TEXT) {
                Token const path = top.tokens[top.next++];
                include(path);
            } else {
                m_list.tokens.push_back(token);
            }
        }
    }

    void include(Token const& path) {
        std::string_view const text = m_list.text_of(path);
        Inclusion found =
            m_include ? m_include(text.substr(1, text.size() - 2), m_sources[path.source].name)
                      : Inclusion{{}, "files cannot be included here"};
        if (!found.error.empty()) {
            report(path, in_quotes(text.substr(1, text.size() - 2)) +
                             " cannot be included: " + found.error);
            m_list.ends_in_comment = true; // whatever it says is missing
            return;
        }
        for (Source const& source : m_sources) {
            if (source.name == found.source.name) {
                return;
            }
        }
        m_total += found.source.text.size();
        if (m_total > text_limit) {
            report(path, "the script is too long: with this file more than " +
                             std::to_string(text_limit) + " bytes");
            return;
        }
        m_sources.push_back(std::move(found.source));
        open(static_cast<unsigned>(m_sources.size() - 1));
    }

    void report(Token const& token, std::string message) {
        m_diagnostics.push_back(
            {{token.line, token.column, token.length, token.source}, std::move(message)});
    }

    Sources& m_sources;
    Include const& m_include;
    Diagnostics& m_diagnostics;
    TokenList m_list;
    std::vector<Open> m_open;
    std::size_t m_total = 0;
};

} // namespace

TokenList scan(Sources& sources, Include const& include, Diagnostics& diagnostics) {
    TokenList list = Splicer(sources, include, diagnostics).run();
    classify(list, diagnostics);
    return list;
}

} // namespace Calder::Script
