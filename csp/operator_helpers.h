#pragma once

#include "core/small_blocks.h"
#include "csp/export.h"
#include "process_compiler/operator_process.h"

#include <memory>
#include <utility>
#include <vector>

namespace Calder::ProcessCompiler::CSP {

/// The transitions of one argument that are candidates for synchronisation: (event, successor).
using SyncVector = std::vector<std::pair<unsigned, ProcessPointer>>;
/// By argument. Who makes one releases what it holds: see OwningArray.
using SyncVectors = FixedArray<SyncVector>;
/// One position an argument.
using IndexArray = FixedArray<unsigned>;

/// Sorts each vector by ascending event, in place. Entries on the same event come in any order.
CALDER_CSP_EXPORT void sort_sync_vectors(SyncVectors& vectors) noexcept;

/// Offers every combination of one transition an argument: those of argument i on `event` stand in
/// `vectors[i]` from `start[i]` up to before `end[i]`, at least one. The combinations come like the
/// readings of an odometer, the last argument fastest. The successor is `op` applied to the chosen
/// successors; for tick it is STOP, and what the callback answers to a tick is ignored.
///
/// `joint_arguments` and `current` are scratch of the arguments' length, in which nothing is promised
/// to stand afterwards; there must be an argument.
/// Returns false as soon as the callback does, true when every combination was offered.
CALDER_CSP_EXPORT bool cart_product(ProcessArray const& arguments, SyncVectors const& vectors,
                                    IndexArray const& start, IndexArray const& end,
                                    ProcessArray& joint_arguments, IndexArray& current,
                                    TransitionVisitor callback, unsigned event,
                                    OperatorPointer const& op);

/// Offers the combinations of each event of `synchronised` that every argument can perform, events
/// ascending. The vectors must be sorted; each is walked once. Returns false as soon as one
/// cart_product does.
CALDER_CSP_EXPORT bool cart_product_synchronised_events(BitSet const& synchronised,
                                                        SyncVectors const& vectors,
                                                        ProcessArray const& arguments,
                                                        TransitionVisitor callback,
                                                        OperatorPointer const& op);

/// What a visit keeps of one argument: a SyncVector that only grows, and mostly is one small block.
class CALDER_CSP_EXPORT KeptVector {
  public:
    /// As of a SyncVector.
    using value_type = SyncVector::value_type;

    KeptVector() noexcept = default;
    KeptVector(KeptVector const&) = delete;
    KeptVector& operator=(KeptVector const&) = delete;
    inline ~KeptVector();

    /// @{
    /// As of a vector.
    [[nodiscard]] std::size_t size() const noexcept {
        return static_cast<std::size_t>(m_end - m_begin);
    }
    [[nodiscard]] bool empty() const noexcept { return m_begin == m_end; }
    [[nodiscard]] value_type* data() noexcept { return m_begin; }
    [[nodiscard]] value_type const* data() const noexcept { return m_begin; }
    value_type const& operator[](std::size_t index) const noexcept { return m_begin[index]; }
    /// @}

    /// Returns true, so that a visitor ends with it. What throws leaves everything as it was.
    inline bool add(unsigned event, ProcessPointer const& successor);

  private:
    bool add_with_more_room(unsigned event, ProcessPointer const& successor);
    [[nodiscard]] std::size_t room_bytes() const noexcept {
        return static_cast<std::size_t>(m_room_end - m_begin) * sizeof(value_type);
    }

    value_type* m_begin = nullptr;
    value_type* m_end = nullptr;
    value_type* m_room_end = nullptr;
};

inline KeptVector::~KeptVector() {
    std::destroy(m_begin, m_end);
    SmallBlocks::free(m_begin, room_bytes());
}

inline bool KeptVector::add(unsigned event, ProcessPointer const& successor) {
    if (m_end == m_room_end) [[unlikely]] {
        return add_with_more_room(event, successor);
    }
    ::new (static_cast<void*>(m_end)) value_type(event, successor);
    ++m_end;
    return true;
}

/// By argument.
using KeptVectors = OwningArray<KeptVector>;

/// As sort_sync_vectors.
CALDER_CSP_EXPORT void sort_kept(KeptVectors& vectors) noexcept;

/// The scratch of cart_product for one visit, all of which goes when the visit ends.
struct CALDER_CSP_EXPORT CartProductScratch {
    /// For that many arguments, all null, and runs that are not found yet.
    explicit CartProductScratch(std::size_t arguments)
        : joint_arguments(arguments == 2 ? 0 : arguments), positions(arguments * 3),
          start(positions.begin()), end(start + arguments), current(end + arguments) {}
    CartProductScratch(CartProductScratch const&) = delete;
    CartProductScratch& operator=(CartProductScratch const&) = delete;

    /// Sets the run of argument `index` to its entries on `event`, leaving out the last
    /// `left_out` entries of its sorted vector. False when there is none.
    [[nodiscard]] bool find_run(KeptVectors const& vectors, std::size_t index, unsigned event,
                                std::size_t left_out = 0);

    /// The successors of the combination that is being offered; of two arguments they are taken from
    /// where they stand.
    OwningArray<ProcessPointer> joint_arguments;
    /// What the following are in.
    IndexArray positions;
    /// @{
    /// By argument: the run that is combined, from `start` up to before `end`.
    unsigned* start;
    unsigned* end;
    /// @}
    /// By argument: where in its run the combination is.
    unsigned* current;
};

/// One visit of an operator that synchronises, while it asks its arguments one after the other: a
/// transition either is kept to be combined later or moves its argument alone, at once.
struct CALDER_CSP_EXPORT SynchronisedVisit {
    /// Nothing is kept yet. What is passed by reference must outlive the visit.
    SynchronisedVisit(OperatorPointer applied, ProcessArray const& its_arguments,
                      TransitionVisitor const& outer_visitor)
        : op(std::move(applied)), arguments(its_arguments), visitor(outer_visitor),
          vectors(arguments.size()) {}

    /// A transition of the argument that is asked, for later. Returns true: the argument goes on.
    bool keep(unsigned event, ProcessPointer const& successor) {
        return vectors[moving].add(event, successor);
    }
    /// The argument that is asked moves alone; returns what the visitor answers.
    bool move(unsigned event, ProcessPointer const& successor) const;

    /// Combines what was kept, on each event of `synchronised` that every argument can perform.
    [[nodiscard]] bool combine_on(BitSet const& synchronised);
    /// Combines the runs of `scratch`; the whole performs `event`.
    [[nodiscard]] bool combine(CartProductScratch& scratch, unsigned event) const;

    /// What successors apply.
    OperatorPointer const op;
    /// Those of the term that is visited.
    ProcessArray const& arguments;
    /// Who asked for the transitions.
    TransitionVisitor const& visitor;
    /// What was kept, by argument.
    KeptVectors vectors;
    /// The argument that is asked: set before it is.
    unsigned moving = 0;
};

} // namespace Calder::ProcessCompiler::CSP
