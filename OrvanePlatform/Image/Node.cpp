#include "Node.h"

#include "Bitmap.h"
#include "PixelKernels.h"

#include <algorithm>
#include <cmath>

namespace orvane {

PixelRect OrthogonalTransform::apply(const PixelRect& r) const
{
    if (r.isEmpty())
        return {};
    const int ax = a * r.x0 + c * r.y0 + tx;
    const int ay = b * r.x0 + d * r.y0 + ty;
    const int bx = a * r.x1 + c * r.y1 + tx;
    const int by = b * r.x1 + d * r.y1 + ty;
    return {std::min(ax, bx), std::min(ay, by), std::max(ax, bx), std::max(ay, by)};
}

OrthogonalTransform OrthogonalTransform::inverted() const
{
    // The inverse of a signed permutation matrix is its transpose.
    return {a, c, b, d, -(a * tx + b * ty), -(c * tx + d * ty)};
}

CGAffineTransform OrthogonalTransform::affine() const
{
    return {double(a), double(b), double(c), double(d), double(tx), double(ty)};
}

int gaussianBorder(float sigma)
{
    return int(std::ceil(3.0 * double(sigma)));
}

namespace {

template <class... Cases> struct Overload : Cases... {
    using Cases::operator()...;
};
template <class... Cases> Overload(Cases...) -> Overload<Cases...>;

void addRect(DigestBuilder& digest, const PixelRect& r)
{
    const int sides[] = {r.x0, r.y0, r.x1, r.y1};
    digest.add(sides, sizeof sides);
}

void addParameters(DigestBuilder& digest, const void* kernel, const Parameters& parameters)
{
    digest.add(uint64_t(reinterpret_cast<uintptr_t>(kernel)));
    digest.add(parameters.record.data(), parameters.record.size());
    if (parameters.tableDigest)
        digest.add(*parameters.tableDigest);
    else if (parameters.table)
        digest.add(parameters.table->data(), parameters.table->size() * sizeof(float));
}

void addData(DigestBuilder& digest, const NodeData& data)
{
    digest.add(uint64_t(data.index()));
    std::visit(
        Overload{[&](const SourceNode& n) { digest.add(n.bitmap->identity()); },
                 [&](const PointwiseNode& n) { addParameters(digest, n.kernel, n.parameters); },
                 [](const CropNode&) {}, [](const ClampNode&) {},
                 [&](const OrthogonalNode& n) { digest.add(&n.forward, sizeof n.forward); },
                 [&](const WarpNode& n) { addParameters(digest, n.kernel, n.parameters); },
                 [&](const HalveNode& n) { digest.add(&n, sizeof n); },
                 [&](const GaussianNode& n) { digest.add(&n.sigma, sizeof n.sigma); },
                 [&](const LanczosNode& n) { digest.add(&n, sizeof n); },
                 [&](const WindowNode& n) {
                     addParameters(digest, n.kernel, n.parameters);
                     digest.add(uint64_t(n.border));
                 },
                 [&](const HistogramNode& n) {
                     addRect(digest, n.region);
                     digest.add(uint64_t(n.count));
                     digest.add(&n.scale, sizeof n.scale);
                 },
                 [&](const PatchesNode& n) {
                     for (const NodePtr& patch : n.patches)
                         digest.add(patch->digest);
                 },
                 [](const PatchGroundNode&) {}},
        data);
}

/// The input pixels that output pixels [first, last) of an axis weigh.
void lanczosSpan(const LanczosAxis& axis, int first, int last, int& inputFirst, int& inputLast)
{
    const double scale = double(axis.count) / axis.inputCount;
    const double reach = scale < 1 ? 3 / scale : 2;
    const double low = (first - axis.origin + 0.5) / scale - reach;
    const double high = (last - 1 - axis.origin + 0.5) / scale + reach;
    inputFirst = axis.inputOrigin + heldToInt(std::floor(low - 0.5));
    inputLast = axis.inputOrigin + heldToInt(std::ceil(high + 0.5));
}

/// At least one pixel of the extent: what clamped reads of `rect` touch.
PixelRect clampedInto(const PixelRect& rect, const PixelRect& extent)
{
    if (extent.isEmpty())
        return {};
    PixelRect held;
    held.x0 = std::clamp(rect.x0, extent.x0, extent.x1 - 1);
    held.y0 = std::clamp(rect.y0, extent.y0, extent.y1 - 1);
    held.x1 = std::clamp(rect.x1, held.x0 + 1, extent.x1);
    held.y1 = std::clamp(rect.y1, held.y0 + 1, extent.y1);
    return held;
}

/// Whether all pixels of `rect` are opaque, as far as the recipe tells without a look at any.
bool isOpaqueOver(const Node& node, const PixelRect& rect)
{
    if (!node.extent.contains(rect))
        return false;
    if (node.as<CropNode>())
        return isOpaqueOver(*node.inputs[0], rect);
    // Away from its edges even what is turned, or put into perspective, hides what lies below.
    if (const auto* warp = node.as<WarpNode>(); warp && !node.opaque) {
        const PixelRect reach = warpReach(*warp, rect);
        return !reach.isEmpty() && isOpaqueOver(*node.inputs[0], reach);
    }
    return node.opaque;
}

/// The part of `rect` in which input `index` has a say.
PixelRect deciding(const Node& node, const PointwiseKernel& kernel, size_t index,
                   const PixelRect& rect)
{
    if (kernel.deciding)
        return kernel.deciding(node, index, rect);
    const Cover cover = kernel.cover;
    if (cover == Cover::FirstOverSecond && index == 1) {
        return isOpaqueOver(*node.inputs[0], rect) ? PixelRect{} : rect;
    }
    if (cover == Cover::FirstWithinMask && index == 0)
        return node.inputs[2]->extent.clipped(rect);
    return rect;
}

PixelRect halvedSource(const HalveNode& n, const PixelRect& r)
{
    return {heldToInt(n.originX + 2.0 * r.x0), heldToInt(n.originY + 2.0 * r.y0),
            heldToInt(n.originX + 2.0 * r.x1), heldToInt(n.originY + 2.0 * r.y1)};
}

} // namespace

NodePtr makeNode(NodeData data, std::vector<NodePtr> inputs, Extent extent, bool opaque)
{
    static const auto none = std::make_shared<const ImageProperties>();
    auto node = std::make_shared<Node>();
    node->data = std::move(data);
    node->inputs = std::move(inputs);
    node->extent = extent;
    node->opaque = opaque;
    node->properties = node->inputs.empty() ? none : node->inputs.front()->properties;
    const auto* source = node->as<SourceNode>();
    node->extendedRange = (source && source->bitmap->type() == SampleType::F32)
        || std::ranges::any_of(node->inputs, [](const NodePtr& n) { return n->extendedRange; });
    DigestBuilder digest;
    addData(digest, node->data);
    for (const NodePtr& input : node->inputs)
        digest.add(input->digest);
    digest.add(uint64_t(extent.infinite));
    addRect(digest, extent.rect);
    node->digest = digest.digest();
    return node;
}

PixelRect warpReach(const WarpNode& warp, const PixelRect& rect)
{
    const CGRect region = warp.kernel->region(warp.parameters.record.data(), rect);
    // A bilinear sample reads half a pixel to each side; one more covers rounding.
    return roundedOutward(region.inset(-1.5, -1.5));
}

PixelRect neededInput(const Node& node, size_t index, const PixelRect& rect)
{
    if (rect.isEmpty())
        return {};
    const Extent& extent = node.inputs[index]->extent;
    const auto clampedRead = [&](const PixelRect& r) {
        return extent.infinite ? r : clampedInto(r, extent.rect);
    };
    const PixelRect needed = std::visit(
        Overload{[](const SourceNode&) { return PixelRect{}; },
                 [&](const PointwiseNode& n) { return deciding(node, *n.kernel, index, rect); },
                 [&](const CropNode&) { return rect; },
                 [&](const ClampNode&) { return clampedRead(rect); },
                 [&](const OrthogonalNode& n) { return n.forward.inverted().apply(rect); },
                 [&](const WarpNode& n) { return warpReach(n, rect); },
                 [&](const HalveNode& n) { return clampedRead(halvedSource(n, rect)); },
                 [&](const GaussianNode& n) { return rect.grown(gaussianBorder(n.sigma)); },
                 [&](const LanczosNode& n) {
                     PixelRect source;
                     lanczosSpan(n.x, rect.x0, rect.x1, source.x0, source.x1);
                     lanczosSpan(n.y, rect.y0, rect.y1, source.y0, source.y1);
                     return clampedRead(source);
                 },
                 [&](const WindowNode& n) { return clampedRead(rect.grown(n.border)); },
                 [&](const HistogramNode& n) { return n.region; },
                 // A patch may bring pixels from anywhere.
                 [&](const PatchesNode&) { return node.extent.rect; },
                 [](const PatchGroundNode&) { return PixelRect{}; }},
        node.data);
    return extent.clipped(needed);
}

} // namespace orvane
