#include "host/app/PlanShape.h"

#include <gmock/gmock.h>

#include <random>

using namespace host;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

TrimPlan plan(std::vector<KeptRegion> regions, FadeCurve in = FadeCurve::Linear,
              FadeCurve out = FadeCurve::Linear)
{
    return {.regions = std::move(regions), .fadeInCurve = in, .fadeOutCurve = out};
}

TEST(PlanShape, GainIsZeroWhereCutAndOneWhereKept)
{
    const TrimPlan some = plan({{.first = 10, .end = 20}, {.first = 30, .end = 31}});
    for (std::uint64_t frame = 0; frame < 40; ++frame) {
        SCOPED_TRACE(frame);
        const bool kept = (frame >= 10 && frame < 20) || frame == 30;
        EXPECT_EQ(gainAt(some, frame), kept ? 1 : 0);
    }
    EXPECT_EQ(gainAt(plan({}), 0), 0);
}

TEST(PlanShape, GainFollowsTheFades)
{
    const TrimPlan some = plan({{.first = 10, .end = 20, .fadeIn = 4, .fadeOut = 2}},
                               FadeCurve::Linear, FadeCurve::SCurve);
    const double expected[] = {0, 0.25, 0.5, 0.75, 1, 1, 1, 1, 0.5, 0};
    for (std::uint64_t i = 0; i < 10; ++i) {
        SCOPED_TRACE(i);
        EXPECT_NEAR(gainAt(some, 10 + i), expected[i], 1e-12);
    }
}

TEST(PlanShape, EqualPlansDifferNowhere)
{
    const TrimPlan some = plan({{.first = 10, .end = 20, .fadeIn = 4, .fadeOut = 2}});
    EXPECT_THAT(changedStretches(some, some), IsEmpty());
    EXPECT_THAT(changedStretches(plan({}), plan({})), IsEmpty());
}

TEST(PlanShape, MovedEdgeChangesWhatItPasses)
{
    EXPECT_THAT(
        changedStretches(plan({{.first = 10, .end = 90}}), plan({{.first = 25, .end = 90}})),
        ElementsAre(Stretch{10, 25}));
    EXPECT_THAT(
        changedStretches(plan({{.first = 10, .end = 90}}), plan({{.first = 10, .end = 70}})),
        ElementsAre(Stretch{70, 90}));
}

TEST(PlanShape, MovedFadeChangesBothPlacesOfIt)
{
    EXPECT_THAT(changedStretches(plan({{.first = 10, .end = 90, .fadeIn = 5}}),
                                 plan({{.first = 40, .end = 90, .fadeIn = 5}})),
                ElementsAre(Stretch{10, 45}));
    EXPECT_THAT(changedStretches(plan({{.first = 10, .end = 90, .fadeOut = 5}}),
                                 plan({{.first = 10, .end = 90, .fadeOut = 9}})),
                ElementsAre(Stretch{81, 90}));
}

TEST(PlanShape, CurveCountsOnlyWhereThereAreFades)
{
    const std::vector<KeptRegion> faded = {{.first = 10, .end = 90, .fadeIn = 5, .fadeOut = 7}};
    EXPECT_THAT(changedStretches(plan(faded), plan(faded, FadeCurve::SCurve, FadeCurve::Linear)),
                ElementsAre(Stretch{10, 15}));
    EXPECT_THAT(changedStretches(plan(faded), plan(faded, FadeCurve::Linear, FadeCurve::SCurve)),
                ElementsAre(Stretch{83, 90}));
    const std::vector<KeptRegion> bare = {{.first = 10, .end = 90}};
    EXPECT_THAT(changedStretches(plan(bare), plan(bare, FadeCurve::SCurve, FadeCurve::SCurve)),
                IsEmpty());
}

TEST(PlanShape, AppearingRegionIsAStretchOfItsOwn)
{
    EXPECT_THAT(
        changedStretches(
            plan({{.first = 10, .end = 20}, {.first = 80, .end = 90}}),
            plan({{.first = 10, .end = 20}, {.first = 40, .end = 50}, {.first = 80, .end = 85}})),
        ElementsAre(Stretch{40, 50}, Stretch{85, 90}));
}

TrimPlan randomPlan(std::mt19937& random)
{
    TrimPlan result;
    std::uint64_t at = random() % 10;
    while (at < 90) {
        KeptRegion region{.first = at, .end = at + 1 + random() % 20};
        region.fadeIn = random() % (region.frames() + 1);
        region.fadeOut = random() % (region.frames() - region.fadeIn + 1);
        result.regions.push_back(region);
        at = region.end + 1 + random() % 15;
    }
    result.fadeInCurve = static_cast<FadeCurve>(random() % kFadeCurveCount);
    return result;
}

TEST(PlanShape, NothingChangesOutsideOfTheStretches)
{
    std::mt19937 random(1);
    for (int i = 0; i < 500; ++i) {
        SCOPED_TRACE(i);
        const TrimPlan a = randomPlan(random);
        const TrimPlan b = randomPlan(random);
        std::vector<bool> changed(140);
        for (const Stretch& stretch : changedStretches(a, b)) {
            std::fill(changed.begin() + static_cast<long>(stretch.first),
                      changed.begin() + static_cast<long>(stretch.end), true);
        }
        for (std::uint64_t frame = 0; frame < 140; ++frame) {
            if (!changed[frame]) {
                EXPECT_EQ(gainAt(a, frame), gainAt(b, frame)) << frame;
            }
        }
    }
}

} // namespace
