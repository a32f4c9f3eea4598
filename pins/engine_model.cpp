#include "pins/engine_model.h"

#include "process_compiler/event_numbers.h"

#include <algorithm>
#include <deque>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Calder::Pins {

namespace {

/// The distributed engine takes no vectors that are shorter: a machine of one column gets a slot more,
/// which is always 0.
constexpr std::size_t least_slots = 2;

/// The symbolic engine breaks down, or finds no deadlock, where there are none: a machine that can do
/// nothing gets a group that touches nothing and has no steps.
constexpr std::size_t least_groups = 1;

std::size_t slots_of(VectorMachine const& machine) {
    return std::max(machine.columns().size(), least_slots);
}

/// What the engine's model keeps for us.
struct Context {
    explicit Context(CompiledScript of)
        : compiled(std::move(of)), machine(*compiled.model.vectors) {}

    CompiledScript compiled;
    VectorMachine const& machine;
    /// One for each call that has not returned yet.
    std::deque<VectorMachine::Scratch> scratches{};
    std::size_t calls = 0;
    /// The engine's numbers of the events, by their places.
    std::vector<int> labels{};
    /// Of the state label; read only where there is one.
    std::uint32_t ended_column = 0;
};

Context& context_of(model_t model) {
    return *static_cast<Context*>(GBgetContext(model));
}

/// What a call of the engine finds steps with. It may come while another one tells of its own: a property
/// that asks whether an event is possible asks that of a successor as soon as it is told of it.
class Call {
  public:
    explicit Call(Context& context) : m_context(context) {
        if (m_context.calls == m_context.scratches.size()) {
            m_context.scratches.emplace_back();
        }
        ++m_context.calls;
    }
    ~Call() { --m_context.calls; }
    Call(Call const&) = delete;
    Call& operator=(Call const&) = delete;

    VectorMachine::Scratch& scratch() const { return m_context.scratches[m_context.calls - 1]; }

  private:
    Context& m_context;
};

/// Nothing is thrown through the engine's frames.
template <typename Work> int guarded(Work const& work) noexcept {
    try {
        return work();
    } catch (...) {
        end_with_current_exception();
    }
}

/// Who is to be told of a step, and what.
struct Receiver {
    Context const& of;
    TransitionCB tell;
    void* context;

    /// Of successors that have some of the columns.
    VectorMachine::StepTaker short_taker() { return {pass_on, this}; }
    /// Of those that have all of them.
    VectorMachine::StepTaker long_taker() {
        bool const is_short = of.machine.columns().size() < least_slots;
        return {is_short ? pass_on_longer : pass_on, this};
    }

    /// All that is written is in the successor, so the engine is told of no copied columns.
    static void pass_on(void* receiver, int label, int group, int* successor) {
        auto const& self = *static_cast<Receiver const*>(receiver);
        int number = self.of.labels[static_cast<std::size_t>(label)];
        transition_info_t step = GB_TI(&number, group);
        self.tell(self.context, &step, successor, nullptr);
    }

    static void pass_on_longer(void* receiver, int label, int group, int* successor) {
        int longer[least_slots] = {};
        std::copy_n(successor, static_cast<Receiver const*>(receiver)->of.machine.columns().size(),
                    longer);
        pass_on(receiver, label, group, longer);
    }
};

int next_all(model_t model, int* state, TransitionCB tell, void* told) {
    Context& context = context_of(model);
    Receiver receiver{context, tell, told};
    return guarded([&] {
        Call const call(context);
        return context.machine.for_all_steps(state, call.scratch(), receiver.long_taker());
    });
}

/// Those that ask one group have the same shape.
using StepsOfGroup = int (VectorMachine::*)(std::size_t, int const*, VectorMachine::Scratch&,
                                            VectorMachine::StepTaker) const;

using TakerOfGroup = VectorMachine::StepTaker (Receiver::*)();

template <StepsOfGroup steps, TakerOfGroup taker>
int next_of(model_t model, int group, int* state, TransitionCB tell, void* told) {
    Context& context = context_of(model);
    auto const number = static_cast<std::size_t>(group);
    if (number >= context.machine.groups().size()) {
        return 0;
    }
    Receiver receiver{context, tell, told};
    return guarded([&] {
        Call const call(context);
        return (context.machine.*steps)(number, state, call.scratch(), (receiver.*taker)());
    });
}

int ended_of_state(model_t model, int, int* state) {
    return state[context_of(model).ended_column];
}

/// A short state has the columns of its row in the matrix of labels, of which there is one.
int ended_of_short_state(model_t, int, int* state) {
    return state[0];
}

/// The engine frees it, as C.
matrix_t* new_matrix(std::size_t rows, std::size_t columns) {
    auto* const matrix = static_cast<matrix_t*>(std::malloc(sizeof(matrix_t)));
    if (matrix == nullptr) {
        throw std::bad_alloc();
    }
    dm_create(matrix, static_cast<int>(rows), static_cast<int>(columns));
    return matrix;
}

using ColumnsOfGroup = std::vector<std::uint32_t> VectorMachine::Group::*;

matrix_t* columns_of_groups(VectorMachine const& machine, ColumnsOfGroup columns) {
    auto const& groups = machine.groups();
    matrix_t* const matrix = new_matrix(std::max(groups.size(), least_groups), slots_of(machine));
    for (std::size_t group = 0; group < groups.size(); ++group) {
        for (std::uint32_t const column : groups[group].*columns) {
            dm_set(matrix, static_cast<int>(group), static_cast<int>(column));
        }
    }
    return matrix;
}

/// The names and types of slots and labels.
lts_type_t type_of(VectorMachine const& machine) {
    lts_type_t const type = lts_type_create();
    int is_new = 0;
    int const number = lts_type_put_type(type, "number", LTStypeDirect, &is_new);
    int const action =
        lts_type_put_type(type, LTSMIN_EDGE_TYPE_ACTION_PREFIX, LTStypeEnum, &is_new);

    auto const& columns = machine.columns();
    std::size_t const slots = slots_of(machine);
    lts_type_set_state_length(type, static_cast<int>(slots));
    for (std::size_t slot = 0; slot < slots; ++slot) {
        std::string const name =
            slot < columns.size() ? columns[slot].name : "unused" + std::to_string(slot);
        lts_type_set_state_name(type, static_cast<int>(slot), name.c_str());
        lts_type_set_state_typeno(type, static_cast<int>(slot), number);
    }

    lts_type_set_edge_label_count(type, 1);
    lts_type_set_edge_label_name(type, 0, LTSMIN_EDGE_TYPE_ACTION_PREFIX);
    lts_type_set_edge_label_typeno(type, 0, action);

    if (machine.ended_column()) {
        int const truth = lts_type_put_type(type, "bool", LTStypeBool, &is_new);
        lts_type_set_state_label_count(type, 1);
        lts_type_set_state_label_name(type, 0, LTSMIN_STATE_LABEL_VALID_END);
        lts_type_set_state_label_typeno(type, 0, truth);
    }
    return type;
}

/// In the same order in every worker, so that all of them get the same numbers, whoever comes first.
std::vector<int> put_events(model_t model, VectorMachine const& machine,
                            ProcessCompiler::Session const& session) {
    int const type = lts_type_get_edge_label_typeno(GBgetLTStype(model), 0);
    std::vector<int> numbers;
    numbers.reserve(machine.events().size());
    auto const put = [&](std::string name) {
        return pins_chunk_put(model, type, {static_cast<chunk_len>(name.size()), name.data()});
    };
    for (unsigned const event : machine.events()) {
        numbers.push_back(put(session.event_object(event)->name()));
    }
    if (numbers.empty()) { // engines that write files take an empty table of names for an error
        put(session.event_object(ProcessCompiler::tau)->name());
    }
    return numbers;
}

void tell_state_labels(model_t model, Context& context) {
    std::optional<std::uint32_t> const ended = context.machine.ended_column();
    matrix_t* const columns = new_matrix(ended ? 1 : 0, slots_of(context.machine));
    if (ended) {
        context.ended_column = *ended;
        dm_set(columns, 0, static_cast<int>(*ended));
        GBsetStateLabelLong(model, ended_of_state);
        GBsetStateLabelShort(model, ended_of_short_state);
    }
    GBsetStateLabelInfo(model, columns);
}

} // namespace

void hand_over(model_t model, CompiledScript compiled) {
    // Never freed: the engine ends the process without a word to its language modules.
    auto& context = *new Context(std::move(compiled));
    VectorMachine const& machine = context.machine;
    GBsetContext(model, &context);
    GBsetLTStype(model, type_of(machine));
    context.labels = put_events(model, machine, context.compiled.script->session());

    std::vector<int> start = machine.start();
    start.resize(slots_of(machine));
    GBsetInitialState(model, start.data());

    GBsetDMInfo(model, columns_of_groups(machine, &VectorMachine::Group::touched));
    GBsetDMInfoRead(model, columns_of_groups(machine, &VectorMachine::Group::reads));
    GBsetDMInfoMayWrite(model, columns_of_groups(machine, &VectorMachine::Group::writes));
    GBsetDMInfoMustWrite(model, columns_of_groups(machine, &VectorMachine::Group::writes));

    GBsetNextStateAll(model, next_all);
    GBsetNextStateLong(model, next_of<&VectorMachine::for_steps_of, &Receiver::long_taker>);
    GBsetNextStateShort(model, next_of<&VectorMachine::for_short_steps_of, &Receiver::short_taker>);
    GBsetNextStateShortR2W(
        model, next_of<&VectorMachine::for_read_to_written_steps_of, &Receiver::short_taker>);
    tell_state_labels(model, context);
}

void end_with_current_exception() noexcept {
    try {
        std::string const words = words_of_current_exception();
        std::fwrite(words.data(), 1, words.size(), stderr);
    } catch (std::bad_alloc const&) {
        std::fputs(out_of_memory_words, stderr);
    }
    std::fflush(stderr);
    ltsmin_abort(LTSMIN_EXIT_FAILURE);
}

} // namespace Calder::Pins
