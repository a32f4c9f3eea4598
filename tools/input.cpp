#include "tools/input.h"

#include "script/diagnostics.h"
#include "script/suggestion.h"
#include "state_space/available_memory.h"
#include "state_space/memory.h"
#include "tools/address_space_bound.h"
#include "tools/command_error.h"

#include <fmt/core.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <new>
#include <optional>
#include <system_error>
#include <utility>

namespace Calder::Tools {

namespace {

/// So many names of a script are listed.
constexpr std::size_t most_listed = 10;

/// Standard input is closed like any other: nobody else reads it.
struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

/// The text of a file; of one that is too long no more than shows that. An error is in errno.
std::optional<std::string> contents_of(std::FILE* opened) {
    std::unique_ptr<std::FILE, CloseFile> const file(opened);
    std::string text;
    if (file) {
        char buffer[1 << 16];
        while (std::size_t const length = std::fread(buffer, 1, sizeof buffer, file.get())) {
            text.append(buffer, length);
            if (text.size() > Script::text_limit) {
                return text;
            }
        }
    }
    if (!file || std::ferror(file.get()) != 0) {
        return std::nullopt;
    }
    return text;
}

/// What a script includes stands beside it; `name` is that of the script.
Script::Inclusion include_file(std::string_view path, std::string_view from) {
    std::filesystem::path const relative(path);
    std::filesystem::path const file =
        (std::filesystem::path(from).parent_path() / relative).lexically_normal();
    std::optional<std::string> text = contents_of(std::fopen(file.c_str(), "rb"));
    if (!text) {
        return {{}, std::strerror(errno)};
    }
    return {{file.string(), std::move(*text)}};
}

/// "N=9"
std::pair<std::string, std::string> definition_of(std::string const& text) {
    std::size_t const equals = text.find('=');
    if (equals == std::string::npos || equals == 0 || equals + 1 == text.size()) {
        throw CommandError(
            fmt::format("--define wants NAME=VALUE, as in 'N=9', and not '{}'", text));
    }
    return {text.substr(0, equals), text.substr(equals + 1)};
}

/// A name is looked up, and what else there is told; anything more is read like the script.
bool is_name(std::string const& text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](unsigned char c) {
        return std::isalnum(c) != 0 || c == '_' || c == '\'';
    });
}

std::unique_ptr<Script::Script> read_script(Input const& input) {
    std::optional<std::string> text =
        contents_of(input.file == "-" ? stdin : std::fopen(input.file.c_str(), "rb"));
    if (!text) {
        throw CommandError(fmt::format("cannot read {}: {}", input.name(), std::strerror(errno)));
    }
    Script::ReadOptions options;
    for (std::string const& definition : input.definitions) {
        options.definitions.push_back(definition_of(definition));
    }
    options.process = is_name(input.process) ? "" : input.process;
    options.assertions = input.assertions;
    // However the script itself is called: what includes it again includes what is there already.
    options.include = [&](std::string_view path, std::string_view from) {
        Script::Inclusion found = include_file(path, from);
        std::error_code ignored;
        if (std::filesystem::equivalent(found.source.name, input.file, ignored)) {
            found.source.name = input.name();
        }
        return found;
    };
    Script::ReadResult result = Script::read_script({input.name(), std::move(*text)}, options);
    if (result.script) {
        return std::move(result.script);
    }
    throw ScriptErrors(std::move(result.diagnostics), std::move(result.sources));
}

/// What there is instead: of a short script all, of a long one what was meant.
Script::Wording known_names(Script::Script const& script, std::string const& wrong) {
    auto const& definitions = script.definitions();
    if (definitions.size() > most_listed) {
        unsigned budget = Script::suggestion_budget;
        Script::Suggestion suggestion(wrong, budget);
        for (Script::Script::Definition const& definition : definitions) {
            suggestion.consider(definition.name);
        }
        if (Script::Wording meant = suggestion.wording(); !meant.suggestion.empty()) {
            return meant;
        }
    }
    std::string names;
    std::size_t const listed = std::min(definitions.size(), most_listed);
    for (std::size_t index = 0; index < listed; ++index) {
        names += (index == 0 ? "; it defines: " : ", ") + definitions[index].name;
    }
    return listed == definitions.size()
               ? names
               : fmt::format("{} and {} more", names, definitions.size() - listed);
}

/// Throws ScriptErrors and CommandError.
std::unique_ptr<Script::Script> read_input(Input const& input, std::uint64_t max_memory) {
    try {
        AddressSpaceBound const bound(max_memory);
        return read_script(input);
    } catch (std::bad_alloc const&) {
        throw CommandError(
            fmt::format("{} was not read: the limit on memory was reached", input.name()),
            exit_stopped_early);
    }
}

/// The definition that the input names.
Script::Script::Definition const& chosen_process(Script::Script const& script, Input const& input) {
    if (script.asked() != nullptr) {
        return *script.asked();
    }
    if (script.definitions().empty()) {
        std::string_view const other = script.process_with_parameters();
        throw CommandError(other.empty() ? fmt::format("{} defines no process", input.name())
                                         : fmt::format("{} defines no process without parameters; "
                                                       "'{}' is asked for as in --process '{}(0)'",
                                                       input.name(), other, other));
    }
    if (input.process.empty()) {
        return script.definitions().back();
    }
    if (Script::Script::Definition const* const found = script.find(input.process)) {
        return *found;
    }
    if (std::string const reason = script.reason_against(input.process); !reason.empty()) {
        throw CommandError(fmt::format("--process: {}", reason));
    }
    throw CommandError(fmt::format("{} does not define '{}'", input.name(), input.process) +
                       known_names(script, input.process));
}

} // namespace

std::uint64_t default_memory_limit() {
    return StateSpace::resident_bytes() + StateSpace::available_bytes() / 10 * 9;
}

int run_with_script(Input const& input, ScriptWork const& work, std::uint64_t max_memory) {
    return work(*read_input(input, max_memory));
}

int run_with_process(Input const& input, ProcessWork const& work, std::uint64_t max_memory) {
    return run_with_script(
        input,
        [&](Script::Script const& script) { return work(script, chosen_process(script, input)); },
        max_memory);
}

} // namespace Calder::Tools
