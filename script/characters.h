#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Calder::Script {

/// The length in bytes of the UTF-8 sequence that `text` begins with; 0 when it is empty or begins
/// with anything else (The Unicode Standard, table 3-7, "Well-Formed UTF-8 Byte Sequences").
std::size_t sequence_length(std::string_view text);

/// Whether a whole UTF-8 sequence can be shown as it is: it is no control character.
bool is_printable(std::string_view sequence);

/// A whole UTF-8 sequence as it stands in a message: `'§'`, or `U+0007` when it cannot be shown.
std::string character_name(std::string_view sequence);

/// 3 when the text begins with a byte order mark, which is no part of its first line, otherwise 0.
std::size_t byte_order_mark_length(std::string_view text);

} // namespace Calder::Script
