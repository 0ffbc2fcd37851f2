// What the canvas shows must be what the export holds: the edit of a reduced picture against the
// reduced edit of the whole picture.

#include "BakeChain.h"
#include "Bitmap.h"
#include "EditStateJSON.h"
#include "Geometry.h"
#include "LevelDifferences.h"
#include "Pipeline.h"
#include "StageSettings.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <map>
#include <random>

namespace orvane {
namespace {

using namespace test;

constexpr int width = 1600;
constexpr int height = 1200;
constexpr int reduction = 4;

/// 0..1 over a few pixels about the line where `distance` (in pixels) is 0, as a lens draws edges.
double edge(double distance)
{
    return 1 / (1 + std::exp(-distance / 2));
}

/// Soft waves of light and colour, a bright disc, a dark bar and a thin wire, and half a level of
/// noise.
CIImage photograph()
{
    auto bitmap = std::make_shared<Bitmap>(width, height, 3, SampleType::U16, AlphaKind::None);
    std::mt19937 random(3);
    for (int row = 0; row < height; ++row) {
        auto* samples = reinterpret_cast<uint16_t*>(static_cast<void*>(bitmap->row(row)));
        for (int x = 0; x < width; ++x) {
            const double light = 0.45 + 0.2 * std::sin(x / 61.0) * std::cos(row / 83.0)
                + 0.08 * std::sin((x + 2 * row) / 17.0) + 0.15 * row / height;
            const double disc = edge(170 - std::hypot(x - 1100, row - 420));
            const double bar = edge(60 - std::abs(x + 0.3 * row - 560));
            const double wire = edge(4 - std::abs(row - 0.4 * x - 500));
            for (int c = 0; c < 3; ++c) {
                double v = light + 0.12 * std::sin(x / 210.0 + row / 150.0 + 2.1 * c);
                v += (0.97 - 0.05 * c - v) * disc;
                v += (0.06 + 0.02 * c - v) * bar;
                v += (0.85 - v) * 0.7 * wire;
                v += (double(random() % 1001) / 1000 - 0.5) / 255;
                samples[x * 3 + c] = uint16_t(std::lround(std::clamp(v, 0.0, 1.0) * 65535));
            }
        }
    }
    return CIImage::withBitmap(std::move(bitmap));
}

EditState everything()
{
    std::ifstream file(ORVANE_TESTS_FOLDER "/everything.json", std::ios::binary);
    const std::string text(std::istreambuf_iterator<char>(file), {});
    const Result<EditState> state = decodeEditState(text);
    EXPECT_TRUE(state.ok()) << (state ? "" : state.error().message);
    return state ? *state : EditState();
}

using Edit = std::function<CIImage(const CIImage&)>;

/// In 8-bit levels, over all pixels and channels.
struct Limits {
    double mean = 0.06;
    double percentile99 = 0.7;
};

struct Case {
    std::string name;
    Edit edit;
    Limits limits;
};

// Limits for what cannot be alike at two sizes; all others keep those of Limits. They are a third
// above what was measured; a shift of half a pixel costs a mean of 2.9. Where something is counted
// in pixels, the preview's are four times as large; where a formula bends sharply, a mean of its
// results is not the result of a mean.
const std::map<std::string, Limits> widerLimits = {
    // The sum of those below.
    {"everything", {3.3, 20}},
    // A glyph's rim is a pixel wide at any size, and blended with its shadow in encoded values.
    {"text", {0.4, 15}},
    // The turned frame's corner falls on a whole pixel: off by up to one of the preview's.
    {"rotation", {1.6, 20}},
    // The picture's outermost pixels are left out, and then the next ones are what is stretched.
    {"blurred canvas", {0.8, 5.2}},
    {"stretched canvas", {1.6, 11}},
    // Bilinear: softer by about half a pixel.
    {"lens", {1.0, 8.2}},
    {"perspective", {0.6, 9.5}},
    // Cut at black and white, beyond which edges overshoot when reduced; curves are tables of whole
    // levels besides, smooth only as a mean.
    {"contrast", {0.06, 1.3}},
    {"colour table", {0.06, 0.9}},
    {"curves", {0.4, 5.7}},
    // Bends: near black, with the contrast of a light, with lightness.
    {"highlights and shadows", {0.04, 0.9}},
    {"relight", {0.17, 1.8}},
    {"split tone", {0.05, 1.1}},
    // Grades from a difference of 0.02 between the channels on.
    {"colour mixer", {0.12, 2.0}},
    // A radius of at least 1 pixel: here more than the export's. Clarity and dehaze are above
    // theirs.
    {"texture", {1.2, 8}},
    {"clarity", {0.08, 0.6}},
    // A window of 5 x 5 pixels; a radius in pixels; a value for each pixel.
    {"noise reduction", {2.4, 8.2}},
    {"sharpening", {2.2, 38}},
    {"grain", {2.1, 11.5}},
};

/// At full strength contrast is a threshold, levels a step near black, and grain all there is.
bool isShownWeak(const std::string& stage)
{
    return stage == "contrast" || stage == "levels" || stage == "grain";
}

Case limited(const std::string& name, Edit edit)
{
    const auto wider = widerLimits.find(name);
    return {name, std::move(edit), wider == widerLimits.end() ? Limits{} : wider->second};
}

/// The whole edit, its parts outside of the render, and each stage of the render.
std::vector<Case> cases()
{
    const EditState whole = everything();
    std::vector<std::pair<std::string, EditState>> states = {{"everything", whole}};
    const auto add = [&](const char* name, const std::function<void(EditState&)>& set) {
        states.emplace_back(name, EditState());
        set(states.back().second);
    };
    add("text", [&](EditState& s) { s.texts = whole.texts; });
    add("painted light", [&](EditState& s) { s.lights = {whole.lights.at(2)}; });
    add("rotation", [](EditState& s) { s.rotation = 3; });
    add("flips and crop", [](EditState& s) {
        s.flipH = s.flipV = true;
        s.crop = CGRect(0.25, 0.25, 0.5, 0.5);
    });
    add("blurred canvas", [](EditState& s) { s.canvasAspect = 0.8; });
    add("stretched canvas", [](EditState& s) {
        s.canvasAspect = 0.8;
        s.canvasFill = "edge";
    });
    std::vector<Case> all;
    for (const auto& [name, state] : states) {
        all.push_back(limited(name, [state = state](const CIImage& image) {
            return finishedImage(image, state, {});
        }));
    }
    for (const StageSetting& setting : allStageSettings()) {
        const Adjustments& shown = isShownWeak(setting.stage) ? setting.weak : setting.strong;
        all.push_back(limited(setting.stage, [shown](const CIImage& image) {
            return Pipeline::render(image, shown);
        }));
    }
    return all;
}

TEST(Preview, LooksLikeTheExport)
{
    const CIImage source = photograph();
    const CIImage small = Geometry::resized(source, width / reduction);
    for (const auto& [name, edit, limits] : cases()) {
        const CIImage preview = edit(small);
        const CGRect extent = preview.extent();
        const int longEdge = int(std::max(extent.width(), extent.height()));
        const CIImage exported = Geometry::resized(edit(source), longEdge);
        EXPECT_NEAR(exported.extent().width(), extent.width(), 1) << name;
        EXPECT_NEAR(exported.extent().height(), extent.height(), 1) << name;
        const PixelRect rect = roundedRect(extent.intersection(exported.extent()));
        const auto found = levelDifferences(drawnInTiles(preview, rect, StoredFormat::Float),
                                            drawnInTiles(exported, rect, StoredFormat::Float));
        if (std::getenv("ORVANE_PRINT_PREVIEW"))
            std::printf("%-24s mean %.3f  99 %% %.3f\n", name.c_str(), found.mean,
                        found.percentile99);
        EXPECT_LE(found.mean, limits.mean) << name;
        EXPECT_LE(found.percentile99, limits.percentile99) << name;
    }
}

} // namespace
} // namespace orvane
