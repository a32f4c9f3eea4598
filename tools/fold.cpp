#include "tools/fold.h"

#include <algorithm>
#include <map>
#include <utility>

namespace Calder::Tools {

namespace {

/// An element, or what was folded already.
struct Piece {
    std::uint32_t symbol; // equal for equal pieces
    std::size_t lines;
    std::size_t end; // in the list
    Fold fold;
};

/// How the pieces go on from one of them in the fewest lines, and of these with the fewest folds, as
/// early as can be.
struct Choice {
    std::size_t lines = 0;
    std::size_t folds = 0;
    std::size_t length = 1;
    std::size_t count = 1;

    bool is_before(Choice const& other) const {
        auto const rank = std::pair(lines, folds);
        auto const others = std::pair(other.lines, other.folds);
        return rank < others || (rank == others && other.count == 1);
    }
};

/// By piece, and one more for the end.
std::vector<Choice> choices(std::span<Piece const> pieces) {
    std::size_t const size = pieces.size();
    std::size_t const longest =
        std::min(size / 2, std::max(most_steps / std::max<std::size_t>(size, 1), std::size_t{1}));
    std::vector<std::uint32_t> symbols;
    std::vector<std::size_t> lines_before{0};
    for (Piece const& piece : pieces) {
        symbols.push_back(piece.symbol);
        lines_before.push_back(lines_before.back() + piece.lines);
    }
    // By length: so many pieces, from this one on, come again so much later.
    std::vector<std::uint32_t> same(longest + 1);
    std::vector<Choice> best(size + 1);
    for (std::size_t i = size; i-- > 0;) {
        best[i] = {best[i + 1].lines + pieces[i].lines, best[i + 1].folds};
        std::size_t const reach = std::min(longest, size - i - 1);
        for (std::size_t length = 1; length <= reach; ++length) {
            same[length] = symbols[i] == symbols[i + length] ? same[length] + 1 : 0;
            if (same[length] >= length) {
                std::size_t const count = same[length] / length + 1;
                Choice const& rest = best[i + length * count];
                Choice const choice{rest.lines + heading_lines + lines_before[i + length] -
                                        lines_before[i],
                                    rest.folds + 1, length, count};
                if (choice.is_before(best[i])) {
                    best[i] = choice;
                }
            }
        }
    }
    return best;
}

class Folding {
  public:
    explicit Folding(std::span<std::uint32_t const> list) {
        for (std::size_t i = 0; i < list.size(); ++i) {
            m_pieces.push_back({list[i], 1, i + 1, {i, 1}});
            m_next_symbol = std::max(m_next_symbol, list[i] + 1);
        }
    }

    std::vector<Piece> run() { return folded(std::move(m_pieces)); }

  private:
    std::vector<Piece> folded(std::vector<Piece> pieces) {
        for (std::size_t before = pieces.size() + 1; pieces.size() < before;) {
            before = pieces.size();
            pieces = parsed(std::move(pieces));
        }
        return pieces;
    }

    std::vector<Piece> parsed(std::vector<Piece> pieces) {
        std::vector<Choice> const best = choices(pieces);
        std::vector<Piece> result;
        for (std::size_t i = 0; i < pieces.size(); i += best[i].length * best[i].count) {
            Choice const& choice = best[i];
            if (choice.count == 1) {
                result.push_back(std::move(pieces[i]));
                continue;
            }
            auto const first = pieces.begin() + static_cast<std::ptrdiff_t>(i);
            result.push_back(repeated({first, first + static_cast<std::ptrdiff_t>(choice.length)},
                                      choice.count));
            result.back().end = pieces[i + choice.length * choice.count - 1].end;
        }
        return result;
    }

    /// A round is at most half as long as its list, so that few are within each other.
    Piece repeated(std::vector<Piece> round, std::size_t count);

    std::vector<Piece> m_pieces;
    std::uint32_t m_next_symbol = 0;
    std::map<std::pair<std::vector<std::uint32_t>, std::size_t>, std::uint32_t> m_symbols;
};

/// Single elements side by side as one fold.
std::vector<Fold> folds_of(std::vector<Piece> pieces) {
    std::vector<Fold> folds;
    for (Piece& piece : pieces) {
        if (piece.fold.count == 1 && !folds.empty() && folds.back().count == 1) {
            ++folds.back().length;
        } else {
            folds.push_back(std::move(piece.fold));
        }
    }
    return folds;
}

Piece Folding::repeated(std::vector<Piece> round, std::size_t count) {
    std::size_t const first = round.front().fold.first;
    std::size_t const length = round.back().end - first;
    std::vector<Piece> inner = folded(std::move(round));
    std::size_t lines = heading_lines;
    std::vector<std::uint32_t> symbols;
    for (Piece const& piece : inner) {
        lines += piece.lines;
        symbols.push_back(piece.symbol);
    }
    auto const [entry, is_new] = m_symbols.try_emplace({std::move(symbols), count}, m_next_symbol);
    m_next_symbol += is_new ? 1 : 0;
    return {entry->second, lines, 0, {first, length, count, folds_of(std::move(inner))}};
}

} // namespace

std::vector<Fold> folded(std::span<std::uint32_t const> list) {
    return folds_of(Folding(list).run());
}

} // namespace Calder::Tools
