#include "CIImage.h"

#include "Bitmap.h"
#include "Filters/Affine.h"
#include "Filters/CIFilter.h"
#include "Node.h"
#include "PixelKernels.h"

#include <cmath>
#include <optional>

namespace orvane {

namespace {

/// The transform as a whole-pixel one, when it is that to within rounding.
std::optional<OrthogonalTransform> wholePixel(const CGAffineTransform& t)
{
    const double numbers[] = {t.a, t.b, t.c, t.d, t.tx, t.ty};
    int rounded[6];
    for (int i = 0; i < 6; ++i) {
        // The sines of a quarter turn are off by 6e-17; a real turn by 1e-9 moves nothing visibly.
        const double noise = i < 4 ? 1e-9 : 1e-6;
        if (std::abs(numbers[i]) > farAway || std::abs(numbers[i] - std::round(numbers[i])) > noise)
            return {};
        rounded[i] = int(std::round(numbers[i]));
    }
    const bool upright = std::abs(rounded[0]) == 1 && std::abs(rounded[3]) == 1 && rounded[1] == 0
        && rounded[2] == 0;
    const bool turned = std::abs(rounded[1]) == 1 && std::abs(rounded[2]) == 1 && rounded[0] == 0
        && rounded[3] == 0;
    if (!upright && !turned)
        return {};
    return OrthogonalTransform{rounded[0], rounded[1], rounded[2],
                               rounded[3], rounded[4], rounded[5]};
}

CIImage orthogonal(const NodePtr& input, const OrthogonalTransform& t)
{
    const Extent& extent = input->extent;
    return CIImage(makeNode(OrthogonalNode{t}, {input},
                            extent.infinite ? extent : Extent::of(t.apply(extent.rect)),
                            input->opaque));
}

} // namespace

CIImage::CIImage()
{
    static const NodePtr empty = makeNode(CropNode{}, {}, Extent{}, false);
    m_node = empty;
}

CIImage::CIImage(std::shared_ptr<const Node> node)
    : m_node(std::move(node))
{
}

CIImage CIImage::withBitmap(std::shared_ptr<const Bitmap> bitmap, ImageProperties properties)
{
    const PixelRect rect{0, 0, bitmap->width(), bitmap->height()};
    const bool opaque = !bitmap->hasAlpha();
    const CIImage image(makeNode(SourceNode{std::move(bitmap)}, {}, Extent::of(rect), opaque));
    return properties.isEmpty() ? image : image.settingProperties(std::move(properties));
}

CGRect CIImage::extent() const
{
    return m_node->extent.cgRect();
}

bool CIImage::isOpaque() const
{
    return m_node->opaque;
}

const ImageProperties& CIImage::properties() const
{
    return *m_node->properties;
}

CIImage CIImage::settingProperties(ImageProperties properties) const
{
    if (properties == *m_node->properties)
        return *this;
    auto node = std::make_shared<Node>(*m_node);
    node->properties = std::make_shared<const ImageProperties>(std::move(properties));
    return CIImage(std::move(node));
}

CIImage CIImage::cropped(const CGRect& rect) const
{
    if (rect.isInfinite())
        return *this;
    const Extent& extent = m_node->extent;
    const PixelRect cut = extent.clipped(roundedRect(rect));
    if (cut.isEmpty())
        return CIImage();
    if (!extent.infinite && cut == extent.rect)
        return *this;
    const NodePtr& input = m_node->as<CropNode>() ? m_node->inputs.front() : m_node;
    return CIImage(makeNode(CropNode{}, {input}, Extent::of(cut), input->opaque))
        .settingProperties(properties());
}

CIImage CIImage::clampedToExtent() const
{
    if (m_node->extent.infinite || m_node->extent.isEmpty())
        return *this;
    return CIImage(makeNode(ClampNode{}, {m_node}, Extent::everywhere(), m_node->opaque));
}

CIImage CIImage::transformed(const CGAffineTransform& transform) const
{
    if (transform.isIdentity() || !transform.isFinite() || isEmpty())
        return *this;
    NodePtr base = m_node;
    CGAffineTransform whole = transform;
    if (const auto* moved = m_node->as<OrthogonalNode>()) {
        base = m_node->inputs.front();
        whole = moved->forward.affine().concatenated(transform);
    } else if (const auto* warp = m_node->as<WarpNode>(); warp && warp->affineInput) {
        base = warp->affineInput;
        whole = warp->affine.concatenated(transform);
    }
    if (const auto exact = wholePixel(whole)) {
        if (exact->affine().isIdentity())
            return CIImage(base).settingProperties(properties());
        return orthogonal(base, *exact).settingProperties(properties());
    }
    return affineWarp(base, whole).settingProperties(properties());
}

CIImage CIImage::compositedOver(const CIImage& background) const
{
    return CIFilter::sourceOverCompositing(*this, background);
}

CIImage CIImage::gaussianBlurred(double sigma) const
{
    return CIFilter::gaussianBlur(*this, sigma);
}

CIImage CIImage::oriented(int exifOrientation) const
{
    const Extent& extent = m_node->extent;
    if (exifOrientation < 2 || exifOrientation > 8 || extent.infinite || extent.isEmpty())
        return *this;
    const CIImage origin =
        transformed(CGAffineTransform::translation(-extent.rect.x0, -extent.rect.y0));
    const double w = extent.rect.width();
    const double h = extent.rect.height();
    // Columns: a, b, c, d, tx, ty of each orientation, y up, for a picture of w x h.
    const CGAffineTransform turns[] = {
        {-1, 0, 0, 1, w, 0}, // 2: mirrored left to right
        {-1, 0, 0, -1, w, h}, // 3: half a turn
        {1, 0, 0, -1, 0, h}, // 4: mirrored top to bottom
        {0, -1, -1, 0, h, w}, // 5: transposed about the diagonal from the top left
        {0, -1, 1, 0, 0, w}, // 6: a quarter turn clockwise
        {0, 1, 1, 0, 0, 0}, // 7: transposed about the other diagonal
        {0, 1, -1, 0, h, 0}, // 8: a quarter turn counter-clockwise
    };
    return origin.transformed(turns[exifOrientation - 2]);
}

Digest CIImage::digest() const
{
    return m_node->digest;
}

CIImage applyKernel(const PointwiseKernel& kernel, Parameters parameters,
                    std::span<const CIImage> inputs)
{
    Extent extent = inputs.empty() ? Extent::everywhere() : Extent{};
    for (const CIImage& input : inputs)
        extent = extent.united(input.node()->extent);
    bool opaque = kernel.rule == OpaqueRule::KeepsAlpha && !inputs.empty();
    for (const CIImage& input : inputs)
        opaque = opaque && input.node()->opaque && input.node()->extent.contains(extent);
    return applyKernel(kernel, std::move(parameters), inputs, extent.cgRect(), opaque);
}

CIImage applyKernel(const PointwiseKernel& kernel, Parameters parameters,
                    std::span<const CIImage> inputs, const CGRect& extent, bool opaque)
{
    std::vector<NodePtr> nodes;
    for (const CIImage& input : inputs)
        nodes.push_back(input.node());
    const Extent area =
        extent.isInfinite() ? Extent::everywhere() : Extent::of(roundedRect(extent));
    if (area.isEmpty())
        return CIImage();
    return CIImage(
        makeNode(PointwiseNode{&kernel, std::move(parameters)}, std::move(nodes), area, opaque));
}

CIImage applyWarp(const WarpKernel& kernel, Parameters parameters, const CIImage& input,
                  const CGRect& extent)
{
    const Extent area =
        extent.isInfinite() ? Extent::everywhere() : Extent::of(roundedRect(extent));
    if (area.isEmpty() || input.isEmpty())
        return CIImage();
    const NodePtr& node = input.node();
    const bool opaque = node->opaque && node->extent.infinite;
    return CIImage(
        makeNode(WarpNode{&kernel, std::move(parameters), nullptr, {}}, {node}, area, opaque));
}

} // namespace orvane
