// The ink is drawn again at 1/step, where the Gaussian spans at least three pixels, blurred there,
// and enlarged linearly. A pixel of the small drawing averages step pixels (variance 1/12) and
// linear enlarging blurs as much again and more (1/6, both in squares of a step), which the
// Gaussian is relieved of. Against the blur at full size this errs by less than half an 8-bit
// level.
#include "ShadowPainter.h"

#include "BlurWeights.h"

#include <algorithm>
#include <cmath>
#include <new>

namespace orvane {

namespace {

constexpr double leastSigma = 3;

struct Reduction {
    int step;
    double sigma; ///< in steps
};

Reduction reductionFor(double blur)
{
    const double sigma = std::max(blur / 2, 0.0);
    const int step = int(std::clamp(std::floor(sigma / leastSigma), 1.0, 1e8));
    const double small = sigma / step;
    return {step, step == 1 ? small : std::sqrt(small * small - 0.25)};
}

std::vector<float> weightsFor(double sigma)
{
    if (sigma < 0.01)
        return {1.0f};
    const std::vector<double> weights = gaussianWeights(sigma);
    return {weights.begin(), weights.end()};
}

/// out[x] = sum of weights[|k|] in[x + k stride], for x below count.
void convolve(const float* in, std::ptrdiff_t stride, float* out, int count,
              const std::vector<float>& weights)
{
    for (int x = 0; x < count; ++x)
        out[x] = weights[0] * in[x];
    for (size_t k = 1; k < weights.size(); ++k) {
        const float* before = in - std::ptrdiff_t(k) * stride;
        const float* after = in + std::ptrdiff_t(k) * stride;
        const float weight = weights[k];
        for (int x = 0; x < count; ++x)
            out[x] += weight * (before[x] + after[x]);
    }
}

/// The ink's coverage, 0..1.
std::vector<float> coverage(GlyphPainter& ink, const Placement& placement, int width, int height)
{
    std::vector<float> values(size_t(width) * size_t(height));
    const CairoSurface surface(cairo_image_surface_create(CAIRO_FORMAT_A8, width, height));
    const CairoContext context(cairo_create(surface.get()));
    ink.paint(context.get(), width, height, placement, {1, 1, 1, 1});
    cairo_surface_flush(surface.get());
    const unsigned char* data = cairo_image_surface_get_data(surface.get());
    if (!data || cairo_status(context.get()) != CAIRO_STATUS_SUCCESS)
        throw std::bad_alloc();
    const int stride = cairo_image_surface_get_stride(surface.get());
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            values[size_t(y) * size_t(width) + size_t(x)] =
                float(data[std::ptrdiff_t(y) * stride + x]) * (1 / 255.0f);
    }
    return values;
}

} // namespace

ShadowPainter::Between ShadowPainter::gridPosition(int pixel, int step)
{
    const double position = (pixel + 0.5) / step - 0.5;
    const double first = std::floor(position);
    return {int(first), float(position - first)};
}

int ShadowPainter::reach(const TextShadow& shadow)
{
    const Reduction reduction = reductionFor(shadow.blur);
    return int(std::ceil((std::ceil(3 * reduction.sigma) + 2) * reduction.step));
}

ShadowPainter::ShadowPainter(GlyphPainter& ink, const Placement& placement,
                             const TextShadow& shadow, const PixelRect& rect)
    : m_rect(rect)
    , m_alpha(float(shadow.alpha))
{
    const Reduction reduction = reductionFor(shadow.blur);
    m_step = reduction.step;
    const std::vector<float> weights = weightsFor(reduction.sigma);
    const int border = int(weights.size()) - 1;
    m_grid = {gridPosition(rect.x0, m_step).first, gridPosition(rect.y0, m_step).first,
              gridPosition(rect.x1 - 1, m_step).first + 2,
              gridPosition(rect.y1 - 1, m_step).first + 2};
    const int width = m_grid.width();
    const int height = m_grid.height();
    const int wide = width + 2 * border;
    const int tall = height + 2 * border;
    const Placement moved{placement.scale / m_step,
                          (placement.x + shadow.offsetX) / m_step - (m_grid.x0 - border),
                          (placement.y + shadow.offsetY) / m_step - (m_grid.y0 - border)};
    const std::vector<float> sharp = coverage(ink, moved, wide, tall);
    std::vector<float> across(size_t(width) * size_t(tall));
    for (int y = 0; y < tall; ++y)
        convolve(sharp.data() + std::ptrdiff_t(y) * wide + border, 1,
                 across.data() + std::ptrdiff_t(y) * width, width, weights);
    for (int x = rect.x0; x < rect.x1; ++x) {
        const Between column = gridPosition(x, m_step);
        m_columns.push_back({column.first - m_grid.x0, column.beyond});
    }
    m_strength.resize(size_t(width) * size_t(height));
    for (int y = 0; y < height; ++y)
        convolve(across.data() + std::ptrdiff_t(y + border) * width, width,
                 m_strength.data() + std::ptrdiff_t(y) * width, width, weights);
}

void ShadowPainter::row(int y, std::vector<float>& to) const
{
    const Between down = gridPosition(m_rect.y0 + y, m_step);
    const auto width = size_t(m_grid.width());
    const float* above = m_strength.data() + size_t(down.first - m_grid.y0) * width;
    std::vector<float> line(above, above + width);
    for (size_t i = 0; i < width; ++i)
        line[i] += (above[width + i] - above[i]) * down.beyond;
    to.resize(m_columns.size());
    for (size_t x = 0; x < m_columns.size(); ++x) {
        const float* at = line.data() + m_columns[x].first;
        to[x] = (at[0] + (at[1] - at[0]) * m_columns[x].beyond) * m_alpha;
    }
}

} // namespace orvane
