#include "tests/values/program_builder.h"
#include "values/matching.h"

#include <gtest/gtest.h>

namespace Calder::Values {
namespace {

using Testing::ProgramBuilder;
using Testing::World;

TEST(Matcher, binds_what_fits) {
    World world;
    ProgramBuilder build(world);
    Value const data = world.store.find_name("data");
    Value const pair = world.store.find_name("pair");
    unsigned const x = build.binding(0);
    unsigned const y = build.binding(1);
    unsigned const anything = build.pattern(PatternKind::anything);
    auto const sequence = [&](std::vector<unsigned> const& parts) {
        return build.pattern(PatternKind::sequence, parts);
    };
    auto const front = [&](std::vector<unsigned> const& parts) {
        return build.pattern(PatternKind::front, parts);
    };
    auto const back = [&](std::vector<unsigned> const& parts) {
        return build.pattern(PatternKind::back, parts);
    };
    auto const dotted = [&](Value head, std::vector<unsigned> const& parts) {
        return build.pattern(PatternKind::dotted, parts, head);
    };
    struct Row {
        unsigned pattern;
        char const* value;
        char const* bound; // the two variables; nothing where it does not fit
    };
    Row const rows[] = {
        {anything, "3", "-, -"},
        {x, "<3>", "<3>, -"},
        {build.fixed("3"), "3", "-, -"},
        {build.fixed("3"), "4", ""},
        {build.pattern(PatternKind::tuple, {x, y}), "(1, <>)", "1, <>"},
        {build.pattern(PatternKind::tuple, {x, y}), "(1, 2, 3)", ""},
        {build.pattern(PatternKind::tuple, {x, y}), "<1, 2>", ""},
        {sequence({}), "<>", "-, -"},
        {sequence({}), "<1>", ""},
        {sequence({x, y}), "<1, 2>", "1, 2"},
        {sequence({x, y}), "(1, 2)", ""},
        {sequence({x, build.fixed("2")}), "<1, 3>", ""},
        {front({x, y}), "<1, 2, 3>", "1, <2, 3>"},
        {front({x, y}), "<1>", "1, <>"},
        {front({x, y}), "<>", ""},
        {front({x, anything, y}), "<1, 2, 3>", "1, <3>"},
        {front({x, front({y, anything})}), "<1, 2, 3>", "1, 2"},
        {front({x, y}), "{1, 2}", ""},
        {back({x, y}), "<1, 2, 3>", "<1, 2>, 3"},
        {back({x, y, anything}), "<1, 2, 3>", "<1>, 2"},
        {back({x, y, anything}), "<1>", ""},
        {dotted(data, {x}), "data.1", "1, -"},
        {dotted(data, {x}), "ack", ""},
        {dotted(data, {x}), "data", ""},
        {dotted(data, {x, y}), "data.1", ""},
        {dotted(data, {}), "data.1", ""},
        {dotted(data, {x}), "1", ""},
        {dotted(pair, {x, y}), "pair.data.0.ack", "data.0, ack"},
        {dotted(pair, {x, y}), "pair.ack.data.1", "ack, data.1"},
        {dotted(pair, {x}), "pair.ack.ack", ""},
        // Written out, and with a pattern in the place of a field.
        {dotted(pair, {build.pattern(PatternKind::constant, {}, data), x, y}), "pair.data.0.ack",
         "0, ack"},
        {dotted(pair, {y, dotted(data, {x})}), "pair.ack.data.1", "1, ack"},
        {dotted(pair, {y, dotted(data, {x})}), "pair.ack.ack", ""},
        {dotted(pair, {build.fixed("data.1"), x}), "pair.data.1.ack", "ack, -"},
        {dotted(pair, {build.fixed("data.1"), x}), "pair.data.0.ack", ""},
    };
    Matcher const matcher(build.program, world.store);
    for (Row const& row : rows) {
        std::vector<Value> slots(2);
        std::string bound;
        if (matcher.fits(row.pattern, world.read(row.value), slots)) {
            for (Value const slot : slots) {
                bound += (bound.empty() ? "" : ", ") + (slot ? world.text(slot) : "-");
            }
        }
        EXPECT_EQ(bound, row.bound) << "pattern " << row.pattern << ": " << row.value;
    }
}

} // namespace
} // namespace Calder::Values
