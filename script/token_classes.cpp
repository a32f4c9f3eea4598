#include "script/token_classes.h"

#include <algorithm>
#include <array>
#include <utility>

namespace Calder::Script {

namespace {

using T = Parser::token;

class Classification {
  public:
    Classification(TokenList& list, Diagnostics& diagnostics)
        : m_list(list), m_tokens(list.tokens), m_partners(list.tokens.size(), no_partner),
          m_diagnostics(diagnostics) {}

    void run() {
        match();
        unsigned depth = 0; // of `let` that have a `within`
        for (unsigned token = 0; token < m_list.size(); ++token) {
            TokenKind const kind = m_tokens[token].kind;
            if (kind == T::LET && m_partners[token] != no_partner) {
                ++depth;
            } else if (kind == T::WITHIN && m_partners[token] != no_partner) {
                --depth;
            } else if (kind == T::EQUALS) {
                classify_definition(token, depth > 0);
            } else if (kind == T::PARALLEL) {
                classify_parallel(token);
            } else if (kind == T::NOT) {
                classify_not(token);
            }
        }
    }

  private:
    static constexpr unsigned no_partner = 0; // the first token closes nothing

    /// What closes what: parentheses, braces, and `let … within`. A file closes what it opens.
    void match() {
        std::vector<unsigned> open;
        std::vector<unsigned> lets;
        for (unsigned token = 0; token < m_list.size(); ++token) {
            TokenKind const kind = m_tokens[token].kind;
            if (kind == T::LEFT_PARENTHESIS || kind == T::LEFT_BRACE) {
                open.push_back(token);
            } else if (kind == T::RIGHT_PARENTHESIS || kind == T::RIGHT_BRACE) {
                close(open, token);
            } else if (kind == T::LET) {
                lets.push_back(token);
            } else if (kind == T::WITHIN) {
                close(lets, token);
            } else if (kind == T::FILE_END) {
                open.clear();
                lets.clear();
            }
        }
    }

    void close(std::vector<unsigned>& open, unsigned token) {
        if (!open.empty()) {
            m_partners[token] = open.back();
            m_partners[open.back()] = token;
            open.pop_back();
        }
    }

    TokenKind kind(unsigned token) const {
        return token < m_tokens.size() ? m_tokens[token].kind : T::END;
    }

    /// A field of an event is no name, and a channel is not defined, nor is a datatype in this way.
    void classify_definition(unsigned equals, bool is_local) {
        if (equals == 0) {
            return;
        }
        unsigned name = equals - 1;
        if (kind(name) == T::RIGHT_PARENTHESIS && m_partners[name] > 0) {
            name = m_partners[name] - 1;
        }
        TokenKind const before = name > 0 ? kind(name - 1) : T::END;
        constexpr std::array none_defined_behind{
            T::DOT,        T::CHANNEL, T::DATATYPE,        T::IF, T::AND, T::OR, T::NOT, T::ASSERT,
            T::ASSERT_NOT, T::GUARD,   T::LEFT_PARENTHESIS};
        bool const is_refinement = // one that there is not, `[R=`
            before == T::LEFT_BRACKET && m_tokens[name - 1].line == m_tokens[name].line;
        if (is_refinement || std::find(none_defined_behind.begin(), none_defined_behind.end(),
                                       before) != none_defined_behind.end()) {
            return;
        }
        if (is_reserved(kind(name))) {
            m_diagnostics.push_back(
                {m_list.location(name),
                 in_quotes(m_list.text_of(name)) + " is a reserved word and cannot be defined"});
        } else if (kind(name) != T::NAME) {
            return;
        }
        m_tokens[name].kind = is_local ? T::LOCAL_NAME : T::DEFINED_NAME;
    }

    /// Right behind `assert` it turns the answer round, and is no operator on a condition.
    void classify_not(unsigned token) {
        TokenKind const before = token > 0 ? kind(token - 1) : T::END;
        if (before == T::ASSERT || before == T::ASSERT_NOT) {
            m_tokens[token].kind = T::ASSERT_NOT;
        }
    }

    /// `|| (a, p) : {(S, P)(S, Q)} @ [a] p`. With other letters it is a generator over tuples, unless
    /// there are processes among what it goes through.
    void classify_parallel(unsigned token) {
        constexpr std::array opening{T::LEFT_PARENTHESIS,  T::NAME,  T::COMMA,     T::NAME,
                                     T::RIGHT_PARENTHESIS, T::COLON, T::LEFT_BRACE};
        constexpr std::array closing{T::AT, T::LEFT_BRACKET, T::NAME, T::RIGHT_BRACKET, T::NAME};
        unsigned open = token;
        for (auto const expected : opening) {
            if (kind(++open) != expected) {
                return;
            }
        }
        unsigned close = m_partners[open];
        for (auto const expected : closing) {
            if (kind(++close) != expected) {
                return;
            }
        }
        TokenKind const inside = kind(open + 1);
        if (inside != T::LEFT_PARENTHESIS && inside != T::RIGHT_BRACE) {
            return;
        }
        std::array<std::pair<unsigned, char const*>, 4> const letters{
            {{token + 2, "a"}, {token + 4, "p"}, {close - 2, "a"}, {close, "p"}}};
        auto const is_right = [this](auto const& letter) {
            return m_list.text_of(letter.first) == letter.second;
        };
        if (!std::all_of(letters.begin(), letters.end(), is_right)) {
            if (!has_process(open)) {
                return;
            }
            for (auto const& letter : letters) {
                if (!is_right(letter)) {
                    m_diagnostics.push_back({m_list.location(letter.first),
                                             in_quotes(m_list.text_of(letter.first)) + " must be " +
                                                 in_quotes(letter.second) +
                                                 ": the letters of a replicated " +
                                                 "alphabetised parallel over pairs are fixed"});
                }
            }
        }
        m_tokens[token].kind = T::PAIRED_PARALLEL;
    }

    /// Whether what only processes have stands between a brace and its partner.
    bool has_process(unsigned open) const {
        for (unsigned token = open; token < m_partners[open]; ++token) {
            TokenKind const kind = m_tokens[token].kind;
            if (kind == T::STOP || kind == T::SKIP || kind == T::RUN || kind == T::CHAOS ||
                kind == T::ARROW ||
                (kind == T::LEFT_PARENTHESIS && this->kind(token - 1) == T::RIGHT_PARENTHESIS)) {
                return true;
            }
        }
        return false;
    }

    TokenList& m_list;
    std::vector<Token>& m_tokens;
    std::vector<unsigned> m_partners; // by token
    Diagnostics& m_diagnostics;
};

} // namespace

void classify(TokenList& list, Diagnostics& diagnostics) {
    Classification(list, diagnostics).run();
}

} // namespace Calder::Script
