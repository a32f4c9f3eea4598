#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace Calder::Script {

/// One text of a script: a file, or what the command line adds.
struct Source {
    /// As messages name it.
    std::string name;
    /// As it was read, in UTF-8.
    std::string text;
    /// 0 for a text whose first line nobody wrote.
    unsigned first_line = 1;
};

/// All texts of one script by their number; the first one is the script asked for.
using Sources = std::vector<Source>;

/// What became of an `include`.
struct Inclusion {
    /// What was read, under the name that tells it apart from others.
    Source source;
    /// Why there is no source; empty when there is.
    std::string error{};
};

/// Reads the file of this path, relative to the source of that name. The name of what it returns
/// tells whether a file has been read already.
using Include = std::function<Inclusion(std::string_view path, std::string_view from)>;

} // namespace Calder::Script
