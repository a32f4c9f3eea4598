// Protocols of examples/ against what their users should see, in the three models.

#include "benchmarks/questions.h"
#include "script/script.h"

#include <fstream>
#include <iterator>

namespace Calder::Benchmarks {
namespace {

using Refinement::Model;
using Refinement::Verdict;

struct Protocol {
    char const* name;
    char const* file;
    std::vector<std::pair<std::string, std::string>> definitions;
    /// What is asked, behind what the file says.
    char const* text;
    /// Whether it never goes round silently; in traces and failures all of them hold.
    bool settles;
};

/// Loses no two messages in a row, so that a sender which repeats one gets through.
constexpr char const* fair_wires =
    "FAIR(from, to) = from?m -> (to!m -> FAIR(from, to) |~| from?n -> to!n -> FAIR(from, to))\n";

/// A buffer of that size: must accept when it is empty, must deliver when it is not, and may do more.
constexpr char const* buffer = "LOOSE(s) = if #s == 0 then MORE(s)\n"
                               "           else (deliver!head(s) -> LOOSE(tail(s)))\n"
                               "                [] (if #s < W then MORE(s) |~| STOP else STOP)\n"
                               "MORE(s) = accept?v -> LOOSE(s ^ <v>)\n"
                               "A = LOOSE(<>)\n";

std::vector<Protocol> const& protocols() {
    static std::string const fair_bit =
        std::string(fair_wires) +
        "A = BUFFER\n"
        "C = ((READY(0) ||| EXPECTING(0)) [| Inside |]"
        "     (FAIR(send, receive) ||| FAIR(answer, confirm))) \\ Inside\n";
    static std::string const window = std::string(buffer) + "C = PROTOCOL";
    static std::vector<Protocol> const all{
        {"alternating_bit", "alternating_bit.csp", {{"D", "8"}}, "A = BUFFER C = PROTOCOL", false},
        {"alternating_bit_fair", "alternating_bit.csp", {{"D", "8"}}, fair_bit.c_str(), true},
        {"sliding_window", "sliding_window.csp", {{"W", "3"}, {"M", "4"}}, window.c_str(), false},
        {"scheduler",
         "scheduler.csp",
         {{"N", "12"}},
         "A = TURNS(0) C = SCHEDULER \\ {| finish |}",
         true},
    };
    return all;
}

void refinement(benchmark::State& state, Protocol const& protocol, Model model) {
    std::ifstream file(std::string(CALDER_EXAMPLES) + protocol.file);
    std::string text(std::istreambuf_iterator<char>(file), {});
    Script::ReadOptions options;
    options.definitions = protocol.definitions;
    auto const read = Script::read_script({protocol.file, text + "\n" + protocol.text}, options);
    if (!read.script) {
        state.SkipWithError("the script cannot be read");
        return;
    }
    bool const holds = protocol.settles || model != Model::failures_divergences;
    measure_question(state, holds ? Verdict::holds : Verdict::fails, [&] {
        return Refinement::refinement(read.script->find("A")->term, read.script->find("C")->term,
                                      model, read.script->processes());
    });
}

bool const are_registered = [] {
    constexpr std::pair<char const*, Model> models[] = {
        {"traces", Model::traces},
        {"failures", Model::failures},
        {"failures_divergences", Model::failures_divergences}};
    for (Protocol const& protocol : protocols()) {
        for (auto const& [name, model] : models) {
            benchmark::RegisterBenchmark((std::string(protocol.name) + "/" + name).c_str(),
                                         [&protocol, model = model](benchmark::State& state) {
                                             refinement(state, protocol, model);
                                         })
                ->Unit(benchmark::kMillisecond);
        }
    }
    return true;
}();

} // namespace
} // namespace Calder::Benchmarks
