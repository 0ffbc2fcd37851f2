// orvane-bake: the export's own chain without a window, to measure, compare and reproduce.

#include "BakeChain.h"
#include "BenchmarkInputs.h"
#include "PictureDecoder.h"

#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>

using namespace orvane;

namespace {

constexpr const char* usage =
    "orvane-bake INPUT EDIT.json OUTPUT [--quality N] [--long-edge N] [--png16]\n"
    "            [--metadata keep|stripLocation|stripAll] [--lut FILE.cube]\n"
    "            [--time] [--passes]\n"
    "\n"
    "Bakes an edit into a new file, as the editor's export does. The format follows OUTPUT's\n"
    "extension: jpg, png, heic or tiff. Quality is 0 to 100 (90 when not given). --time prints "
    "the\n"
    "milliseconds of decoding, of drawing up the recipe with its intermediates, and of encoding,\n"
    "--passes those of each pass over the picture.\n";

struct Arguments {
    std::string input;
    std::string edit;
    std::string output;
    std::string lut;
    ExportOptions options;
    bool time = false;
    bool passes = false;
};

std::optional<double> number(const char* text)
{
    double value = 0;
    const char* end = text + std::strlen(text);
    const auto [stop, error] = std::from_chars(text, end, value);
    if (error != std::errc() || stop != end)
        return {};
    return value;
}

/// Sets one "--name value" pair; an error says what is wrong with it.
Result<void> setOption(Arguments& arguments, const std::string& name, const char* value)
{
    if (name == "--lut") {
        arguments.lut = value;
        return {};
    }
    if (name == "--metadata") {
        const auto metadata = Baker::metadataWithRawValue(value);
        if (!metadata)
            return Error{"--metadata takes keep, stripLocation or stripAll."};
        arguments.options.metadata = *metadata;
        return {};
    }
    const auto parsed = number(value);
    if (name == "--quality" && parsed && *parsed >= 0 && *parsed <= 100) {
        arguments.options.quality = *parsed / 100;
        return {};
    }
    if (name == "--long-edge" && parsed && *parsed >= 0 && *parsed <= 65535) {
        arguments.options.longEdge = int(*parsed);
        return {};
    }
    return Error{name + " cannot be " + value + "."};
}

Result<Arguments> parsed(int count, char** values)
{
    Arguments arguments;
    std::string* const files[] = {&arguments.input, &arguments.edit, &arguments.output};
    size_t fileCount = 0;
    for (int i = 1; i < count; ++i) {
        const std::string word = values[i];
        if (word == "--png16") {
            arguments.options.png16 = true;
        } else if (word == "--time") {
            arguments.time = true;
        } else if (word == "--passes") {
            arguments.passes = true;
        } else if (word == "--quality" || word == "--long-edge" || word == "--metadata"
                   || word == "--lut") {
            if (i + 1 >= count)
                return Error{word + " needs a value."};
            if (Result<void> set = setOption(arguments, word, values[++i]); !set)
                return set.error();
        } else if (word.starts_with("--") || fileCount == 3) {
            return Error{"\"" + word + "\" is not understood."};
        } else {
            *files[fileCount++] = word;
        }
    }
    if (fileCount < 3)
        return Error{"INPUT, EDIT.json and OUTPUT are needed."};
    const auto format =
        exportFormatOfExtension(std::filesystem::path(arguments.output).extension().string());
    if (!format)
        return Error{"OUTPUT must end in .jpg, .png, .heic or .tiff."};
    arguments.options.format = *format;
    return arguments;
}

Result<std::optional<LUT>> readTable(const std::string& path)
{
    if (path.empty())
        return std::optional<LUT>();
    Result<std::string> text = textFile(path);
    if (!text)
        return text.error();
    std::optional<LUT> table = LUT::fromCube(*text);
    if (!table)
        return Error{path + " is not a 3D table of 2 to 64 entries a side."};
    return table;
}

double millisecondsSince(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
        .count();
}

Result<void> bake(const Arguments& arguments)
{
    const Result<EditState> state = readEdit(arguments.edit);
    if (!state)
        return state.error();
    const Result<std::optional<LUT>> table = readTable(arguments.lut);
    if (!table)
        return table.error();
    const auto start = std::chrono::steady_clock::now();
    const Result<DecodedPicture> picture = decodePictureFile(arguments.input);
    if (!picture)
        return Error{arguments.input + ": " + picture.error().message};
    if (!picture->note.empty())
        std::fprintf(stderr, "%s: %s\n", arguments.input.c_str(), picture->note.c_str());
    const double decoded = millisecondsSince(start);
    const CIImage finished = finishedImage(imageFromPicture(*picture), *state, *table);
    DrawStatistics statistics;
    Result<void> written = exportFile(finished, arguments.options, arguments.output,
                                      DrawOptions{.statistics = &statistics});
    if (!written)
        return written;
    if (arguments.time) {
        const double total = millisecondsSince(start);
        std::printf("decode %.1f ms, render %.1f ms, encode %.1f ms (overlapping the render's last "
                    "pass), total %.1f ms; %d passes, %d stored, %.0f MB at most\n",
                    decoded, statistics.drawMilliseconds, statistics.sinkMilliseconds, total,
                    statistics.passes, statistics.storedImages,
                    double(statistics.peakStoredBytes) / 1e6);
    }
    for (const PassStatistics& pass : statistics.passTimes) {
        if (arguments.passes)
            std::printf("%8.1f ms %7.2f MP %5.0f MB  %s\n", pass.milliseconds, pass.megapixels,
                        pass.storedMegabytes, pass.operations.c_str());
    }
    return {};
}

} // namespace

int main(int argc, char** argv)
{
    const Result<Arguments> arguments = parsed(argc, argv);
    if (!arguments) {
        std::fprintf(stderr, "%s\n\n%s", arguments.error().message.c_str(), usage);
        return 2;
    }
    const Result<void> baked = bake(*arguments);
    if (!baked) {
        std::fprintf(stderr, "%s\n", baked.error().message.c_str());
        return 1;
    }
    return 0;
}
