#pragma once

#include "process_compiler/session.h"
#include "script/syntax_tree.h"
#include "script/token_list.h"

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Calder::Script {

/// One field of a channel: `{0..4}`.
struct Field {
    std::vector<std::string> values;
    std::unordered_map<std::string_view, unsigned> places; // of the values
};
using Fields = std::vector<Field>;

/// One name of one declaration. Its events have successive numbers, the last field running fastest.
struct Channel {
    Fields const* fields;
    unsigned first_number;
};

struct ChannelTable {
    /// A name may be declared more than once, with other fields.
    std::unordered_map<std::string_view, std::vector<Channel>> channels;
    std::vector<std::unique_ptr<Fields>> fields; // what the channels point to
    /// Also those that a declaration with an error should have declared.
    LostNames lost_names;
};

/// Declares the events of all declarations in the session, in the order of the script.
ChannelTable declare_events(TokenList const& tokens, SyntaxTree const& tree,
                            ProcessCompiler::Session& session, Diagnostics& diagnostics);

} // namespace Calder::Script
