#include "PlanShape.h"

#include <algorithm>
#include <tuple>

namespace host {

namespace {

enum class Part { FadeIn, Full, FadeOut };

/// A stretch that is treated alike all over. Two pieces with equal places, parts and curves do the
/// same; a full one does so wherever it lies.
struct Piece {
    std::uint64_t first;
    std::uint64_t end;
    Part part;
    FadeCurve curve;
};

std::vector<Piece> piecesOf(const TrimPlan& plan)
{
    std::vector<Piece> pieces;
    const auto add = [&pieces](std::uint64_t first, std::uint64_t end, Part part, FadeCurve curve) {
        if (first < end) {
            pieces.push_back({first, end, part, curve});
        }
    };
    for (const KeptRegion& region : plan.regions) {
        const std::uint64_t fullFirst = region.first + region.fadeIn;
        const std::uint64_t fullEnd = region.end - region.fadeOut;
        add(region.first, fullFirst, Part::FadeIn, plan.fadeInCurve);
        add(fullFirst, fullEnd, Part::Full, FadeCurve::Linear);
        add(fullEnd, region.end, Part::FadeOut, plan.fadeOutCurve);
    }
    return pieces;
}

/// The piece that holds the frame, looking from `index` on, which it moves there; null: cut.
const Piece* pieceAt(const std::vector<Piece>& pieces, std::size_t& index, std::uint64_t frame)
{
    while (index < pieces.size() && pieces[index].end <= frame) {
        ++index;
    }
    return index < pieces.size() && pieces[index].first <= frame ? &pieces[index] : nullptr;
}

bool doSame(const Piece* a, const Piece* b)
{
    if (a == nullptr || b == nullptr) {
        return a == b;
    }
    if (a->part == Part::Full || b->part == Part::Full) {
        return a->part == b->part;
    }
    return std::tie(a->first, a->end, a->part, a->curve) ==
           std::tie(b->first, b->end, b->part, b->curve);
}

std::vector<std::uint64_t> edgesOf(const std::vector<Piece>& a, const std::vector<Piece>& b)
{
    std::vector<std::uint64_t> edges;
    for (const std::vector<Piece>* pieces : {&a, &b}) {
        for (const Piece& piece : *pieces) {
            edges.push_back(piece.first);
            edges.push_back(piece.end);
        }
    }
    std::sort(edges.begin(), edges.end());
    edges.erase(std::unique(edges.begin(), edges.end()), edges.end());
    return edges;
}

} // namespace

std::vector<Stretch> changedStretches(const TrimPlan& before, const TrimPlan& after)
{
    const std::vector<Piece> old = piecesOf(before);
    const std::vector<Piece> fresh = piecesOf(after);
    const std::vector<std::uint64_t> edges = edgesOf(old, fresh);
    std::vector<Stretch> changed;
    std::size_t oldIndex = 0;
    std::size_t freshIndex = 0;
    for (std::size_t i = 0; i + 1 < edges.size(); ++i) {
        if (doSame(pieceAt(old, oldIndex, edges[i]), pieceAt(fresh, freshIndex, edges[i]))) {
            continue;
        }
        if (!changed.empty() && changed.back().end == edges[i]) {
            changed.back().end = edges[i + 1];
        } else {
            changed.push_back({edges[i], edges[i + 1]});
        }
    }
    return changed;
}

double gainAt(const TrimPlan& plan, std::uint64_t frame)
{
    const auto region = std::upper_bound(
        plan.regions.begin(), plan.regions.end(), frame,
        [](std::uint64_t wanted, const KeptRegion& each) { return wanted < each.end; });
    if (region == plan.regions.end() || frame < region->first) {
        return 0;
    }
    const std::uint64_t fromFirst = frame - region->first;
    if (fromFirst < region->fadeIn) {
        return fadeGain(plan.fadeInCurve,
                        static_cast<double>(fromFirst) / static_cast<double>(region->fadeIn));
    }
    const std::uint64_t toLast = region->end - 1 - frame;
    if (toLast < region->fadeOut) {
        return fadeGain(plan.fadeOutCurve,
                        static_cast<double>(toLast) / static_cast<double>(region->fadeOut));
    }
    return 1;
}

} // namespace host
