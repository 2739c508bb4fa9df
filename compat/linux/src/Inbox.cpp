#include "Inbox.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <new>

namespace audiounit_compat {

struct Inbox::Cell {
    Arrival arrival;
    Cell* below = nullptr;              // in an inbox
    std::atomic<std::uint32_t> next{0}; // in the pool: number of the next free cell
    bool pooled = true;
};

namespace {

// Free cells form a stack of cell numbers, 0 for none. The upper half of its top counts the
// changes, so that a cell that was taken and returned meanwhile is not mistaken for an old sight.
class CellPool {
public:
    Inbox::Cell* take() noexcept
    {
        std::uint64_t top = m_top.load(std::memory_order_acquire);
        while (const std::uint32_t number = static_cast<std::uint32_t>(top)) {
            const std::uint32_t next = cell(number).next.load(std::memory_order_relaxed);
            if (m_top.compare_exchange_weak(top, _retag(top, next), std::memory_order_acquire)) {
                return &cell(number);
            }
        }
        return takeUnused();
    }

    void giveBack(Inbox::Cell& free) noexcept
    {
        const auto number = static_cast<std::uint32_t>(&free - m_cells.data() + 1);
        std::uint64_t top = m_top.load(std::memory_order_relaxed);
        do {
            free.next.store(static_cast<std::uint32_t>(top), std::memory_order_relaxed);
        } while (!m_top.compare_exchange_weak(top, _retag(top, number), std::memory_order_release,
                                              std::memory_order_relaxed));
    }

private:
    static constexpr std::uint32_t kCells = 4096;

    static std::uint64_t _retag(std::uint64_t top, std::uint32_t number)
    {
        return (((top >> 32) + 1) << 32) | number;
    }

    Inbox::Cell& cell(std::uint32_t number) { return m_cells[number - 1]; }

    // Cells that were never used need no links, so the pool costs nothing until it is needed.
    Inbox::Cell* takeUnused() noexcept
    {
        if (m_used.load(std::memory_order_relaxed) >= kCells) {
            return nullptr;
        }
        const std::uint32_t index = m_used.fetch_add(1, std::memory_order_relaxed);
        return index < kCells ? &m_cells[index] : nullptr;
    }

    std::array<Inbox::Cell, kCells> m_cells{};
    std::atomic<std::uint64_t> m_top{0};
    std::atomic<std::uint32_t> m_used{0};
};

CellPool gPool;

Inbox::Cell* _takeCell() noexcept
{
    if (Inbox::Cell* const pooled = gPool.take()) {
        return pooled;
    }
    auto* const extra = new (std::nothrow) Inbox::Cell;
    if (extra != nullptr) {
        extra->pooled = false;
    }
    return extra;
}

void _giveBack(Inbox::Cell* cell) noexcept
{
    if (cell->pooled) {
        gPool.giveBack(*cell);
    } else {
        delete cell;
    }
}

} // namespace

Inbox::~Inbox()
{
    std::vector<Arrival> unread;
    takeAll(unread);
}

bool Inbox::put(const Arrival& arrival) noexcept
{
    Cell* const cell = _takeCell();
    if (cell == nullptr) {
        return false;
    }
    cell->arrival = arrival;
    Cell* top = m_top.load(std::memory_order_relaxed);
    do {
        cell->below = top;
    } while (!m_top.compare_exchange_weak(top, cell, std::memory_order_release,
                                          std::memory_order_relaxed));
    return top == nullptr;
}

UInt64 Inbox::firstTime() const noexcept
{
    const Cell* cell = m_top.load(std::memory_order_acquire);
    UInt64 first = cell->arrival.time;
    while ((cell = cell->below) != nullptr) {
        first = std::min(first, cell->arrival.time);
    }
    return first;
}

void Inbox::takeAll(std::vector<Arrival>& arrivals)
{
    const auto begin = static_cast<std::ptrdiff_t>(arrivals.size());
    Cell* cell = m_top.exchange(nullptr, std::memory_order_acquire);
    while (cell != nullptr) {
        arrivals.push_back(cell->arrival);
        Cell* const below = cell->below;
        _giveBack(cell);
        cell = below;
    }
    std::reverse(arrivals.begin() + begin, arrivals.end());
    std::stable_sort(arrivals.begin() + begin, arrivals.end(),
                     [](const Arrival& a, const Arrival& b) { return a.time < b.time; });
}

} // namespace audiounit_compat
