// Each operation alone over a two-megapixel picture, on one thread: nanoseconds a pixel, reading
// the 8-bit source and writing the 8-bit screen bitmap included. The row "source" is these two
// alone.

#include "Bitmap.h"
#include "CIContext.h"
#include "Filters/CIFilter.h"
#include "Geometry.h"
#include "Heal.h"
#include "Kernels.h"
#include "LUT.h"
#include "Relight.h"
#include "TextLayers.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <string>

using namespace orvane;

namespace {

constexpr int width = 1600;
constexpr int height = 1250;
constexpr CGRect frame{0, 0, width, height};

/// Soft shapes with fine noise over them, as photographs have; the same at every run.
const CIImage& source()
{
    static const CIImage image = [] {
        auto bitmap = std::make_shared<Bitmap>(width, height, 3, SampleType::U8, AlphaKind::None);
        uint32_t noise = 1;
        for (int y = 0; y < height; ++y) {
            uint8_t* row = bitmap->row(y);
            for (int x = 0; x < width; ++x) {
                for (int c = 0; c < 3; ++c) {
                    noise = noise * 1664525 + 1013904223;
                    const double wave = std::sin(0.011 * x + c) * std::cos(0.017 * y - 2 * c);
                    row[3 * x + c] = uint8_t(120 + 100 * wave + double(noise >> 28));
                }
            }
        }
        return CIImage::withBitmap(std::move(bitmap));
    }();
    return image;
}

/// A table of 64 entries a side as a file of text: the identity, a little off.
const std::string& cubeText()
{
    static const std::string text = [] {
        std::string lines = "LUT_3D_SIZE 64\n";
        char line[64];
        for (int i = 0; i < 64 * 64 * 64; ++i) {
            const int green = i / 64 % 64;
            const int blue = i / 4096;
            std::snprintf(line, sizeof line, "%.6f %.6f %.6f\n", std::pow(i % 64 / 63.0, 1.1),
                          green / 63.0, blue / 63.0);
            lines += line;
        }
        return lines;
    }();
    return text;
}

CIImage throughCube(const CIImage& image)
{
    static const std::optional<LUT> table = LUT::fromCube(cubeText());
    return CIFilter::colorCubeWithColorSpace(image, table->table());
}

CIImage throughCurves(const CIImage& image)
{
    std::vector<float> triples;
    for (int i = 0; i < 256; ++i)
        triples.insert(triples.end(), 3, float(std::pow(i / 255.0, 0.8)));
    return CIFilter::colorCurves(image, triples).value();
}

CIImage ramp()
{
    return CIFilter::linearGradient({0, 0}, {0, 0, 0, 1}, {0, height}, {1, 1, 1, 1});
}

/// A stroke to and fro, its spots half a radius apart: each lies on others, and so does its source.
CIImage healed(const CIImage& image, int count)
{
    constexpr double radius = 0.03;
    constexpr int across = 25;
    std::vector<HealSpot> spots;
    spots.reserve(size_t(count));
    for (int i = 0; i < count; ++i) {
        const int row = i / across;
        const int column = row % 2 ? across - 1 - i % across : i % across;
        spots.push_back({.x = 0.1 + radius / 2 * column, .y = 0.1 + radius * row, .r = radius});
    }
    return Heal::apply(image, spots);
}

CIImage relit(const CIImage& image)
{
    Light radial{.radius = 0.3, .feather = 0.5, .brightness = 30};
    Light linear{.type = "linear", .y = 0.2, .radius = 0.3, .angle = 90, .warmth = 20};
    Light brush{.type = "brush", .radius = 0.06, .feather = 0.6, .brightness = 18};
    brush.strokes = {{{0.2, 0.3}, {0.3, 0.35}, {0.4, 0.33}}, {{0.7, 0.7}}};
    return Relight::apply(image, {radial, linear, brush});
}

using Recipe = CIImage (*)(const CIImage&);
struct Row {
    const char* name;
    Recipe recipe;
};

// clang-format off
constexpr Row rows[] = {
    {"source", [](const CIImage& i) { return i; }},
    {"pointwise/exposureAdjust", [](const CIImage& i) { return CIFilter::exposureAdjust(i, 0.5); }},
    {"pointwise/temperatureAndTint", [](const CIImage& i) { return CIFilter::temperatureAndTint(i, {6500, 0}, {5600, 20}); }},
    {"pointwise/highlightShadowAdjust", [](const CIImage& i) { return CIFilter::highlightShadowAdjust(i, 0.7, 0.3); }},
    {"pointwise/colorControls", [](const CIImage& i) { return CIFilter::colorControls(i, {1.2, 0.05, 1.1}); }},
    {"pointwise/vibrance", [](const CIImage& i) { return CIFilter::vibrance(i, 0.4); }},
    {"pointwise/vibrance-negative", [](const CIImage& i) { return CIFilter::vibrance(i, -0.4); }},
    {"pointwise/colorMatrix", [](const CIImage& i) { return CIFilter::colorMatrix(i, {.red = {0.9, 0.1, 0, 0}, .bias = {0.02, 0, 0, 0}}); }},
    {"pointwise/colorClamp", [](const CIImage& i) { return CIFilter::colorClamp(i, 0.1, 0.9); }},
    {"pointwise/gammaAdjust", [](const CIImage& i) { return CIFilter::gammaAdjust(i, 1.3); }},
    {"pointwise/colorCurves-256", throughCurves},
    {"pointwise/colorCube-64", throughCube},
    {"pointwise/falseColor", [](const CIImage& i) { return CIFilter::falseColor(i, {0.1, 0.1, 0.3, 1}, {0.9, 0.8, 0.6, 1}); }},
    {"pointwise/vignetteEffect", [](const CIImage& i) { return CIFilter::vignetteEffect(i, {width / 2.0, height / 2.0}, 900, 0.5, 0.5); }},
    {"pointwise/dissolveTransition", [](const CIImage& i) { return CIFilter::dissolveTransition(i, CIFilter::exposureAdjust(i, 1), 0.3); }},
    {"pointwise/screenBlendMode", [](const CIImage& i) { return CIFilter::screenBlendMode(CIFilter::exposureAdjust(i, -2), i); }},
    {"pointwise/maximumCompositing", [](const CIImage& i) { return CIFilter::maximumCompositing(ramp(), i); }},
    {"pointwise/additionCompositing", [](const CIImage& i) { return CIFilter::additionCompositing(ramp(), i); }},
    {"pointwise/blendWithMask", [](const CIImage& i) { return CIFilter::blendWithMask(CIFilter::exposureAdjust(i, 1), i, ramp()); }},
    {"pointwise/radialGradient", [](const CIImage&) { return CIFilter::radialGradient({800, 600}, 100, {1, 0, 0, 1}, 700, {0, 0, 1, 1}); }},
    {"kernel/contrast", [](const CIImage& i) { return Kernels::contrast(i, 1.3); }},
    {"kernel/whitesBlacks", [](const CIImage& i) { return Kernels::whitesBlacks(i, 0.2, -0.2); }},
    {"kernel/splitTone", [](const CIImage& i) { return Kernels::splitTone(i, -0.2, 0.3); }},
    {"kernel/grain", [](const CIImage& i) { return Kernels::grain(i, 0.05); }},
    {"kernel/colorMixer", [](const CIImage& i) { return Kernels::colorMixer(i, {0.2, 0, 0, -0.3}, {0, 0.3}, {0, 0, 0, 0, 0, -0.4}); }},
    {"kernel/relight-3", relit},
    {"kernel/maskedSharpen", [](const CIImage& i) { const CIImage b = CIFilter::gaussianBlur(i, 1).cropped(frame); return Kernels::maskedSharpen(i, CIFilter::unsharpMask(i, 1, 0.6), b, 0.02); }},
    {"blur/sigma-1", [](const CIImage& i) { return CIFilter::gaussianBlur(i.clampedToExtent(), 1); }},
    {"blur/sigma-5", [](const CIImage& i) { return CIFilter::gaussianBlur(i.clampedToExtent(), 5); }},
    {"blur/sigma-15", [](const CIImage& i) { return CIFilter::gaussianBlur(i.clampedToExtent(), 15); }},
    {"blur/sigma-60", [](const CIImage& i) { return CIFilter::gaussianBlur(i.clampedToExtent(), 60); }},
    {"blur/sigma-250", [](const CIImage& i) { return CIFilter::gaussianBlur(i.clampedToExtent(), 250); }},
    {"blur/unsharpMask-1", [](const CIImage& i) { return CIFilter::unsharpMask(i, 1, 0.6); }},
    {"blur/unsharpMask-8", [](const CIImage& i) { return CIFilter::unsharpMask(i, 8, 0.4); }},
    {"blur/bloom", [](const CIImage& i) { return CIFilter::bloom(i, 22, 0.3); }},
    {"blur/noiseReduction", [](const CIImage& i) { return CIFilter::noiseReduction(i, 0.03); }},
    {"blur/maskedVariableBlur", [](const CIImage& i) { return CIFilter::maskedVariableBlur(i, ramp(), 20); }},
    {"resample/rotation", [](const CIImage& i) { return i.transformed(CGAffineTransform::rotation(0.03)); }},
    {"resample/affine-half", [](const CIImage& i) { return i.transformed(CGAffineTransform::scale(0.5, 0.5)); }},
    {"resample/perspective", [](const CIImage& i) { return CIFilter::perspectiveTransform(i, {{60, 1200}, {1540, 1200}, {width, 0}, {0, 0}}); }},
    {"resample/lens", [](const CIImage& i) { return Kernels::lens(i, -0.12, 0.06); }},
    {"resample/lanczos-half", [](const CIImage& i) { return CIFilter::lanczosScaleTransform(i, 0.5); }},
    {"resample/lanczos-double", [](const CIImage& i) { return CIFilter::lanczosScaleTransform(i.cropped({0, 0, width / 2.0, height / 2.0}), 2); }},
    {"local/heal-10", [](const CIImage& i) { return healed(i, 10); }},
    {"local/heal-200", [](const CIImage& i) { return healed(i, 200); }},
    {"local/text", [](const CIImage& i) { return TextLayers::draw({{.text = "Late light\nover the wood", .size = 0.05, .red = 1, .font = {}, .shadow = true}}, i); }},
};
// clang-format on

void draw(benchmark::State& state, Recipe recipe)
{
    const CIContext context(CIContext::Options{.threads = 1});
    const CIImage image = recipe(source());
    size_t rowBytes = size_t(width) * 4;
    std::vector<uint8_t> bitmap(rowBytes * height);
    for (auto _ : state) {
        context.render(image, bitmap.data(), rowBytes, frame, PixelFormat::BGRX8);
        benchmark::ClobberMemory();
    }
    using benchmark::Counter; // the time of one pixel, with its unit
    state.counters["pixel"] =
        Counter(double(width) * height, Counter::kIsIterationInvariantRate | Counter::kInvert);
}

/// What a slider costs before anything is drawn, while a table is on.
void recipeWithCube(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(throughCube(source()));
}

void parseCube(benchmark::State& state)
{
    const auto& text = cubeText(); // made before the first round
    for (auto _ : state)
        benchmark::DoNotOptimize(LUT::fromCube(text));
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(text.size()));
}

} // namespace

int main(int argc, char** argv)
{
    for (const Row& row : rows)
        benchmark::RegisterBenchmark(row.name, draw, row.recipe)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("table/parse-64", parseCube)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("table/recipe-64", recipeWithCube)->Unit(benchmark::kMillisecond);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
