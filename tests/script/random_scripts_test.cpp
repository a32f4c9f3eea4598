#include "tests/script/reading.h"

#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <tuple>

namespace Calder::Script {
namespace {

/// What scripts are made of, and what they are not.
std::vector<std::string> pieces() {
    std::vector<std::string> all{"P = ",
                                 "Q = ",
                                 "channel ",
                                 " -> ",
                                 "\n",
                                 " ",
                                 "\t",
                                 "\r\n",
                                 "|| (a, p) : {(",
                                 ")} @ [a] p",
                                 "channel a, b : {0..1}\n",
                                 ":[deadlock free]",
                                 ":[has trace]: ",
                                 "assert P [T= Q\n"};
    std::istringstream words(
        "P Q a b.0 b tick tau STOP SKIP RUN CHAOS 0 01 4294967296 .. . , : @ ( ) { } {| |} [[ ]] "
        "<- <-> -> [ ] [| |] |> [] [> /\\ /+ +\\ [+ +] |~| || ||| \\ |\\ ; = -- {- -} é $ \xFF "
        "f(x) f(1) x <x>^s <1..3> {x|x<-S} let within if then else datatype include \"x\" true "
        "Bool "
        "head( union( Events not and or == != < <= > >= + - * / % ^ # ! ? & _ 9223372036854775808 "
        "assert [T= [F= [FD= :[ never deterministic");
    for (std::string word; words >> word;) {
        all.push_back(word);
    }
    return all;
}

/// Whether a place lies in the text; right behind a line counts as in it.
bool lies_in(Location const& place, std::string const& text) {
    std::size_t start = 0;
    for (unsigned line = 1; line < place.line; ++line) {
        start = text.find('\n', start) + 1;
        if (start == 0) {
            return false;
        }
    }
    std::size_t const bytes = std::min(text.find('\n', start), text.size()) - start;
    return place.line >= 1 && place.column >= 1 && place.length >= 1 &&
           place.column + place.length - 1 <= bytes + 1;
}

void check_reading(std::string const& text) {
    ReadResult const result = read_script(text);
    RC_ASSERT((result.script != nullptr) == result.diagnostics.empty());
    for (std::size_t number = 0; result.script && number < result.script->assertion_count();
         ++number) {
        RC_ASSERT(!result.script->assertions()[number].text.empty());
        try {
            RC_ASSERT(result.script->assertion(number).concrete != nullptr);
        } catch (ScriptError const& error) {
            RC_ASSERT(lies_in(error.diagnostic().location, text));
        }
    }
    for (Diagnostic const& diagnostic : result.diagnostics) {
        RC_ASSERT(lies_in(diagnostic.location, text));
        RC_ASSERT(!diagnostic.message.empty());
    }
    auto const place = [](Diagnostic const& d) {
        return std::tuple(d.location.line, d.location.column);
    };
    RC_ASSERT(std::is_sorted(
        result.diagnostics.begin(), result.diagnostics.end(),
        [&](Diagnostic const& a, Diagnostic const& b) { return place(a) < place(b); }));
    RC_ASSERT(render_all(result.diagnostics, result.sources).empty() == result.diagnostics.empty());
}

RC_GTEST_PROP(RandomScripts, soups_of_pieces_are_read_or_refused_with_a_place, ()) {
    static std::vector<std::string> const all = pieces();
    auto const drawn = *rc::gen::container<std::vector<std::string>>(rc::gen::elementOf(all));
    std::string text;
    for (std::string const& piece : drawn) {
        text += piece;
    }
    check_reading(text);
}

/// The words, operators and blanks of a text, in its order.
std::vector<std::string> tokens_of(std::string const& text) {
    auto const kind = [](char c) {
        auto const byte = static_cast<unsigned char>(c);
        return std::isalnum(byte) != 0 ? 0 : std::isspace(byte) != 0 ? 1 : 2;
    };
    std::vector<std::string> tokens;
    for (char const c : text) {
        if (tokens.empty() || kind(tokens.back().back()) != kind(c) || tokens.back().size() > 2) {
            tokens.emplace_back();
        }
        tokens.back() += c;
    }
    return tokens;
}

std::vector<std::vector<std::string>> examples() {
    std::vector<std::vector<std::string>> all;
    for (auto const& entry : std::filesystem::directory_iterator(CALDER_EXAMPLES)) {
        if (entry.path().extension() == ".csp") {
            std::ifstream file(entry.path());
            std::string const text{std::istreambuf_iterator<char>(file), {}};
            all.push_back(tokens_of(text.substr(text.find("\n\n") + 1)));
        }
    }
    return all;
}

RC_GTEST_PROP(RandomScripts, examples_with_slips_are_read_or_refused_with_a_place, ()) {
    static std::vector<std::vector<std::string>> const all = examples();
    auto tokens = *rc::gen::elementOf(all);
    for (int const slip : *rc::gen::container<std::vector<int>>(3, rc::gen::inRange(0, 3))) {
        auto const at =
            tokens.begin() + *rc::gen::inRange<std::ptrdiff_t>(0, std::ssize(tokens) - 1);
        switch (slip) {
        case 0: tokens.erase(at); break;
        case 1: tokens.insert(at, *at); break;
        default: std::iter_swap(at, at + 1); break;
        }
    }
    std::string text;
    for (std::string const& token : tokens) {
        text += token;
    }
    check_reading(text);
}

RC_GTEST_PROP(RandomScripts, any_bytes_are_read_or_refused_with_a_place, ()) {
    check_reading(*rc::gen::container<std::string>(rc::gen::arbitrary<char>()));
}

} // namespace
} // namespace Calder::Script
