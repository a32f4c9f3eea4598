#include "in_turns_process.h"

#include <calder/csp/prefix_process.h>
#include <calder/process_compiler/named_process_source.h>
#include <calder/process_compiler/session.h>
#include <calder/state_space/bisimulation.h>
#include <calder/state_space/exploration.h>
#include <calder/state_space/machine/machine_exploration.h>
#include <iostream>

using namespace Calder::ProcessCompiler;
using namespace Calder::StateSpace;

int main() {
    Session session;
    unsigned const ping = session.declare_event("ping");
    unsigned const pong = session.declare_event("pong");
    unsigned const smash = session.declare_event("smash");

    // LEFT = ping -> smash -> LEFT, RIGHT = pong -> RIGHT
    NamedProcessSource source;
    ProcessPointer const left = source.reference("LEFT");
    ProcessPointer const right = source.reference("RIGHT");
    source.define("LEFT", new CSP::PrefixProcess(ping, new CSP::PrefixProcess(smash, left)));
    source.define("RIGHT", new CSP::PrefixProcess(pong, right));
    ProcessPointer const game(new InTurns::InTurnsProcess(left, right));

    Printer printer(std::cout, &session);
    game->pretty_print(printer);
    printer << "\n";
    printer.flush();

    LabelledTransitionSystem const terms = explore(game, source).lts;
    for (StateNumber state = 0; state < terms.state_count(); ++state) {
        for (Transition const& step : terms.transitions(state)) {
            std::cout << state << " " << session.event_object(step.event)->name() << " "
                      << step.target << "\n";
        }
    }

    Run const machine = explore_by_machine(game, source, {}).run;
    if (!machine.refusal.empty() || !are_bisimilar(terms, machine.lts)) {
        std::cout << "the machine does something else " << machine.refusal << "\n";
        return 1;
    }
    std::cout << "the machine does the same in " << machine.state_count << " states\n";
}
