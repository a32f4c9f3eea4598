#include "script/value_errors.h"

#include "values/text.h"

namespace Calder::Script {

namespace {

constexpr std::size_t notes_at_each_end = 5;

} // namespace

std::string text_of_call(Telling const& telling, unsigned definition,
                         std::span<Values::Value const> arguments) {
    return telling.program.definitions[definition].name +
           Values::short_text_of(telling.channels, arguments);
}

Note note_of_call(Telling const& telling, unsigned definition,
                  std::span<Values::Value const> arguments, Values::Place place, unsigned source) {
    Location const location = location_of(telling.tokens, telling.tree, place);
    std::string const file =
        location.source == source ? "" : (*telling.tokens.sources)[location.source].name + ":";
    return {"in " + text_of_call(telling, definition, arguments) + ", called at " + file +
                std::to_string(location.line) + ":" + std::to_string(location.column),
            location};
}

void fold(std::vector<Note>& notes) {
    if (notes.size() > 2 * notes_at_each_end + 1) {
        std::size_t const left_out = notes.size() - 2 * notes_at_each_end;
        auto const end = notes.end() - notes_at_each_end;
        notes.erase(notes.begin() + notes_at_each_end, end);
        notes.insert(notes.begin() + notes_at_each_end,
                     {"… " + std::to_string(left_out) + " more calls …"});
    }
}

Diagnostic diagnostic_of(Telling const& telling, Values::EvaluationError const& error) {
    Diagnostic diagnostic{location_of(telling.tokens, telling.tree, error.place()),
                          error.message()};
    for (Values::Call const& call : error.calls) {
        if (call.definition == Values::no_number) {
            diagnostic.notes.push_back({"… and so on …"});
        } else if (telling.program.definitions[call.definition].parameter_count > 0) {
            diagnostic.notes.push_back(note_of_call(telling, call.definition, call.arguments,
                                                    call.place, diagnostic.location.source));
        }
    }
    return diagnostic;
}

} // namespace Calder::Script
