// Half of the inputs that the fuzzer tries are made here, from tokens, and not from bytes: far more of them are
// scripts that can be read.

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t most);

namespace {

/// What may stand for each other.
enum class Kind : unsigned char { blank, process_name, other_name, number, symbol };

struct Token {
    Kind kind;
    std::size_t start;
    std::size_t end;
};

Kind kind_of(char c) {
    auto const byte = static_cast<unsigned char>(c);
    if (std::isspace(byte) != 0) {
        return Kind::blank;
    }
    if (std::isdigit(byte) != 0) {
        return Kind::number;
    }
    if (std::isalpha(byte) != 0 || c == '_') {
        return std::isupper(byte) != 0 ? Kind::process_name : Kind::other_name;
    }
    return Kind::symbol;
}

/// Only as exact as is useful: symbols are told apart by blanks and brackets.
std::vector<Token> tokens_of(std::string_view text) {
    constexpr std::string_view brackets = "(){}";
    std::vector<Token> tokens;
    for (std::size_t start = 0, end = 0; start < text.size(); start = end) {
        Kind const kind = kind_of(text[start]);
        bool const is_name = kind == Kind::process_name || kind == Kind::other_name;
        bool const is_bracket = brackets.find(text[start]) != brackets.npos;
        end = start + 1;
        while (end < text.size() && !is_bracket && brackets.find(text[end]) == brackets.npos &&
               (is_name ? std::isalnum(static_cast<unsigned char>(text[end])) != 0
                        : kind_of(text[end]) == kind)) {
            ++end;
        }
        tokens.push_back({kind, start, end});
    }
    return tokens;
}

/// A text that is made from another and from parts of a second, which may be the same.
class Mutation {
  public:
    Mutation(std::string_view text, std::string_view donor, unsigned seed)
        : m_text(text), m_donor(donor), m_random(seed) {}

    std::string result() {
        auto const tokens = tokens_of(m_text);
        auto const parts = tokens_of(m_donor);
        if (tokens.empty() || parts.empty()) {
            return std::string(m_text);
        }
        Token const& token = tokens[below(tokens.size())];
        std::size_t const end = end_of_span(m_text, token);
        std::string_view const before = m_text.substr(0, token.start);
        std::string_view const after = m_text.substr(end);
        std::string_view const old = m_text.substr(token.start, end - token.start);
        switch (below(8)) {
        case 0: return joined({before, after});
        case 1: return joined({before, old, " ", old, after});
        case 2: return joined({before, "(", old, ")", after});
        case 3: return joined({before, old, " ", part_like(token, parts), after});
        default: return joined({before, part_like(token, parts), after});
        }
    }

  private:
    std::size_t below(std::size_t limit) { return m_random() % limit; }

    static std::string joined(std::initializer_list<std::string_view> pieces) {
        std::string text;
        for (std::string_view const piece : pieces) {
            text += piece;
        }
        return text;
    }

    /// The token alone, what its bracket encloses, or the rest of its line.
    std::size_t end_of_span(std::string_view text, Token const& token) {
        char const first = text[token.start];
        if ((first == '(' || first == '{') && below(4) > 0) {
            char const last = first == '(' ? ')' : '}';
            std::size_t depth = 0;
            for (std::size_t at = token.start; at < text.size(); ++at) {
                depth += text[at] == first ? 1U : 0U;
                depth -= text[at] == last ? 1U : 0U;
                if (depth == 0) {
                    return at + 1;
                }
            }
        }
        if (below(8) == 0) {
            return std::min(text.find('\n', token.start), text.size());
        }
        return token.end;
    }

    /// Of the same kind, if it soon finds one.
    std::string_view part_like(Token const& token, std::vector<Token> const& parts) {
        Token const* part = &parts[below(parts.size())];
        for (int attempt = 0; attempt < 20 && part->kind != token.kind; ++attempt) {
            part = &parts[below(parts.size())];
        }
        return m_donor.substr(part->start, end_of_span(m_donor, *part) - part->start);
    }

    std::string_view m_text;
    std::string_view m_donor;
    std::minstd_rand m_random;
};

std::string_view view(std::uint8_t const* data, std::size_t size) {
    return {reinterpret_cast<char const*>(data), size};
}

std::size_t put(std::string const& text, std::uint8_t* data, std::size_t most) {
    std::size_t const size = std::min(text.size(), most);
    std::copy_n(text.begin(), size, data);
    return size;
}

} // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t most, unsigned seed) {
    if (seed % 2 == 0) {
        return LLVMFuzzerMutate(data, size, most);
    }
    std::string const text(view(data, size));
    return put(Mutation(text, text, seed).result(), data, most);
}

extern "C" std::size_t LLVMFuzzerCustomCrossOver(std::uint8_t const* left, std::size_t left_size,
                                                 std::uint8_t const* right, std::size_t right_size,
                                                 std::uint8_t* data, std::size_t most,
                                                 unsigned seed) {
    Mutation mutation(view(left, left_size), view(right, right_size), seed);
    return put(mutation.result(), data, most);
}
