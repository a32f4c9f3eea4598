#pragma once

namespace Calder::Tools {

/// How messages are written to standard error: for people, or a line of JSON each.
enum class ErrorFormat { text, json };

/// From now on. One setting for the whole program, because whatever ends it has something to say.
void choose_error_format(ErrorFormat format);
ErrorFormat error_format();

/// What the words of a command line ask for, before it is known whether they can be read: what is
/// wrong with them is told in that format, too.
ErrorFormat wanted_error_format(int count, char const* const* words);

} // namespace Calder::Tools
