#include "script/script_file.h"

#include "script/limits.h"
#include "script/suggestion.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace Calder::Script {

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
            if (text.size() > text_limit) {
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
Inclusion include_file(std::string_view path, std::string_view from) {
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
        throw ScriptFileError("--define wants NAME=VALUE, as in 'N=9', and not '" + text + "'");
    }
    return {text.substr(0, equals), text.substr(equals + 1)};
}

/// A name is looked up, and what else there is told; anything more is read like the script.
bool is_name(std::string const& text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](unsigned char c) {
        return std::isalnum(c) != 0 || c == '_' || c == '\'';
    });
}

/// What there is instead: of a short script all, of a long one what was meant.
Wording known_names(Script const& script, std::string const& wrong) {
    auto const& definitions = script.definitions();
    if (definitions.size() > most_listed) {
        unsigned budget = suggestion_budget;
        Suggestion suggestion(wrong, budget);
        for (Script::Definition const& definition : definitions) {
            suggestion.consider(definition.name);
        }
        if (Wording meant = suggestion.wording(); !meant.suggestion.empty()) {
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
               : names + " and " + std::to_string(definitions.size() - listed) + " more";
}

} // namespace

std::unique_ptr<Script> read_script_file(ScriptFile const& wanted) {
    std::optional<std::string> text =
        contents_of(wanted.file == "-" ? stdin : std::fopen(wanted.file.c_str(), "rb"));
    if (!text) {
        throw ScriptFileError("cannot read " + wanted.name() + ": " + std::strerror(errno));
    }
    ReadOptions options;
    for (std::string const& definition : wanted.definitions) {
        options.definitions.push_back(definition_of(definition));
    }
    options.process = is_name(wanted.process) ? "" : wanted.process;
    options.assertions = wanted.assertions;
    // However the script itself is called: what includes it again includes what is there already.
    options.include = [&](std::string_view path, std::string_view from) {
        Inclusion found = include_file(path, from);
        std::error_code ignored;
        if (std::filesystem::equivalent(found.source.name, wanted.file, ignored)) {
            found.source.name = wanted.name();
        }
        return found;
    };
    ReadResult result = read_script({wanted.name(), std::move(*text)}, options);
    if (result.script) {
        return std::move(result.script);
    }
    throw ScriptErrors(std::move(result.diagnostics), std::move(result.sources));
}

Script::Definition const& chosen_process(Script const& script, ScriptFile const& wanted) {
    if (script.asked() != nullptr) {
        return *script.asked();
    }
    if (script.definitions().empty()) {
        std::string const other(script.process_with_parameters());
        if (other.empty()) {
            throw ScriptFileError(wanted.name() + " defines no process");
        }
        throw ScriptFileError(wanted.name() + " defines no process without parameters; '" + other +
                              "' is asked for as in --process '" + other + "(0)'");
    }
    if (wanted.process.empty()) {
        return script.definitions().back();
    }
    if (Script::Definition const* const found = script.find(wanted.process)) {
        return *found;
    }
    if (std::string const reason = script.reason_against(wanted.process); !reason.empty()) {
        throw ScriptFileError("--process: " + reason);
    }
    throw ScriptFileError(wanted.name() + " does not define '" + wanted.process + "'" +
                          known_names(script, wanted.process));
}

} // namespace Calder::Script
