#pragma once

#include "state_space/machine/run/configuration_tables.h"
#include "state_space/machine/run/round_size.h"
#include "state_space/machine/run/search_job.h"

namespace Calder::StateSpace {

/// Finds the successors of the states that are a round's job of this number, by one of its threads. All tables that
/// they need must be there. Throws std::bad_alloc.
template <typename Search> void find_successors(SearchJob& job, Search const& search,
                                                ConfigurationTables const& tables,
                                                RoundSize const& size, std::size_t number) {
    job.clear(search.form(), size.most_steps);
    search.for_each(size.first_of(number), size.last_of(number), [&](Word const* kept) {
        job.add_source(kept, tables.table(tables.configuration_of(search.first_word(kept))));
        return true;
    });
    job.search();
}

} // namespace Calder::StateSpace
