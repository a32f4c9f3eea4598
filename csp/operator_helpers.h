#pragma once

#include "core/small_block_allocator.h"
#include "csp/export.h"
#include "process_compiler/operator_process.h"

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

/// What a visit keeps of one argument: a SyncVector from small blocks, as each visit makes some.
using KeptVector = std::vector<SyncVector::value_type, SmallBlockAllocator<SyncVector::value_type>>;
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
        KeptVector& kept = vectors[moving];
        if (kept.capacity() == 0) {
            kept.reserve(usual_candidates);
        }
        kept.emplace_back(event, successor);
        return true;
    }
    /// The argument that is asked moves alone; returns what the visitor answers.
    bool move(unsigned event, ProcessPointer const& successor) const {
        return visitor(event, new OperatorProcess(op, arguments, moving, successor));
    }

    /// Combines what was kept, on each event of `synchronised` that every argument can perform.
    [[nodiscard]] bool combine_on(BitSet const& synchronised);
    /// Combines the runs of `scratch`; the whole performs `event`.
    [[nodiscard]] bool combine(CartProductScratch& scratch, unsigned event) const;

    /// Room made at once, so that most vectors are allocated once a visit, and that in a small block.
    static constexpr std::size_t usual_candidates =
        SmallBlocks::most_small_bytes / sizeof(KeptVector::value_type);

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
