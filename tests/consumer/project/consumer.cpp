// A term made in C++, printed, explored both ways and asked about; then a script.

#include <calder/csp/external_choice_process.h>
#include <calder/csp/interleave_process.h>
#include <calder/csp/prefix_process.h>
#include <calder/process_compiler/named_process_source.h>
#include <calder/process_compiler/session.h>
#include <calder/refinement/questions.h>
#include <calder/script/script.h>
#include <calder/state_space/exploration.h>
#include <calder/state_space/machine/machine_exploration.h>
#include <iostream>

using namespace Calder::ProcessCompiler;
namespace StateSpace = Calder::StateSpace;
namespace Refinement = Calder::Refinement;

int main() {
    Session session;
    NamedProcessSource const nobody;
    ProcessPointer const stop(new CSP::ExternalChoiceProcess(0U));
    ProcessPointer const a(new CSP::PrefixProcess(session.declare_event("a"), stop));
    ProcessPointer const b(new CSP::PrefixProcess(session.declare_event("b"), stop));
    ProcessPointer const both(
        new CSP::InterleaveProcess(Calder::OwningArray<ProcessPointer>{a, b}));

    {
        Printer printer(std::cout, &session);
        both->pretty_print(printer);
        printer << "\n";
    }

    StateSpace::Exploration const explored = StateSpace::explore(both, nobody);
    StateSpace::MachineExploration const ran = StateSpace::explore_by_machine(both, nobody, {});
    std::cout << explored.lts.state_count() << " states, " << explored.lts.transition_count()
              << " transitions; " << ran.run.state_count << " by a machine of "
              << StateSpace::start_leaves(ran).size() << "\n";

    Refinement::Answer const answer =
        Refinement::refinement(a, both, Refinement::Model::traces, nobody);
    std::cout << "b comes unexpectedly: " << (answer.evidence.event == session.event_number("b"))
              << "\n";

    Calder::Script::ReadResult const read = Calder::Script::read_script("P = a -> P\n");
    std::cout << Calder::Script::render_all(read.diagnostics, read.sources);
}
