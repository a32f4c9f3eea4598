#include "script/question_hints.h"

#include "script/error_surroundings.h"
#include "script/questions.h"

namespace Calder::Script {

namespace {

using Token = Parser::token;

constexpr char const* a_refinement = "a refinement is written 'P [T= Q', 'P [F= Q' or 'P [FD= Q'";
constexpr char const* a_question = "what is asked of one process is written 'P :[deadlock free]'";

bool is_refinement(TokenKind kind) {
    return kind == Token::REFINES_TRACES || kind == Token::REFINES_FAILURES ||
           kind == Token::REFINES_FAILURES_DIVERGENCES;
}

bool is_question(TokenKind kind) {
    return is_refinement(kind) || kind == Token::QUESTION_OPEN;
}

class QuestionReading : private ErrorSurroundings {
  public:
    QuestionReading(TokenList const& tokens, SyntaxErrorContext const& context)
        : ErrorSurroundings(tokens, context) {
        look_back();
    }

    std::optional<Hint> hint() const {
        using Try = std::optional<Hint> (QuestionReading::*)() const;
        for (Try const attempt : {&QuestionReading::of_outside, &QuestionReading::of_repetition,
                                  &QuestionReading::of_refinement, &QuestionReading::of_words,
                                  &QuestionReading::of_brackets, &QuestionReading::of_argument,
                                  &QuestionReading::of_second, &QuestionReading::of_missing}) {
            if (std::optional<Hint> found = (this->*attempt)()) {
                return found;
            }
        }
        return std::nullopt;
    }

  private:
    /// For what stands in front of the error.
    void look_back() {
        unsigned token = m_context.token;
        while (token > 0 && !ends_item(kind_at(--token))) {
            if (is_question(kind_at(token))) {
                m_question = token;
            }
        }
        if (kind_at(token) == Token::ASSERT) {
            m_assert = token;
        }
    }

    bool is_inside() const { return m_assert != no_token; }
    bool has_question() const { return m_question != no_token; }

    /// `P [T= Q`, `Q = P :[deadlock free]`
    std::optional<Hint> of_outside() const {
        bool const is_asked = kind(0) == Token::NAME && is_question(kind(1));
        if (!is_inside() && (is_question(kind(0)) || is_asked)) {
            return here(is_question(kind(0)) ? 0 : 1,
                        "a question stands behind 'assert', as in 'assert P [T= Q'");
        }
        return std::nullopt;
    }

    /// `assert assert P [T= Q`; of a text beside the script the first one is not written
    std::optional<Hint> of_repetition() const {
        if (kind(0) != Token::ASSERT || kind(-1) != Token::ASSERT) {
            return std::nullopt;
        }
        unsigned const line = m_tokens[at(-1)].line;
        if (line == 0) {
            return here(0, "write only what stands behind 'assert'");
        }
        return line == m_tokens[at(0)].line ? std::optional(here(0, "one 'assert' is enough"))
                                            : std::nullopt;
    }

    /// `P [R= Q`, `P [T = Q`, `P [= Q`, `P |= Q`, `P = Q`
    std::optional<Hint> of_refinement() const {
        if (kind(0) == Token::EQUALS && kind(-1) == Token::NAME &&
            kind(-2) == Token::LEFT_BRACKET) {
            std::string const written = "[" + std::string(text(-1)) + "=";
            bool const is_one = written == "[T=" || written == "[F=" || written == "[FD=";
            return here(-2, is_one ? "write " + in_quotes(written) + " without blanks"
                                   : "there is no refinement " + in_quotes(written) + ": " +
                                         a_refinement);
        }
        if (kind(0) == Token::EQUALS && kind(-1) == Token::LEFT_BRACKET) {
            return here(-1, a_refinement);
        }
        if (is_inside() && kind(0) == Token::BAR && kind(1) == Token::EQUALS) {
            return here(0, a_refinement);
        }
        if (is_inside() && kind(0) == Token::EQUALS && m_context.follows_term) {
            return here(0, "that two processes are the same is asked twice, by 'P [FD= Q' and "
                           "'Q [FD= P'");
        }
        return std::nullopt;
    }

    /// `:[deadlock-free]`, `:[deadlock free [F]]`, `: [deadlock free]`
    std::optional<Hint> of_words() const {
        if (is_inside() && kind(0) == Token::COLON && kind(1) == Token::LEFT_BRACKET) {
            return here(0, "write ':[' without a blank");
        }
        if (!has_question() || kind_at(m_question) != Token::QUESTION_OPEN) {
            return std::nullopt;
        }
        unsigned end = m_question + 1;
        std::string words;
        for (; kind_at(end) == Token::NAME || kind_at(end) == Token::MINUS; ++end) {
            bool const is_apart =
                !words.empty() && kind_at(end) == Token::NAME && kind_at(end - 1) == Token::NAME;
            words += is_apart ? " " : "";
            words += m_tokens.text_of(end);
        }
        if (m_context.token > end) {
            return std::nullopt;
        }
        if (QuestionEntry const* const entry = find_question(words)) {
            bool const has_model =
                kind_at(end) == Token::LEFT_BRACKET && kind_at(end + 1) == Token::NAME;
            return has_model ? std::optional(Hint{end, "no model stands in a question: write " +
                                                           in_quotes(example_of(*entry))})
                             : std::nullopt;
        }
        Wording message = unknown_question(words);
        if (end > m_question + 2) {
            message.suggestion.clear(); // it is for all the words, and one of them is pointed at
        }
        return Hint{m_question + 1, std::move(message)};
    }

    /// `P [T Q`, `P [T=] Q`, `P [: deadlock free]`, `P [deadlock free]`, `P :deadlock free`
    std::optional<Hint> of_brackets() const {
        if (!is_inside()) {
            return std::nullopt;
        }
        if (kind(0) == Token::RIGHT_BRACKET && is_refinement(kind(-1))) {
            return here(-1, a_refinement);
        }
        bool const is_colon = kind(0) == Token::COLON && !has_question();
        if (is_colon && (m_context.follows_term || kind(-1) == Token::LEFT_BRACKET)) {
            return here(0, a_question);
        }
        if (!has_question() && kind(-1) == Token::NAME && kind(-2) == Token::LEFT_BRACKET) {
            std::string_view const word = text(-1);
            if (word == "T" || word == "F" || word == "FD") {
                return here(-2, a_refinement);
            }
            return kind(0) == Token::NAME ? std::optional(here(-2, a_question)) : std::nullopt;
        }
        return std::nullopt;
    }

    /// `:[has trace]: ` and nothing, `:[has trace] <a>`
    std::optional<Hint> of_argument() const {
        unsigned const close = m_context.token - (kind(-1) == Token::COLON ? 2 : 1);
        if (!has_question() || kind_at(close) != Token::RIGHT_BRACKET || m_question > close ||
            ends_item(kind(0)) != (kind(-1) == Token::COLON)) {
            return std::nullopt;
        }
        std::string words;
        for (unsigned token = m_question + 1; token < close; ++token) {
            words += (words.empty() ? "" : " ") + std::string(m_tokens.text_of(token));
        }
        QuestionEntry const* const entry = find_question(words);
        bool const has_argument = entry != nullptr && entry->argument != QuestionArgument::nothing;
        return has_argument ? std::optional(Hint{close, missing_argument(*entry)}) : std::nullopt;
    }

    /// `P [T= Q :[deadlock free]`, `P [T= Q [T= R`
    std::optional<Hint> of_second() const {
        if (is_inside() && has_question() && is_question(kind(0))) {
            return here(0, "an assertion asks one question: this one needs an 'assert' of its own");
        }
        return std::nullopt;
    }

    /// `assert P`
    std::optional<Hint> of_missing() const {
        if (is_inside() && !has_question() && m_context.follows_term && ends_item(kind(0))) {
            return Hint{m_tokens.written(m_assert),
                        "this asks nothing: write, for example, 'assert P "
                        "[T= Q' or 'assert P :[deadlock free]'"};
        }
        return std::nullopt;
    }

    static constexpr unsigned no_token = ~0U;

    unsigned m_assert = no_token;   // of the assertion around the error
    unsigned m_question = no_token; // the first one in it, in front of the error
};

} // namespace

std::optional<Hint> question_hint(TokenList const& tokens, SyntaxErrorContext const& context) {
    return QuestionReading(tokens, context).hint();
}

} // namespace Calder::Script
