#pragma once

#include "script/script.h"
#include "tests/support/printing.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace Calder::Script::Testing {

/// A line for each diagnostic: `LINE:COLUMN+LENGTH MESSAGE`.
inline std::string lines_of(Diagnostics const& diagnostics) {
    std::string text;
    for (Diagnostic const& diagnostic : diagnostics) {
        Location const& place = diagnostic.location;
        text += std::to_string(place.line) + ":" + std::to_string(place.column) + "+" +
                std::to_string(place.length) + " " + diagnostic.message + "\n";
    }
    return text;
}

/// The errors of a script; also checks that there are some exactly when there is no script.
inline std::string errors_of(std::string_view text) {
    ReadResult const result = read_script(text);
    EXPECT_EQ(result.script == nullptr, !result.diagnostics.empty());
    return lines_of(result.diagnostics);
}

/// The script of a text without errors.
inline std::unique_ptr<Script> script_of(std::string_view text) {
    ReadResult result = read_script(text);
    EXPECT_EQ(lines_of(result.diagnostics), "") << text.substr(0, 200);
    return std::move(result.script);
}

inline std::string printed_body(Script const& script, std::string_view name) {
    return ProcessCompiler::Testing::text_of(script.session(), *script.find(name)->body);
}

inline std::string repeated(std::string_view text, std::size_t times) {
    std::string all;
    all.reserve(text.size() * times);
    for (std::size_t i = 0; i < times; ++i) {
        all += text;
    }
    return all;
}

} // namespace Calder::Script::Testing
