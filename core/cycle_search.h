#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

namespace Calder {

/// A depth-first search through a directed graph for its strongly connected sets of vertices
/// (Tarjan, 1972), on a stack of its own in the place of recursion. See `for_each_cycle`.
template <typename Successors, typename TakeCycle, typename TakeLoop> class CycleSearch {
  public:
    CycleSearch(std::uint32_t vertex_count, Successors const& successors,
                TakeCycle const& take_cycle, TakeLoop const& take_loop)
        : m_successors(successors), m_take_cycle(take_cycle), m_take_loop(take_loop),
          m_vertices(vertex_count) {}

    void run() {
        for (std::uint32_t vertex = 0; vertex < m_vertices.size(); ++vertex) {
            if (m_vertices[vertex].number == unseen) {
                search_from(vertex);
            }
        }
    }

  private:
    static constexpr std::uint32_t unseen = 0;
    /// The number of a vertex whose set is complete: above all others.
    static constexpr std::uint32_t closed = 0xFFFFFFFF;

    struct Vertex {
        std::uint32_t number = unseen; // in the order of first visits
        std::uint32_t lowest = 0;      // the lowest number that it leads to within its set
        std::uint32_t followed = 0;    // how many of its successors were visited
        std::uint32_t path_end = 0;    // the length of the path up to it; 0 when not on it
    };

    void search_from(std::uint32_t start) {
        enter(start);
        while (!m_path.empty()) {
            Vertex& last = m_vertices[m_path.back()];
            auto const& successors = m_successors(m_path.back());
            if (last.followed == successors.size()) {
                leave(m_path.back());
                continue;
            }
            follow(last, successors[last.followed++]);
        }
    }

    void follow(Vertex& from, std::uint32_t target) {
        Vertex const& to = m_vertices[target];
        if (to.number == unseen) {
            enter(target);
            return;
        }
        from.lowest = std::min(from.lowest, to.number);
        if (to.path_end != 0) {
            m_take_loop(std::span<std::uint32_t const>(m_path).subspan(to.path_end - 1));
        }
    }

    void enter(std::uint32_t vertex) {
        m_path.push_back(vertex);
        m_open.push_back(vertex);
        ++m_last_number;
        m_vertices[vertex] = {m_last_number, m_last_number, 0,
                              static_cast<std::uint32_t>(m_path.size())};
    }

    void leave(std::uint32_t vertex) {
        m_path.pop_back();
        Vertex& left = m_vertices[vertex];
        left.path_end = 0;
        if (!m_path.empty()) {
            Vertex& before = m_vertices[m_path.back()];
            before.lowest = std::min(before.lowest, left.lowest);
        }
        if (left.lowest == left.number) {
            close(vertex);
        }
    }

    /// The set of the vertex is complete: what is open from there on.
    void close(std::uint32_t vertex) {
        auto const first = std::find(m_open.rbegin(), m_open.rend(), vertex).base() - 1;
        for (auto member = first; member != m_open.end(); ++member) {
            m_vertices[*member].number = closed;
        }
        m_take_cycle(std::span<std::uint32_t const>(first, m_open.end()));
        m_open.erase(first, m_open.end());
    }

    Successors const& m_successors;
    TakeCycle const& m_take_cycle;
    TakeLoop const& m_take_loop;
    std::vector<Vertex> m_vertices;
    std::vector<std::uint32_t> m_path; // from where the search began to where it is
    std::vector<std::uint32_t> m_open; // visited, their sets not complete
    std::uint32_t m_last_number = unseen;
};

struct IgnoreLoops {
    void operator()(std::span<std::uint32_t const>) const noexcept {}
};

/// Calls `take_cycle` with each strongly connected set of a directed graph: with each after those
/// that it leads to, its members in the order in which they were first reached. A vertex alone is a
/// set, too, whether it leads to itself or not. Vertices are numbered from 0 and begun with in that
/// order; `successors(vertex)` has size() and [], and gives the same every time.
///
/// `take_loop` gets each path whose last vertex leads back to its first one, as such edges are met.
///
/// Linear in vertices and edges, 16 to 24 bytes a vertex, and no recursion.
template <typename Successors, typename TakeCycle, typename TakeLoop = IgnoreLoops>
void for_each_cycle(std::uint32_t vertex_count, Successors const& successors,
                    TakeCycle const& take_cycle, TakeLoop const& take_loop = {}) {
    CycleSearch(vertex_count, successors, take_cycle, take_loop).run();
}

} // namespace Calder
