#pragma once

#include <string>

namespace Calder::ProcessCompiler::CSP {

// Every construct file has its own copies, built when the library is loaded; no printer of this
// library writes them.
namespace {

[[maybe_unused]] std::string const reset_colour = "\x1b[m";
[[maybe_unused]] std::string const green_colour = "\x1b[32m";
[[maybe_unused]] std::string const red_colour = "\x1b[31m";

} // namespace

} // namespace Calder::ProcessCompiler::CSP
