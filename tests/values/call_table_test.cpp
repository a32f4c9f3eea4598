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

} // namespace
} // namespace Calder::Values
