#pragma once

#include "script/export.h"
#include "script/sources.h"
#include "script/wording.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Calder::Script {

/// A place in a script. The first three are at least 1 and count characters (code points, or bytes that
/// belong to none), not bytes. What is missing at the end of a script is placed right behind its
/// last token.
struct Location {
    /// Of the source; the first one is 1.
    unsigned line;
    /// In its line; the first one is 1.
    unsigned column;
    /// How far the caret and its tail reach.
    unsigned length;
    /// The number of the source.
    unsigned source = 0;

    /// Member by member.
    bool operator==(Location const&) const = default;
};

/// A line below what is wrong: a call that led there.
struct Note {
    /// Such as "in P(3), called at 2:15".
    std::string text;
    /// Where the call stands; the text says it, too. None in the line for calls that are left out.
    std::optional<Location> location{};

    /// Member by member.
    bool operator==(Note const&) const = default;
};

/// What is wrong with a script, in words for the person who wrote it.
struct Diagnostic {
    /// Where the caret stands.
    Location location;
    /// Without the place, which `render` tells.
    std::string message;
    /// Of what only values show, the innermost call first; otherwise none.
    std::vector<Note> notes{};
    /// What the message asks about with "did you mean", to be written in the place of what stands at the
    /// location; empty where it does not ask.
    std::string suggestion{};

    /// Member by member.
    bool operator==(Diagnostic const&) const = default;
};

/// What is wrong with a script and what it includes.
using Diagnostics = std::vector<Diagnostic>;

/// Without notes; with its suggestion, if it has one.
CALDER_SCRIPT_EXPORT Diagnostic diagnostic_at(Location const& location, Wording wording);

/// The diagnostic as three lines for a terminal, and a line for each note:
///
///     table.csp:3:12: error: the event 'eet' is not declared; did you mean 'eat'?
///     PHIL = eat -> eet -> PHIL
///                   ^~~
///
/// Tabs are kept in both lines, so that the caret stands in its place however wide they are; what
/// cannot be shown stands as U+FFFD. Of a long line only the part around the caret is shown. Each
/// call goes through the text up to the place.
CALDER_SCRIPT_EXPORT std::string render(Diagnostic const& diagnostic, Sources const& sources);

/// So many are told in full: more is more than anybody reads.
constexpr std::size_t most_told = 20;

/// The renderings of the first most_told, one after the other, and a line that says how many more
/// there are. Diagnostics in order of place cost one pass over the text in all.
CALDER_SCRIPT_EXPORT std::string render_all(Diagnostics const& diagnostics, Sources const& sources);

/// Part of a script as it stands in a message: between single quotes, and cut when it is long.
CALDER_SCRIPT_EXPORT std::string in_quotes(std::string_view text);

/// By source and place, and each once.
CALDER_SCRIPT_EXPORT void sort_and_remove_repetitions(Diagnostics& diagnostics);

} // namespace Calder::Script
