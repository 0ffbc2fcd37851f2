// contact-sheet: one picture under each slider, or under each look, side by side, to be judged by
// eye.

#include "AtomicFile.h"
#include "BakeChain.h"
#include "BenchmarkInputs.h"
#include "Bitmap.h"
#include "Geometry.h"
#include "Looks.h"
#include "Schema.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <functional>

using namespace orvane;

namespace {

constexpr const char* usage =
    "contact-sheet PICTURE OUTPUT.png [--looks] [--only TEXT] [--detail X,Y]\n"
    "\n"
    "Writes OUTPUT-1.png, OUTPUT-2.png ..., about 2000 pixels wide: a row for each slider and "
    "tool,\n"
    "from weak to strong; with --looks, the looks fitted to the picture. --only keeps the rows\n"
    "whose name contains TEXT. --detail shows a window of the full-size picture about the "
    "fractions\n"
    "X,Y (from the left, from the top) instead of the whole picture reduced.\n";

constexpr int columns = 4;
constexpr int cellWidth = 490;
constexpr int captionHeight = 26;
constexpr int gap = 8;
constexpr int rowsOfPage = 6;

struct Cell {
    std::string caption;
    EditState state;
};

// ---- What is shown ----

/// Sets a state to a row's effect at an amount.
using Apply = std::function<void(EditState&, double)>;
struct Row {
    std::string name;
    std::array<double, columns> amounts;
    Apply apply;
};

/// A slider that does nothing alone is shown with these.
Adjustments::AdjustMap companions(const std::string& key)
{
    if (key.starts_with("sharpen") && key != "sharpening")
        return {{"sharpening", 100}};
    if (key == "vignetteMidpoint")
        return {{"vignette", -60}};
    if (key == "tiltCenter" || key == "tiltWidth")
        return {{"tiltShift", 60}};
    if (key == "duotoneHue")
        return {{"duotone", 100}};
    return {};
}

Row sliderRow(const Schema::File::Key& slider)
{
    const auto apply = [key = slider.key](EditState& state, double amount) {
        state.adjust = companions(key);
        state.adjust[key] = amount;
    };
    if (slider.min == -slider.max)
        return {slider.key, {slider.min, slider.min * 0.3, slider.max * 0.3, slider.max}, apply};
    const double range = slider.max - slider.min;
    return {slider.key,
            {slider.min, slider.min + 0.25 * range, slider.min + 0.6 * range, slider.max},
            apply};
}

EditState::Light light(const char* type, double amount)
{
    EditState::Light light;
    light.type = type;
    light.brightness = amount;
    light.radius = 0.25;
    light.feather = 0.6;
    light.x = 0.4;
    light.y = 0.45;
    light.angle = 90;
    light.strokes = {{{0.2, 0.3}, {0.35, 0.4}, {0.5, 0.3}}, {{0.7, 0.7}}};
    return light;
}

std::vector<Row> rows()
{
    std::vector<Row> rows;
    for (const auto& group : Schema::groups()) {
        for (const auto& slider : group.keys)
            rows.push_back(sliderRow(slider));
    }
    constexpr std::array<double, columns> signedAmounts = {-60, -20, 20, 60};
    rows.push_back({"levelsGamma", {40, 80, 125, 250}, [](EditState& state, double amount) {
                        state.adjust = {{"levelsGamma", amount}};
                    }});
    rows.push_back(
        {"curve, S", signedAmounts, [](EditState& state, double amount) {
             state.curve["master"] = {{0, 0}, {64, 64 - amount}, {192, 192 + amount}, {255, 255}};
         }});
    for (const char* type : {"radial", "linear", "brush"}) {
        rows.push_back(
            {std::string("light, ") + type, signedAmounts, [type](EditState& state, double amount) {
                 state.lights = {light(type, amount)};
                 if (state.lights[0].type == "brush")
                     state.lights[0].radius = 0.06;
             }});
    }
    rows.push_back({"rotation", {-15, -3, 3, 15}, [](EditState& state, double amount) {
                        state.rotation = amount;
                    }});
    return rows;
}

std::string captioned(const std::string& name, double amount)
{
    char text[32];
    std::snprintf(text, sizeof text, " %+.4g", amount);
    return name + text;
}

std::vector<Cell> sliderCells(const std::string& only)
{
    std::vector<Cell> cells;
    for (const Row& row : rows()) {
        if (row.name.find(only) == std::string::npos)
            continue;
        for (const double amount : row.amounts) {
            Cell cell{captioned(row.name, amount), {}};
            row.apply(cell.state, amount);
            cells.push_back(cell);
        }
    }
    return cells;
}

std::vector<Cell> lookCells(const CIImage& source, const std::string& only)
{
    const Looks::Stats stats = Looks::analyze(source, 256);
    std::vector<Cell> cells = {{"as it is", {}}};
    for (const Looks::Look& look : Looks::all(stats)) {
        if (look.name.find(only) == std::string::npos)
            continue;
        for (const double strength : {50.0, 100.0}) {
            Cell cell{captioned(look.name, strength), {}};
            cell.state.adjust = Looks::apply(look, strength);
            cells.push_back(cell);
        }
    }
    Cell pop{"one click", {}};
    pop.state.adjust = Looks::pop(stats).adjustments;
    cells.push_back(pop);
    return cells;
}

// ---- Drawing ----

/// One cell's picture with its caption below, from (0, 0).
class CellDrawing {
public:
    CellDrawing(const CIImage& source, std::optional<CGPoint> detail)
        : m_source(detail ? source : Geometry::resized(source, cellWidth))
        , m_detail(detail)
    {
        const CGRect extent = m_source.extent();
        // Portraits are narrower than a cell, and as high as wide at most.
        m_height = detail ? cellWidth * 3 / 4 : int(extent.height());
    }

    int height() const { return m_height + captionHeight; }

    CIImage drawn(const Cell& cell) const
    {
        CIImage picture = finishedImage(m_source, cell.state, {});
        if (!m_detail) { // a turned frame is larger than the cell
            const CGRect whole = picture.extent();
            const double fit = std::min(cellWidth / whole.width(), m_height / whole.height());
            picture = Geometry::resized(
                picture, int(std::lround(fit * std::max(whole.width(), whole.height()))));
        }
        const CGRect frame = picture.extent();
        CGPoint corner = frame.origin;
        if (m_detail) {
            corner.x = std::floor(frame.minX() + frame.width() * m_detail->x - cellWidth / 2.0);
            corner.y = std::floor(frame.maxY() - frame.height() * m_detail->y - m_height / 2.0);
        }
        picture =
            picture.transformed(CGAffineTransform::translation(-corner.x, captionHeight - corner.y))
                .cropped({0, captionHeight, cellWidth, double(m_height)});
        const CIImage ground =
            CIImage::withColor({0.19, 0.19, 0.19, 1}).cropped({0, 0, cellWidth, double(height())});
        const TextLayers::Item caption{.text = cell.caption,
                                       .x = 0.5,
                                       .y = 1 - captionHeight / 2.0 / height(),
                                       .size = 15.0 / std::max(cellWidth, height()),
                                       .red = 0.83,
                                       .green = 0.83,
                                       .blue = 0.83,
                                       .font = {}};
        return TextLayers::draw({caption}, picture.compositedOver(ground));
    }

private:
    CIImage m_source;
    std::optional<CGPoint> m_detail;
    int m_height = 0;
};

Result<void> writePage(const std::string& path, std::span<const Cell> cells,
                       const CellDrawing& drawing)
{
    const int rowCount = (int(cells.size()) + columns - 1) / columns;
    const int width = columns * (cellWidth + gap) + gap;
    const int height = rowCount * (drawing.height() + gap) + gap;
    auto sheet = std::make_shared<Bitmap>(width, height, 3, SampleType::U8, AlphaKind::None);
    std::memset(sheet->row(0), 0x30, sheet->byteSize());
    for (size_t i = 0; i < cells.size(); ++i) {
        const int x = gap + int(i) % columns * (cellWidth + gap);
        const int y = gap + int(i) / columns * (drawing.height() + gap);
        Baker::context().render(drawing.drawn(cells[i]), sheet->row(y) + 3 * x, sheet->rowBytes(),
                                {0, 0, cellWidth, double(drawing.height())}, PixelFormat::RGB8);
    }
    const Baker::Bytes png = Baker::pngData(CIImage::withBitmap(std::move(sheet)), false);
    if (!png)
        return Error{path + " could not be encoded."};
    return writeFile(path, {reinterpret_cast<const char*>(png->data()), png->size()});
}

Result<void> writePages(const std::string& output, const std::vector<Cell>& cells,
                        const CellDrawing& drawing)
{
    const std::string stem = output.substr(0, output.rfind('.'));
    constexpr size_t cellsOfPage = size_t(rowsOfPage) * columns;
    for (size_t first = 0, page = 1; first < cells.size(); first += cellsOfPage, ++page) {
        const size_t count = std::min(cellsOfPage, cells.size() - first);
        const std::string path = stem + "-" + std::to_string(page) + ".png";
        if (Result<void> written = writePage(path, {&cells[first], count}, drawing); !written)
            return written;
        std::printf("%s\n", path.c_str());
        for (size_t i = first; i < first + count; ++i)
            std::printf("  %s%s", cells[i].caption.c_str(), (i - first) % columns == 3 ? "\n" : "");
        std::printf("\n");
    }
    return {};
}

std::optional<CGPoint> point(const char* text)
{
    CGPoint p;
    const char* end = text + std::strlen(text);
    const auto x = std::from_chars(text, end, p.x);
    if (x.ec != std::errc() || x.ptr == end || *x.ptr != ',')
        return {};
    const auto y = std::from_chars(x.ptr + 1, end, p.y);
    return y.ec == std::errc() && y.ptr == end ? std::optional(p) : std::nullopt;
}

struct Arguments {
    std::vector<std::string> files;
    bool looks = false;
    std::string only;
    std::optional<CGPoint> detail;
};

std::optional<Arguments> parsed(int count, char** values)
{
    Arguments arguments;
    for (int i = 1; i < count; ++i) {
        const std::string_view word = values[i];
        if (word == "--looks")
            arguments.looks = true;
        else if (word == "--only" && i + 1 < count)
            arguments.only = values[++i];
        else if (word == "--detail" && i + 1 < count && (arguments.detail = point(values[i + 1])))
            ++i;
        else if (word.starts_with("--"))
            return {};
        else
            arguments.files.emplace_back(word);
    }
    return arguments.files.size() == 2 ? std::optional(arguments) : std::nullopt;
}

} // namespace

int main(int argc, char** argv)
{
    const std::optional<Arguments> arguments = parsed(argc, argv);
    if (!arguments) {
        std::fprintf(stderr, "%s", usage);
        return 2;
    }
    const Result<CIImage> source = readPicture(arguments->files[0]);
    if (!source) {
        std::fprintf(stderr, "%s\n", source.error().message.c_str());
        return 1;
    }
    const std::vector<Cell> cells =
        arguments->looks ? lookCells(*source, arguments->only) : sliderCells(arguments->only);
    const Result<void> written =
        writePages(arguments->files[1], cells, CellDrawing(*source, arguments->detail));
    if (!written) {
        std::fprintf(stderr, "%s\n", written.error().message.c_str());
        return 1;
    }
    return 0;
}
