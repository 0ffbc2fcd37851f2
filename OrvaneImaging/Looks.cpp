#include "Looks.h"

#include "Baker.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>

namespace orvane::Looks {

namespace {

// ---- Measuring ----

struct Histogram {
    std::array<uint64_t, 256> luma{};
    std::array<uint64_t, 3> sums{}; ///< of red, green and blue
    double saturation = 0; ///< sum over the pixels, each 0..100
    uint64_t pixels = 0;

    void add(const uint8_t* pixel)
    {
        const int r = pixel[0];
        const int g = pixel[1];
        const int b = pixel[2];
        const double y = std::round(0.299 * r + 0.587 * g + 0.114 * b);
        ++luma[size_t(std::clamp(y, 0.0, 255.0))];
        for (size_t channel = 0; channel < sums.size(); ++channel)
            sums[channel] += pixel[channel];
        const int largest = std::max({r, g, b});
        if (largest > 0)
            saturation += double(largest - std::min({r, g, b})) / largest * 100;
        ++pixels;
    }

    /// The first luma at which the share of pixels up to it is reached.
    double percentile(double share) const
    {
        const double target = double(pixels) * share;
        uint64_t count = 0;
        for (size_t level = 0; level < luma.size(); ++level) {
            count += luma[level];
            if (target <= double(count))
                return double(level);
        }
        return 255;
    }

    double mean(size_t channel) const { return double(sums[channel]) / double(pixels); }
};

Stats statsOf(const Histogram& histogram)
{
    Stats stats;
    stats.medianLuma = histogram.percentile(0.5);
    stats.blackPoint = histogram.percentile(0.05);
    stats.whitePoint = histogram.percentile(0.95);
    stats.contrastSpread = stats.whitePoint - stats.blackPoint;
    stats.meanSaturation = histogram.saturation / double(histogram.pixels);
    const double red = histogram.mean(0);
    const double green = histogram.mean(1);
    const double blue = histogram.mean(2);
    stats.warmth = (red - blue) / 2.55;
    stats.greenMagenta = (green - (red + blue) * 0.5) / 2.55;
    stats.haze = std::max(stats.blackPoint - 24, 0.0) + std::max(40 - stats.contrastSpread, 0.0);
    return stats;
}

// ---- The ten looks ----

double wholeNumber(double value, double lowest, double highest)
{
    return std::clamp(std::round(value), lowest, highest) + 0.0; // no -0, which shows
}

/// What a picture lacks; a recipe's value may grow with one of them.
enum class Need { None, Contrast, Colour, Haze };
using Needs = std::array<double, 4>; ///< by Need

Needs needsOf(const Stats& stats)
{
    return {0, wholeNumber((120 - stats.contrastSpread) * 0.5, 0, 60),
            wholeNumber(40 - stats.meanSaturation, 0, 40), wholeNumber(stats.haze, 0, 40)};
}

/// A slider's value: `base` as it is, or base + factor * need, rounded and held to 0..highest.
struct Term {
    const char* key;
    double base;
    Need need = Need::None;
    double factor = 0;
    double highest = 0;

    double value(const Needs& needs) const
    {
        if (need == Need::None)
            return base;
        return wholeNumber(factor * needs[size_t(need)] + base, 0, highest);
    }
};

struct Recipe {
    const char* id;
    const char* name;
    const char* reason; ///< empty: it depends on the picture
    std::vector<Term> terms;
};

// clang-format off
const std::vector<Recipe>& recipes()
{
    using enum Need;
    static const std::vector<Recipe> table = {
        {"pop", "Make it pop", "",
         {{"contrast", 12, Contrast, 0.6, 55}, {"clarity", 10, Contrast, 0.4, 45},
          {"vibrance", 12, Colour, 0.8, 55}, {"dehaze", 0, Haze, 0.7, 35},
          {"blacks", -4}, {"whites", 6}}},
        {"warm", "Warmer", "Leans into warm light and opens the shadows.",
         {{"temperature", 22}, {"highlights", -10}, {"shadows", 12},
          {"vibrance", 8, Colour, 0.5, 40}, {"contrast", 8}}},
        {"cool", "Cooler", "Cooler and harder — good for wet streets and blue hour.",
         {{"temperature", -20}, {"contrast", 16, Contrast, 0.4, 50}, {"blacks", -14},
          {"clarity", 10}}},
        {"mono", "Mono", "Strips color so the shapes carry the frame.",
         {{"saturation", -100}, {"contrast", 18, Contrast, 0.5, 55}, {"clarity", 12}}},
        {"film", "Film", "Colour negative: cool shadows, warm highlights, grain and a little halation.",
         {{"contrast", 10}, {"highlights", -14}, {"shadows", 10},
          {"vibrance", 6, Colour, 0.4, 30}, {"saturation", -6}, {"shadowTint", -14},
          {"highlightTint", 20}, {"satOrange", 14}, {"satGreen", -18}, {"halation", 26},
          {"grain", 18}, {"fade", 10}}},
        {"cinema", "Cinema", "Teal shadows against orange skin — the modern film-grade look.",
         {{"contrast", 14, Contrast, 0.3, 45}, {"shadows", 8}, {"blacks", -10},
          {"shadowTint", -34}, {"highlightTint", 30}, {"satOrange", 18}, {"satAqua", 12},
          {"satYellow", -14}, {"halation", 14}, {"vignette", -14}}},
        {"faded", "Faded", "Lifted blacks and muted colour, like a print left in the sun.",
         {{"contrast", -8}, {"highlights", -18}, {"saturation", -18}, {"fade", 34},
          {"grain", 12}, {"highlightTint", 12}, {"satBlue", -12}}},
        {"golden", "Golden", "Warm, glowing light — golden hour even when it wasn't.",
         {{"temperature", 26}, {"exposure", 6}, {"highlights", -20}, {"shadows", 14},
          {"vibrance", 10, Colour, 0.5, 40}, {"highlightTint", 34}, {"satOrange", 20},
          {"satYellow", 12}, {"bloom", 22}, {"halation", 30}}},
        {"miniature", "Miniature", "Tilt-shift: a sharp band through the middle turns the scene into a toy model.",
         {{"tiltShift", 80}, {"tiltCenter", 50}, {"tiltWidth", 26}, {"saturation", 22},
          {"vibrance", 16}, {"contrast", 16}, {"clarity", 14}}},
        {"poster", "Poster", "Two colours across the whole tonal range — a print, not a photo.",
         {{"duotone", 85}, {"duotoneHue", 220}, {"contrast", 22}, {"blacks", -12},
          {"whites", 8}}},
    };
    return table;
}
// clang-format on

const char* popReason(const Stats& stats)
{
    if (stats.contrastSpread < 60)
        return "Adds punch — the frame is reading flat.";
    if (stats.meanSaturation < 15)
        return "Lifts the color a touch and adds bite.";
    if (stats.haze > 20)
        return "Clears the haze and deepens the blacks.";
    return "A balanced lift — contrast, clarity, a little color.";
}

// ---- The one-click grade ----

/// The values before a lean is added. Draws nine numbers, in the order of the lines.
Adjustments::AdjustMap jittered(const Stats& s, const RandomSource& rnd)
{
    const auto jitter = [&](double reach) { return (2 * rnd() - 1) * reach; };
    const double contrast = wholeNumber((150 - s.contrastSpread) * 0.5, 0, 70);
    const double colour = wholeNumber(40 - s.meanSaturation, 0, 40);
    const double haze = wholeNumber(s.haze * 0.55, 0, 30);
    const double blacks = s.blackPoint > 30 ? (s.blackPoint - 22) * -0.5
        : s.blackPoint < 8                  ? 10
                                            : 0;

    Adjustments::AdjustMap recipe;
    recipe["exposure"] = (125 - s.medianLuma) * 0.32 + jitter(4);
    recipe["blacks"] = blacks + jitter(3);
    recipe["whites"] = (s.whitePoint < 215 ? (230 - s.whitePoint) * 0.4 : 0) + jitter(3);
    recipe["shadows"] = (s.medianLuma < 105 ? (115 - s.medianLuma) * 0.35 : 0) + jitter(3);
    recipe["highlights"] = (s.whitePoint > 246 ? (s.whitePoint - 236) * -0.9 : 0) + jitter(3);
    recipe["contrast"] = contrast * 0.4 + 8 + jitter(6);
    recipe["clarity"] = contrast * 0.28 + 8 + jitter(6);
    recipe["vibrance"] = colour * 0.7 + 8 + jitter(6);
    recipe["dehaze"] = haze + jitter(2);
    recipe["vignette"] = -14;
    return recipe;
}

const char* popOpening(const Stats& stats)
{
    if (stats.medianLuma < 95)
        return "Opens it up and lifts the shadows";
    if (stats.medianLuma > 165)
        return "Pulls it back and recovers the highlights";
    if (stats.contrastSpread < 70)
        return "Expands the range for more punch";
    return "A balanced lift across the range";
}

const Lean& drawnLean(const RandomSource& rnd)
{
    const auto& leans = popLeans();
    const double drawn = rnd() * double(leans.size());
    // A source that breaks its promise, NaN included, still gives a lean.
    return leans[drawn > 0 ? size_t(std::min(drawn, double(leans.size() - 1))) : 0];
}

} // namespace

const std::vector<Lean>& popLeans()
{
    static const std::vector<Lean> leans = {
        {"warm.", {{"temperature", 12}, {"vibrance", 4}}},
        {"cool.", {{"temperature", -10}}},
        {"punchy color.", {{"vibrance", 12}, {"saturation", 5}}},
        {"gritty.", {{"clarity", 8}, {"contrast", 6}}},
        {"filmic.", {{"highlights", -5}, {"contrast", -5}, {"vibrance", 4}}},
    };
    return leans;
}

Stats analyze(const CIImage& image, double sample)
{
    const CGRect extent = image.extent();
    if (extent.isInfinite() || extent.width() < 1 || extent.height() < 1)
        return {};
    const double longEdge = std::max(extent.width(), extent.height());
    if (!(sample > 0))
        return {};
    const double scale = std::min(sample / longEdge, 1.0);
    const CIImage small = image.transformed(CGAffineTransform::scale(scale, scale));
    const CGRect frame = small.extent().integral();
    if (frame.width() < 1 || frame.height() < 1)
        return {};

    const size_t rowBytes = size_t(frame.width()) * 4;
    std::vector<uint8_t> pixels(rowBytes * size_t(frame.height()));
    if (!Baker::context().render(small, pixels.data(), rowBytes, frame,
                                 PixelFormat::RGBA8Premultiplied))
        return {};
    Histogram histogram;
    for (size_t i = 0; i < pixels.size(); i += 4)
        histogram.add(&pixels[i]);
    return statsOf(histogram);
}

std::vector<Look> all(const Stats& stats)
{
    const Needs needs = needsOf(stats);
    std::vector<Look> looks;
    for (const Recipe& recipe : recipes()) {
        Look look{recipe.id, recipe.name, recipe.reason, {}};
        for (const Term& term : recipe.terms)
            look.adjustments[term.key] = term.value(needs);
        looks.push_back(std::move(look));
    }
    // The first look answers to the picture in words, and holds lifted blacks down harder.
    Look& pop = looks.front();
    pop.reason = popReason(stats);
    if (stats.blackPoint > 16)
        pop.adjustments["blacks"] = -12;
    return looks;
}

double systemRandom()
{
    std::random_device device;
    // 53 random bits, as many as the fraction of a double has: 1 is never reached.
    const uint64_t bits = (uint64_t(device()) << 32) | device();
    return double(bits >> 11) * 0x1p-53;
}

Look pop(const Stats& stats, const RandomSource& rnd)
{
    Look look{"pop", "Make it pop", popOpening(stats), jittered(stats, rnd)};
    const Lean& lean = drawnLean(rnd);
    for (const auto& [key, value] : lean.additions)
        look.adjustments[key] += value;
    for (const Bound& bound : popBounds) {
        if (const auto found = look.adjustments.find(bound.key); found != look.adjustments.end())
            found->second = wholeNumber(found->second, bound.lowest, bound.highest);
    }
    look.reason.append(" — ").append(lean.phrase);
    return look;
}

Adjustments::AdjustMap apply(const Look& look, double strength)
{
    const double k = std::isnan(strength) ? 0 : std::clamp(strength, 0.0, 100.0) / 100;
    Adjustments::AdjustMap scaled;
    for (const auto& [key, value] : look.adjustments)
        scaled[key] = value * k + 0.0; // no -0, which shows
    return scaled;
}

} // namespace orvane::Looks
