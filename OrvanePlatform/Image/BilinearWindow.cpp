#include "BilinearWindow.h"

#include <algorithm>

namespace orvane {

namespace {

// Two pixels to the left and below: a sample from nowhere reads four of the rim's zeros.
constexpr int rimBefore = 2;
constexpr int rimAfter = 1;

} // namespace

BilinearWindow::BilinearWindow(const TilePlanes& planes, TileArena& arena)
    : m_rect(planes.rect)
    , m_stride(planes.rect.width() + rimBefore + rimAfter)
{
    const int rows = m_rect.height() + rimBefore + rimAfter;
    float* memory = arena.floats(size_t(m_stride) * size_t(rows) * 4);
    const auto rowOf = [&](int y) { return memory + (y + rimBefore) * m_stride * 4; };
    for (int y = -rimBefore; y < m_rect.height() + rimAfter; ++y) {
        float* row = rowOf(y);
        if (y < 0 || y >= m_rect.height()) {
            std::fill_n(row, m_stride * 4, 0.0f);
            continue;
        }
        std::fill_n(row, size_t(rimBefore) * 4, 0.0f);
        float* pixel = row + size_t(rimBefore) * 4;
        const int source = m_rect.y0 + y;
        const float* red = planes.row(0, source);
        const float* green = planes.row(1, source);
        const float* blue = planes.row(2, source);
        const float* alpha = planes.opaque() ? nullptr : planes.row(3, source);
        for (int x = 0; x < m_rect.width(); ++x) {
            pixel[4 * x] = red[x];
            pixel[4 * x + 1] = green[x];
            pixel[4 * x + 2] = blue[x];
            pixel[4 * x + 3] = alpha ? alpha[x] : 1.0f;
        }
        std::fill_n(pixel + size_t(m_rect.width()) * 4, size_t(rimAfter) * 4, 0.0f);
    }
    m_origin = static_cast<const Pixel*>(static_cast<const void*>(rowOf(0))) + rimBefore;
}

void BilinearWindow::sample(const double* xs, const double* ys, int count, const Output& out) const
{
    const double left = m_rect.x0 - 1;
    const double low = m_rect.y0 - 1;
    const double right = m_rect.x1;
    const double high = m_rect.y1;
    for (int i = 0; i < count; ++i) {
        const double x = xs[i] - 0.5;
        const double y = ys[i] - 0.5;
        // Written so that what is not a number fails the test.
        const bool reaches = x > left && y > low && x < right && y < high;
        // The whole pixel first, and only then relative to the planes: the weights must not depend
        // on where the planes begin.
        const int floorX = reaches ? int(x) - (x < int(x)) : m_rect.x0 - rimBefore;
        const int floorY = reaches ? int(y) - (y < int(y)) : m_rect.y0 - rimBefore;
        const float u = reaches ? float(x - floorX) : 0;
        const float v = reaches ? float(y - floorY) : 0;
        const Pixel* p = m_origin + (floorY - m_rect.y0) * m_stride + (floorX - m_rect.x0);
        const Pixel bottom = p[0] + (p[1] - p[0]) * u;
        const Pixel top = p[m_stride] + (p[m_stride + 1] - p[m_stride]) * u;
        const Pixel sampled = bottom + (top - bottom) * v;
        for (int c = 0; c < 4; ++c) {
            if (out.plane[c])
                out.plane[c][i] = sampled[c];
        }
    }
}

} // namespace orvane
