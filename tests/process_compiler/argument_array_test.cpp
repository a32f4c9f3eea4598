#include "process_compiler/argument_array.h"
#include "tests/support/fake_process.h"

#include <gtest/gtest.h>

namespace Calder::ProcessCompiler {
namespace {

using Testing::FakeProcess;

/// Keeps its code when asked, as the constructs do.
struct Keeping : FakeProcess {
    explicit Keeping(std::uint64_t code) : FakeProcess("keeping") { hash = code; }
    std::uint64_t hash_code() const override {
        return m_hash.get([this] { return hash; });
    }
};

ProcessPointer asked(std::uint64_t code) {
    ProcessPointer term(new Keeping(code));
    term->hash_code();
    return term;
}

TEST(SuccessorHash, is_that_of_the_array_with_one_argument_replaced) {
    for (std::size_t length : {1U, 2U, 3U, 7U}) {
        OwningArray<ProcessPointer> arguments(length);
        for (std::size_t i = 0; i < length; ++i) {
            arguments[i] = asked(10 + 2 * i);
        }
        SuccessorHash codes(arguments);
        auto const expect_at = [&](std::size_t index) {
            for (std::uint64_t const code : {100U, 102U}) {
                ProcessPointer const replacement = asked(code);
                EXPECT_EQ(
                    codes.with(index, replacement),
                    hash_arguments(OwningArray<ProcessPointer>(arguments, index, replacement)))
                    << index << " of " << length;
            }
        };
        for (std::size_t index = 0; index < length; ++index) {
            expect_at(index);
        }
        for (std::size_t index = length; index-- > 0;) {
            expect_at(index);
        }
    }
}

TEST(SuccessorHash, asks_nobody_who_keeps_no_code) {
    struct Unasked : FakeProcess {
        Unasked() : FakeProcess("unasked") {}
        std::uint64_t hash_code() const override {
            ADD_FAILURE() << "asked";
            return 2;
        }
    };
    ProcessPointer const unasked(new Unasked);
    struct {
        char const* where;
        OwningArray<ProcessPointer> arguments;
        ProcessPointer replacement;
        bool is_known;
    } const rows[] = {
        {"before", {unasked, asked(2), asked(4)}, asked(6), false},
        {"in its place", {asked(2), unasked, asked(4)}, asked(6), true},
        {"behind", {asked(2), asked(4), unasked}, asked(6), false},
        {"the replacement", {asked(2), asked(4), asked(8)}, unasked, false},
        {"null", {asked(2), asked(4), nullptr}, asked(6), false},
    };
    for (auto const& row : rows) {
        SuccessorHash codes(row.arguments);
        for (int time = 0; time < 2; ++time) {
            EXPECT_EQ(codes.with(1, row.replacement).has_value(), row.is_known) << row.where;
        }
    }
}

} // namespace
} // namespace Calder::ProcessCompiler
