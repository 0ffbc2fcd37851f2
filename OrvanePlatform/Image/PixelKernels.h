#pragma once

#include "CIImage.h"
#include "GreyRange.h"
#include "Node.h"

#include <span>
#include <string_view>

namespace orvane {

inline constexpr int maxKernelInputs = 7;
/// Rows may be read and written up to a whole number of vectors past their end: 16 floats.
inline constexpr int rowPadding = 16;

/// A run of pixels of one row, in planes r, g, b, a.
struct PointwiseRow {
    int x = 0; ///< of the first pixel
    int y = 0;
    int count = 0;
    const float* inputs[maxKernelInputs][4] = {};
    float* output[4] = {};
};

using PointwiseRun = void (*)(const void* record, const float* table, const PointwiseRow& row);

/// What an operation does to alpha when every input is opaque.
enum class OpaqueRule {
    KeepsAlpha, ///< opaque inputs give an opaque result
    ChangesAlpha, ///< nothing is known of the result
};

/// Which inputs decide a pixel alone, so that the others need not be drawn there.
enum class Cover {
    None,
    /// Input 0 where it is opaque; input 1 where input 0 has no pixels.
    FirstOverSecond,
    /// Input 1 where input 2, the mask, has no pixels.
    FirstWithinMask,
};

/// A pixel program: the same template, compiled for every instruction set and, as the reference,
/// for single floats. See PointwiseKernel-inl.h for how one is written.
struct PointwiseKernel {
    std::string_view name;
    int inputCount;
    OpaqueRule rule;
    Cover cover;
    PointwiseRun opaque; ///< every input opaque: alpha planes are neither read nor written
    PointwiseRun general;
    PointwiseRun reference;
    /// The rows of `rect` in which input `index` may have a say; null: all. Elsewhere the program
    /// looks at it but makes no use of what it sees. Of a part of `rect` these are never more.
    PixelRect (*deciding)(const Node& node, size_t index, const PixelRect& rect) = nullptr;
    /// Of generators and what is made of them, greyRange; null: unknown.
    GreyRange (*range)(const Node& node, const PixelRect& rect) = nullptr;
};

/// Where a resampling reads: positions in continuous input coordinates, or NaN for "nothing here".
struct WarpPositions {
    double* x[3] = {}; ///< for red, for green and alpha, for blue; [0] alone when there is one map
    double* y[3] = {};
};

struct WarpKernel {
    std::string_view name;
    int maps; ///< 1, or 3: red, green with alpha, blue
    /// Positions for the centres of pixels (x .. x + count - 1, y).
    void (*map)(const void* record, int x, int y, int count, const WarpPositions& positions);
    /// A rectangle that holds every position of the rectangle's pixel centres.
    CGRect (*region)(const void* record, const PixelRect& rect);
};

/// A block of planes for window kernels: plane[c] points at pixel (0, 0) of the output block, and
/// `border` further pixels may be read on each side. An opaque block has no alpha plane.
struct WindowBlock {
    int width = 0;
    int height = 0;
    const float* input[4] = {};
    std::ptrdiff_t inputStride = 0;
    float* output[4] = {};
    std::ptrdiff_t outputStride = 0;
};

using WindowRun = void (*)(const void* record, const WindowBlock& block);

struct WindowKernel {
    std::string_view name;
    WindowRun tiled;
    WindowRun reference;
};

/// A recipe of a pixel program over the union of its inputs' extents.
CIImage applyKernel(const PointwiseKernel& kernel, Parameters parameters,
                    std::span<const CIImage> inputs);
/// The same over an extent of its own; infinite is allowed.
CIImage applyKernel(const PointwiseKernel& kernel, Parameters parameters,
                    std::span<const CIImage> inputs, const CGRect& extent, bool opaque);
/// A recipe of a resampling over an extent.
CIImage applyWarp(const WarpKernel& kernel, Parameters parameters, const CIImage& input,
                  const CGRect& extent);

} // namespace orvane
