#include "ReferenceRenderer.h"

#include "Bitmap.h"
#include "BlurWeights.h"
#include "HalfFloat.h"
#include "Lanczos.h"
#include "Node.h"
#include "PixelKernels.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <tuple>

namespace orvane {

namespace {

float decodedSrgb(float x)
{
    const double m = std::abs(double(x));
    return float(std::copysign(m <= 0.04045 ? m / 12.92 : std::pow((m + 0.055) / 1.055, 2.4), x));
}

class Renderer {
public:
    /// ground: what patches are drawn over, if it is a patch that is to be drawn.
    explicit Renderer(const FloatImage* ground = nullptr)
        : m_ground(ground)
    {
    }

    /// The node over rect; transparent outside its extent.
    const FloatImage& draw(const Node& node, const PixelRect& rect)
    {
        const auto key = std::make_tuple(&node, rect.x0, rect.y0, rect.x1, rect.y1);
        const auto known = m_drawn.find(key);
        if (known != m_drawn.end())
            return known->second;
        FloatImage image(rect);
        const PixelRect inside = node.extent.clipped(rect);
        if (!inside.isEmpty())
            std::visit([&](const auto& data) { drawInto(image, node, data, inside); }, node.data);
        return m_drawn.emplace(key, std::move(image)).first->second;
    }

private:
    const FloatImage& input(const Node& node, size_t index, const PixelRect& rect)
    {
        return draw(*node.inputs[index], neededInput(node, index, rect));
    }

    template <class Pixel> static void forEach(const PixelRect& r, Pixel&& pixel)
    {
        for (int y = r.y0; y < r.y1; ++y) {
            for (int x = r.x0; x < r.x1; ++x)
                pixel(x, y);
        }
    }
    static void copyPixel(const FloatImage& from, int x, int y, float* to)
    {
        std::copy_n(from.at(x, y), 4, to);
    }
    /// Zeros beyond the rectangle.
    static float sampleAt(const FloatImage& from, int x, int y, int channel)
    {
        const PixelRect& r = from.rect;
        const bool inside = x >= r.x0 && x < r.x1 && y >= r.y0 && y < r.y1;
        return inside ? from.at(x, y)[channel] : 0.0f;
    }
    static float bilinear(const FloatImage& from, double x, double y, int channel)
    {
        if (!std::isfinite(x) || !std::isfinite(y))
            return 0;
        const int i = heldToInt(std::floor(x - 0.5));
        const int j = heldToInt(std::floor(y - 0.5));
        const double u = x - 0.5 - i;
        const double v = y - 0.5 - j;
        const double low =
            sampleAt(from, i, j, channel) * (1 - u) + sampleAt(from, i + 1, j, channel) * u;
        const double high =
            sampleAt(from, i, j + 1, channel) * (1 - u) + sampleAt(from, i + 1, j + 1, channel) * u;
        return float(low * (1 - v) + high * v);
    }

    void drawInto(FloatImage& out, const Node&, const SourceNode& n, const PixelRect& r)
    {
        const Bitmap& bitmap = *n.bitmap;
        forEach(r,
                [&](int x, int y) { readPixel(bitmap, x, bitmap.height() - 1 - y, out.at(x, y)); });
    }
    static float rawSample(const Bitmap& bitmap, int x, int row, int channel)
    {
        const uint8_t* line = bitmap.row(row);
        const size_t index = size_t(x) * size_t(bitmap.channels()) + size_t(channel);
        switch (bitmap.type()) {
        case SampleType::U8:
            return float(line[index]) / 255;
        case SampleType::U16:
            return float(reinterpret_cast<const uint16_t*>(line)[index]) / 65535;
        case SampleType::F16:
            return floatFromHalf(reinterpret_cast<const uint16_t*>(line)[index]);
        case SampleType::F32:
            return reinterpret_cast<const float*>(line)[index];
        }
        return 0;
    }
    static float tableValue(const std::vector<float>& table, float position)
    {
        const size_t below = std::min(size_t(position), table.size() - 2);
        return table[below] + (table[below + 1] - table[below]) * (position - float(below));
    }
    static void readPixel(const Bitmap& bitmap, int x, int row, float* pixel)
    {
        const bool grey = bitmap.channels() < 3;
        const bool whole = bitmap.type() == SampleType::U8 || bitmap.type() == SampleType::U16;
        const float alpha =
            bitmap.hasAlpha() ? rawSample(bitmap, x, row, bitmap.channels() - 1) : 1.0f;
        const bool multiplied = bitmap.alpha() == AlphaKind::Premultiplied;
        const float steps = bitmap.type() == SampleType::U8 ? 255 : 65535;
        float rgb[3];
        for (int c = 0; c < 3; ++c) {
            float v = rawSample(bitmap, x, row, grey ? 0 : c);
            if (multiplied)
                v = alpha > 0 ? v / alpha : 0.0f;
            if (whole) {
                const auto& table = bitmap.conversion.curves[size_t(grey ? 0 : c)];
                v = std::min(v, 1.0f);
                v = table || multiplied
                    ? tableValue(*(table ? table : srgbDecodingTable(bitmap.type())), v * steps)
                    : decodedSrgb(v);
            }
            rgb[c] = v;
        }
        const auto& matrix = bitmap.conversion.matrix;
        for (int c = 0; c < 3; ++c) {
            const float* row3 = matrix && whole ? matrix->data() + 3 * c : nullptr;
            const float v = row3 ? row3[0] * rgb[0] + row3[1] * rgb[1] + row3[2] * rgb[2] : rgb[c];
            pixel[c] = std::isfinite(v) ? v * alpha : 0.0f;
        }
        pixel[3] = std::isfinite(alpha) ? alpha : 0.0f;
    }

    void drawInto(FloatImage& out, const Node& node, const PointwiseNode& n, const PixelRect& r)
    {
        std::vector<const FloatImage*> inputs;
        for (size_t i = 0; i < node.inputs.size(); ++i)
            inputs.push_back(&draw(*node.inputs[i], r));
        forEach(r, [&](int x, int y) {
            PointwiseRow row{.x = x, .y = y, .count = 1, .inputs = {}, .output = {}};
            for (size_t i = 0; i < inputs.size(); ++i) {
                for (int c = 0; c < 4; ++c)
                    row.inputs[i][c] = inputs[i]->at(x, y) + c;
            }
            for (int c = 0; c < 4; ++c)
                row.output[c] = out.at(x, y) + c;
            n.kernel->reference(n.parameters.record.data(), n.parameters.tableData(), row);
        });
    }
    void drawInto(FloatImage& out, const Node& node, const CropNode&, const PixelRect& r)
    {
        const FloatImage& in = draw(*node.inputs[0], r);
        forEach(r, [&](int x, int y) { copyPixel(in, x, y, out.at(x, y)); });
    }
    void drawInto(FloatImage& out, const Node& node, const ClampNode&, const PixelRect& r)
    {
        const FloatImage& in = input(node, 0, r);
        const PixelRect e = in.rect;
        forEach(r, [&](int x, int y) {
            copyPixel(in, std::clamp(x, e.x0, e.x1 - 1), std::clamp(y, e.y0, e.y1 - 1),
                      out.at(x, y));
        });
    }
    void drawInto(FloatImage& out, const Node& node, const OrthogonalNode& n, const PixelRect& r)
    {
        const FloatImage& in = input(node, 0, r);
        const CGAffineTransform back = n.forward.inverted().affine();
        forEach(r, [&](int x, int y) {
            const CGPoint p = back.apply(CGPoint{x + 0.5, y + 0.5});
            copyPixel(in, int(std::floor(p.x)), int(std::floor(p.y)), out.at(x, y));
        });
    }
    void drawInto(FloatImage& out, const Node& node, const WarpNode& n, const PixelRect& r)
    {
        const FloatImage& in = input(node, 0, r);
        forEach(r, [&](int x, int y) {
            double px[3];
            double py[3];
            n.kernel->map(n.parameters.record.data(), x, y, 1,
                          {{px, px + 1, px + 2}, {py, py + 1, py + 2}});
            for (int c = 0; c < 4; ++c) {
                const int map = n.kernel->maps == 1 ? 0 : (c == 3 ? 1 : c);
                out.at(x, y)[c] = bilinear(in, px[map], py[map], c);
            }
        });
    }
    void drawInto(FloatImage& out, const Node& node, const HalveNode& n, const PixelRect& r)
    {
        const FloatImage& in = input(node, 0, r);
        const PixelRect e = in.rect;
        forEach(r, [&](int x, int y) {
            const int sx = n.originX + 2 * x;
            const int sy = n.originY + 2 * y;
            const int sx1 = std::min(sx + 1, e.x1 - 1);
            const int sy1 = std::min(sy + 1, e.y1 - 1);
            for (int c = 0; c < 4; ++c)
                out.at(x, y)[c] = 0.25f
                    * (in.at(sx, sy)[c] + in.at(sx1, sy)[c] + in.at(sx, sy1)[c]
                       + in.at(sx1, sy1)[c]);
        });
    }
    void drawInto(FloatImage& out, const Node& node, const GaussianNode& n, const PixelRect& r)
    {
        const std::vector<double> weights = blurWeights(double(n.sigma));
        const int reach = int(weights.size()) - 1;
        const FloatImage& in = draw(*node.inputs[0], r.grown(reach));
        FloatImage across({r.x0, r.y0 - reach, r.x1, r.y1 + reach});
        forEach(across.rect,
                [&](int x, int y) { convolve(in, weights, x, y, 1, 0, across.at(x, y)); });
        forEach(r, [&](int x, int y) { convolve(across, weights, x, y, 0, 1, out.at(x, y)); });
    }
    static void convolve(const FloatImage& in, const std::vector<double>& weights, int x, int y,
                         int dx, int dy, float* result)
    {
        const int reach = int(weights.size()) - 1;
        double sums[4] = {};
        for (int k = -reach; k <= reach; ++k) {
            const float* pixel = in.at(x + k * dx, y + k * dy);
            for (int c = 0; c < 4; ++c)
                sums[c] += weights[size_t(std::abs(k))] * double(pixel[c]);
        }
        std::copy_n(sums, 4, result);
    }
    void drawInto(FloatImage& out, const Node& node, const LanczosNode& n, const PixelRect& r)
    {
        const FloatImage& in = input(node, 0, r);
        const PixelRect e = in.rect;
        forEach(r, [&](int x, int y) {
            const LanczosTaps across = lanczosTaps(n.x, x);
            const LanczosTaps down = lanczosTaps(n.y, y);
            double sums[4] = {};
            for (size_t j = 0; j < down.weights.size(); ++j) {
                for (size_t i = 0; i < across.weights.size(); ++i) {
                    const float* pixel = in.at(std::clamp(across.first + int(i), e.x0, e.x1 - 1),
                                               std::clamp(down.first + int(j), e.y0, e.y1 - 1));
                    for (int c = 0; c < 4; ++c)
                        sums[c] += across.weights[i] * down.weights[j] * double(pixel[c]);
                }
            }
            std::copy_n(sums, 4, out.at(x, y));
            out.at(x, y)[3] = std::clamp(out.at(x, y)[3], 0.0f, 1.0f);
        });
    }
    void drawInto(FloatImage& out, const Node& node, const WindowNode& n, const PixelRect& r)
    {
        const FloatImage& in = input(node, 0, r);
        const PixelRect e = in.rect;
        const int side = 2 * n.border + 1;
        std::vector<float> window(size_t(side) * size_t(side) * 4);
        forEach(r, [&](int x, int y) {
            WindowBlock block{.width = 1, .height = 1, .inputStride = side, .outputStride = 1};
            for (int c = 0; c < 4; ++c) {
                float* plane = &window[size_t(c) * size_t(side) * size_t(side)];
                for (int j = 0; j < side; ++j) {
                    for (int i = 0; i < side; ++i)
                        plane[j * side + i] =
                            in.at(std::clamp(x + i - n.border, e.x0, e.x1 - 1),
                                  std::clamp(y + j - n.border, e.y0, e.y1 - 1))[c];
                }
                block.input[c] = plane + n.border * side + n.border;
                block.output[c] = out.at(x, y) + c;
            }
            n.kernel->reference(n.parameters.record.data(), block);
        });
    }
    void drawInto(FloatImage& out, const Node& node, const HistogramNode& n, const PixelRect& r)
    {
        const FloatImage& in = draw(*node.inputs[0], n.region);
        std::vector<double> bins(size_t(n.count) * 4);
        forEach(n.region, [&](int x, int y) {
            const float* p = in.at(x, y);
            for (int c = 0; c < 4; ++c) {
                const float v = c == 3 ? p[3] : (p[3] > 0 ? p[c] / p[3] : 0.0f);
                const double bin = std::isnan(v) ? 0 : std::floor(double(v) * n.count);
                ++bins[size_t(std::clamp(bin, 0.0, n.count - 1.0)) * 4 + size_t(c)];
            }
        });
        forEach(r, [&](int x, int y) {
            for (int c = 0; c < 4; ++c)
                out.at(x, y)[c] =
                    float(bins[size_t(x) * 4 + size_t(c)] / n.region.area() * double(n.scale));
        });
    }

    void drawInto(FloatImage& out, const Node& node, const PatchesNode& n, const PixelRect& r)
    {
        FloatImage ground = input(node, 0, r);
        for (const NodePtr& patch : n.patches) {
            const PixelRect place = patch->extent.rect;
            Renderer renderer(&ground);
            const FloatImage drawn = renderer.draw(*patch, place);
            forEach(place, [&](int x, int y) { copyPixel(drawn, x, y, ground.at(x, y)); });
        }
        forEach(r, [&](int x, int y) { copyPixel(ground, x, y, out.at(x, y)); });
    }
    void drawInto(FloatImage& out, const Node&, const PatchGroundNode&, const PixelRect& r)
    {
        forEach(r, [&](int x, int y) { copyPixel(*m_ground, x, y, out.at(x, y)); });
    }

    const FloatImage* m_ground;
    std::map<std::tuple<const Node*, int, int, int, int>, FloatImage> m_drawn;
};

} // namespace

FloatImage drawReference(const CIImage& image, const PixelRect& rect)
{
    Renderer renderer;
    return renderer.draw(*image.node(), rect);
}

} // namespace orvane
