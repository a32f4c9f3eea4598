#include "values/call_table.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace Calder::Values {
namespace {

std::vector<Value> arguments_of(unsigned call) {
    std::vector<Value> arguments(call % 4);
    for (std::size_t index = 0; index < arguments.size(); ++index) {
        arguments[index] = Value::small_integer(static_cast<std::int64_t>(call / 4 + index));
    }
    return arguments;
}

TEST(CallTable, numbers_calls_densely_and_keeps_their_arguments) {
    constexpr unsigned count = 20'000;
    CallTable table;
    EXPECT_EQ(table.find(0, {}), std::nullopt);
    std::vector<CallTable::Entry> entries;
    std::vector<std::span<Value const>> kept;
    for (unsigned call = 0; call < count; ++call) {
        auto const entry = table.insert(call % 3, arguments_of(call));
        if (entry.is_new) {
            EXPECT_EQ(entry.number, kept.size());
            kept.push_back(table.arguments(entry.number));
        }
        entries.push_back(entry);
    }
    EXPECT_EQ(table.size(), kept.size());
    // Of no arguments, there is one call for each definition.
    EXPECT_EQ(table.size(), count - count / 4 + 3);
    for (unsigned call = 0; call < count; ++call) {
        std::vector<Value> const arguments = arguments_of(call);
        EXPECT_EQ(table.find(call % 3, arguments), entries[call].number);
        EXPECT_EQ(table.definition(entries[call].number), call % 3);
        EXPECT_TRUE(std::ranges::equal(kept[entries[call].number], arguments));
        EXPECT_EQ(kept[entries[call].number].data(), table.arguments(entries[call].number).data());
    }
    EXPECT_EQ(table.find(3, arguments_of(1)), std::nullopt);
}

/// Neighbours have their places together, on both sides of zero and up to the last integers.
TEST(CallTable, tells_neighbours_apart) {
    CallTable table;
    constexpr std::int64_t most = (std::int64_t{1} << 60) - 1;
    unsigned count = 0;
    for (std::int64_t const middle : {-most + 10, std::int64_t{0}, most - 20}) {
        for (std::int64_t first = -2; first <= 2; ++first) {
            for (std::int64_t last = middle - 11; last <= middle + 20; ++last) {
                std::vector const call{Value::small_integer(first), Value::small_integer(last)};
                EXPECT_EQ(table.find(7, call), std::nullopt);
                EXPECT_EQ(table.insert(7, call).number, count);
                EXPECT_EQ(table.find(7, call), count);
                ++count;
            }
        }
    }
}

} // namespace
} // namespace Calder::Values
