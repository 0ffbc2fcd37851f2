#pragma once

#include "CGGeometry.h"
#include "Digest.h"
#include "ImageProperties.h"
#include "PixelRect.h"

#include <cstring>
#include <memory>
#include <optional>
#include <type_traits>
#include <variant>
#include <vector>

namespace orvane {

class Bitmap;
struct PointwiseKernel;
struct WarpKernel;
struct WindowKernel;

/// The numbers of one operation: a plain record of the kernel's own, and a table where it needs
/// one.
struct Parameters {
    std::vector<std::byte> record;
    std::shared_ptr<const std::vector<float>> table;
    /// The table's digest where its owner keeps it: 4 MB take 5 ms to digest.
    std::optional<Digest> tableDigest;

    template <class Record>
    static Parameters of(const Record& value, std::shared_ptr<const std::vector<float>> table = {})
    {
        static_assert(std::is_trivially_copyable_v<Record>);
        Parameters parameters;
        parameters.record.resize(sizeof value);
        std::memcpy(parameters.record.data(), &value, sizeof value);
        parameters.table = std::move(table);
        return parameters;
    }
    const float* tableData() const { return table ? table->data() : nullptr; }
};

/// A whole-pixel move, mirror or quarter turn: x' = a x + c y + tx, y' = b x + d y + ty, on pixel
/// edges; a..d are -1, 0 or 1.
struct OrthogonalTransform {
    int a = 1;
    int b = 0;
    int c = 0;
    int d = 1;
    int tx = 0;
    int ty = 0;

    PixelRect apply(const PixelRect& r) const;
    OrthogonalTransform inverted() const;
    CGAffineTransform affine() const;
};

// ---- What a node is, as data: this decides which pixels of its inputs it needs ----

/// Pixels of a bitmap; rows of the bitmap run from the top, the extent is (0, 0, width, height).
struct SourceNode {
    std::shared_ptr<const Bitmap> bitmap;
};
/// The same pixel of n inputs, or of none (a generator).
struct PointwiseNode {
    const PointwiseKernel* kernel;
    Parameters parameters;
};
/// The input within a smaller extent.
struct CropNode { };
/// The input's edge pixels continued without end.
struct ClampNode { };
struct OrthogonalNode {
    OrthogonalTransform forward;
};
struct Node;
/// Bilinear samples of the input at mapped positions.
struct WarpNode {
    const WarpKernel* kernel;
    Parameters parameters;
    /// Of an affine transform: what it was applied to, and the whole transform; lets chains
    /// combine.
    std::shared_ptr<const Node> affineInput;
    CGAffineTransform affine;
};
/// 2x2 averages: pixel (i, j) covers (2i, 2j) .. of the input, counted from (originX, originY).
struct HalveNode {
    int originX = 0;
    int originY = 0;
};
struct GaussianNode {
    float sigma;
};
/// One axis of a Lanczos resampling: `count` samples from `origin` on, made of `inputCount` pixels
/// from `inputOrigin` on.
struct LanczosAxis {
    int origin = 0;
    int count = 1;
    int inputOrigin = 0;
    int inputCount = 1;
};
struct LanczosNode {
    LanczosAxis x;
    LanczosAxis y;
};
/// A small neighbourhood, `border` pixels to each side, edges clamped.
struct WindowNode {
    const WindowKernel* kernel;
    Parameters parameters;
    int border;
};
/// Counts of the input's pixels over a rectangle, as a row of `count` pixels.
struct HistogramNode {
    PixelRect region;
    int count;
    float scale;
};

/// The input with patches laid on it, one after the other: small recipes over PatchGroundNode, each
/// of which takes the place of what lies in its extent, a part of the input's.
struct PatchesNode {
    std::vector<std::shared_ptr<const Node>> patches;
};
/// In a patch's recipe, the picture as the patches before it have left it.
struct PatchGroundNode { };

using NodeData = std::variant<SourceNode, PointwiseNode, CropNode, ClampNode, OrthogonalNode,
                              WarpNode, HalveNode, GaussianNode, LanczosNode, WindowNode,
                              HistogramNode, PatchesNode, PatchGroundNode>;

/// One operation of a recipe. Immutable once shared.
struct Node {
    NodeData data;
    std::vector<std::shared_ptr<const Node>> inputs;
    Extent extent;
    /// Alpha is 1 at every pixel of the extent.
    bool opaque = false;
    /// A source has float samples: there may be light far beyond white.
    bool extendedRange = false;
    std::shared_ptr<const ImageProperties> properties;
    Digest digest;

    template <class Kind> const Kind* as() const { return std::get_if<Kind>(&data); }
};

using NodePtr = std::shared_ptr<const Node>;

/// Finishes a node: its digest from everything else, its properties from the first input, its range
/// from all of them.
NodePtr makeNode(NodeData data, std::vector<NodePtr> inputs, Extent extent, bool opaque);

/// The border of a Gaussian: ceil(3 sigma).
int gaussianBorder(float sigma);

/// The pixels that the samples of `rect` are made of, wherever the input has some.
PixelRect warpReach(const WarpNode& warp, const PixelRect& rect);

/// The pixels of input `index` that `node` needs to draw `rect` (within its extent), clipped to
/// that input's extent. Empty when it needs none.
PixelRect neededInput(const Node& node, size_t index, const PixelRect& rect);

} // namespace orvane
