#pragma once

#include "tools/messages.h"

#include <cstdint>
#include <string>
#include <vector>

namespace CLI {
class App;
class Error;
class Validator;
} // namespace CLI

namespace Calder::Tools {

/// What an option accepts, and its words for what it does not.
CLI::Validator whole_number(std::uint64_t least, std::uint64_t most);
/// In any mixture of capitals; becomes the word as it stands here.
CLI::Validator one_of(std::vector<std::string> const& words);
CLI::Validator not_empty(std::string const& message = "the name is empty");

/// What is wrong with a command line, and where help is to be had.
Message command_line_error(CLI::App const& app, CLI::Error const& error);

} // namespace Calder::Tools
