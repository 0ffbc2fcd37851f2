// accuracy: how far the tiled renderer's pictures are from those of the plain one, stage by stage.

#include "BakeChain.h"
#include "BenchmarkInputs.h"
#include "Bitmap.h"
#include "Geometry.h"
#include "LevelDifferences.h"
#include "Pipeline.h"
#include "StageSettings.h"

#include <cstdio>

using namespace orvane;

namespace {

constexpr const char* usage =
    "accuracy PICTURE EDITS-FOLDER\n"
    "\n"
    "Reduces the picture to 600 pixels, draws each stage alone at a strong setting, and then the\n"
    "whole everything-edit.json, with the tiled renderer and with the plain one, and prints the\n"
    "differences in 8-bit levels before rounding: with intermediates as for 8-bit results, and as\n"
    "for deeper ones.\n";

constexpr int longEdge = 600;

PixelRect rectOf(const CIImage& image)
{
    return roundedRect(image.extent());
}

/// Drawn once to 16 bits, so that only the stage itself differs between the two renderers.
CIImage reduced(const CIImage& source)
{
    const CIImage small = Geometry::resized(source, longEdge);
    const PixelRect rect = rectOf(small);
    auto bitmap =
        std::make_shared<Bitmap>(rect.width(), rect.height(), 3, SampleType::U16, AlphaKind::None);
    Baker::context().render(small, bitmap->row(0), bitmap->rowBytes(), rect.cgRect(),
                            PixelFormat::RGB16);
    return CIImage::withBitmap(std::move(bitmap));
}

void printLine(const char* name, const CIImage& image)
{
    const PixelRect rect = rectOf(image);
    const FloatImage expected = drawReference(image, rect);
    const auto compact =
        test::levelDifferences(test::drawnInTiles(image, rect, StoredFormat::Compact), expected);
    const auto full =
        test::levelDifferences(test::drawnInTiles(image, rect, StoredFormat::Float), expected);
    std::printf("%-24s %9.4f %9.5f %9.4f %9.5f   (%d, %d) %c: %.6g for %.6g\n", name,
                compact.largest, compact.mean, full.largest, full.mean, compact.x, compact.y,
                "rgba"[compact.channel], double(compact.value), double(compact.expected));
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fprintf(stderr, "%s", usage);
        return 2;
    }
    const Result<CIImage> source = readPicture(argv[1]);
    const Result<EditState> edit = readEdit(std::string(argv[2]) + "/everything-edit.json");
    if (!source || !edit) {
        std::fprintf(stderr, "%s\n", (!source ? source.error() : edit.error()).message.c_str());
        return 1;
    }
    const CIImage picture = reduced(*source);
    std::printf("%-24s %9s %9s %9s %9s   %s\n", "levels of 255", "16 bits", "mean", "32 bits",
                "mean", "where, with 16 bits");
    for (const test::StageSetting& setting : test::allStageSettings())
        printLine(setting.stage, Pipeline::render(picture, setting.strong));
    printLine("everything-edit.json", finishedImage(picture, *edit, {}));
    return 0;
}
