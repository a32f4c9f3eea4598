#include "script/builtins.h"

#include <algorithm>
#include <array>

namespace Calder::Script {

namespace {

using Kind = Builtin::Kind;
using Values::Operation;

constexpr std::array builtins{
    Builtin{"true", Kind::truth, {}, 0, true},
    Builtin{"false", Kind::truth},
    Builtin{"Bool", Kind::truth_values},
    Builtin{"Events", Kind::events},
    Builtin{"head", Kind::function, Operation::head, 1},
    Builtin{"tail", Kind::function, Operation::tail, 1},
    Builtin{"null", Kind::function, Operation::is_null, 1},
    Builtin{"elem", Kind::function, Operation::is_element, 2},
    Builtin{"concat", Kind::function, Operation::concat, 1},
    Builtin{"union", Kind::function, Operation::set_union, 2},
    Builtin{"inter", Kind::function, Operation::intersection, 2},
    Builtin{"diff", Kind::function, Operation::difference, 2},
    Builtin{"member", Kind::function, Operation::is_member, 2},
    Builtin{"card", Kind::function, Operation::cardinality, 1},
    Builtin{"empty", Kind::function, Operation::is_empty, 1},
    Builtin{"Union", Kind::function, Operation::big_union, 1},
    Builtin{"Inter", Kind::function, Operation::big_intersection, 1},
    Builtin{"Set", Kind::function, Operation::power_set, 1},
    Builtin{"seq", Kind::function, Operation::sequence_of, 1},
    Builtin{"set", Kind::function, Operation::set_of, 1},
};

} // namespace

Builtin const* find_builtin(std::string_view name) {
    auto const found = std::find_if(builtins.begin(), builtins.end(),
                                    [&](Builtin const& each) { return each.name == name; });
    return found == builtins.end() ? nullptr : &*found;
}

std::vector<std::string_view> builtin_names() {
    std::vector<std::string_view> names(builtins.size());
    std::transform(builtins.begin(), builtins.end(), names.begin(),
                   [](Builtin const& each) { return each.name; });
    return names;
}

} // namespace Calder::Script
