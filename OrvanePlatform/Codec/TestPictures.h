#pragma once

#include "Bitmap.h"

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

struct png_struct_def;
struct png_info_def;
struct tiff;

/// Small pictures in every format, made by the formats' own libraries, for the tests of decoding.
namespace orvane::test {

using File = std::vector<uint8_t>;

/// A pixel as the engine is to see it: linear sRGB and alpha, not premultiplied.
std::array<double, 4> linearPixel(const Bitmap& bitmap, int x, int y);

/// The test picture, as sRGB-encoded values of 0..1: red runs along x, green along y, blue is one
/// quarter and alpha falls along x. Grey is red.
constexpr int pictureWidth = 20;
constexpr int pictureHeight = 12;
double sampleOf(int channel, int x, int y);
/// The same at a whole depth: round(value * highest).
uint32_t sampleOf(int channel, int x, int y, uint32_t highest);
/// Interleaved samples of the whole picture; channels as in a Bitmap.
std::vector<uint8_t> samples8(int channels);
std::vector<uint16_t> samples16(int channels, uint32_t highest = 65535);

struct JpegOptions {
    int channels = 3; ///< 1, 3, or 4 for inks
    int quality = 100;
    bool isProgressive = false;
    bool isInverted = false; ///< inks with Adobe's marker
    File exif = {}; ///< a TIFF stream
    File icc = {}; ///< written in chunks of 100 bytes
    std::string xmp = {};
    File iptc = {};
};
File jpeg(const JpegOptions& options = {}, int width = pictureWidth, int height = pictureHeight);

struct PngOptions {
    int colorType = 2;
    int depth = 8;
    bool isInterlaced = false;
    /// More chunks; called before the header is written.
    std::function<void(png_struct_def*, png_info_def*)> describe = {};
};
File png(const PngOptions& options = {});
File pngChunk(const std::string& name, const File& data);
/// The file with more chunks behind its header.
File pngWith(File file, const std::vector<File>& chunks);
/// A zlib stream.
File deflated(const File& data);
void appendNumber(File& file, size_t number); ///< big-endian, of 32 bits

struct TiffOptions {
    int photometric = 2;
    int samples = 3;
    int bits = 8;
    int sampleFormat = 1;
    int compression = 1;
    bool isPlanar = false;
    bool isTiled = false;
    int extraSample = -1; ///< kind of the last sample
    const char* mode = "w"; ///< "wb" big-endian, "w8" BigTIFF
    std::function<void(tiff*)> describe = {};
    /// The sample in the file's own depth; by default sampleOf() for all depths.
    std::function<double(int channel, int x, int y)> sample = {};
};
File tiff(const TiffOptions& options = {});

struct HeifOptions {
    bool isAvif = false;
    int bits = 8;
    int orientation = 1; ///< as the container stores it, in Exif's numbers
    int primaries = 0; ///< with `transfer`, an nclx profile
    int transfer = 0;
    File icc = {};
    File exif = {};
};
/// A picture of one colour, 96 x 64, given in sRGB-like samples, in lossless or near lossless
/// coding. Empty when libheif has no encoder for it.
File heif(const std::array<double, 3>& color, const HeifOptions& options = {});

File webp(bool hasAlpha, const File& icc = {}, const File& exif = {}, const std::string& xmp = {});

/// An uncompressed DNG with a Bayer mosaic of one raw level for each of red, green and blue.
File dng(int red, int green, int blue, int orientation = 1);

/// A TIFF stream with an orientation and a colour space, in either byte order.
File exifBlock(int orientation, int colorSpace = 0, bool isR03 = false, bool bigEndian = false);

} // namespace orvane::test
