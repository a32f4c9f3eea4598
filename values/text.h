#pragma once

#include "values/value.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace Calder::Values {

class ChannelTable;

/// As it is written, and can be read again: `-3`, `data.0`, `(1, <true>)`, `{ -1, 2}`, `take.0`.
/// A ValueError when it has more than `longest_text` characters.
std::string text_of(ChannelTable const& channels, Value value);

/// The same, but of what is longer only the first characters, and `…`. Takes no longer than that.
std::string short_text_of(ChannelTable const& channels, Value value, std::size_t characters);
/// For messages.
std::string short_text_of(ChannelTable const& channels, Value value);

/// `up.0.1`: a name with components, in full and for messages.
std::string text_of(ChannelTable const& channels, std::string_view name,
                    std::span<Value const> components);
std::string short_text_of(ChannelTable const& channels, std::string_view name,
                          std::span<Value const> components);

/// `(3, <>)`, each argument cut short for messages; nothing of none.
std::string short_text_of(ChannelTable const& channels, std::span<Value const> arguments);

/// "an integer", "a sequence": what a value is, for messages.
std::string_view name_of(Value::Kind kind);

} // namespace Calder::Values
