#include "ExportNaming.h"

#include "TemporaryFolder.h"
#include "UTF8.h"

namespace orvane {
namespace {

TEST(ExportNaming, TakesTheStemUpToTheLastDot)
{
    const struct {
        const char* image;
        ExportFormat format;
        const char* name;
    } cases[] = {
        {"IMG_0042.HEIC", ExportFormat::jpeg, "IMG_0042-edit.jpg"},
        {"a.b.jpg", ExportFormat::png, "a.b-edit.png"},
        {"scan..tiff", ExportFormat::tiff, "scan.-edit.tiff"},
        {"no extension", ExportFormat::heic, "no extension-edit.heic"},
        {".hidden", ExportFormat::png, ".hidden-edit.png"},
        {"", ExportFormat::png, "-edit.png"},
        {"..", ExportFormat::png, ".-edit.png"},
        {"Grüße 日本 🙂.jpg", ExportFormat::jpeg, "Grüße 日本 🙂-edit.jpg"},
        {"caf\xe9.jpg", ExportFormat::jpeg, "caf\xe9-edit.jpg"}, // no UTF-8
        {"on/../the way.jpg", ExportFormat::jpeg, "on_.._the way-edit.jpg"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(exportName(c.image, c.format), c.name);
    EXPECT_EQ(exportName("a.jpg", ExportFormat::jpeg, 2), "a-edit-2.jpg");
}

TEST(ExportNaming, CutsLongNamesBetweenTwoCharacters)
{
    for (const char* letter : {"x", "ü", "日", "🙂"}) {
        std::string stem;
        while (stem.size() + 4 <= 255)
            stem += letter;
        for (const int number : {1, 2, 1000}) {
            const std::string name = exportName(stem + ".jpg", ExportFormat::tiff, number);
            EXPECT_TRUE(isUTF8(name));
            EXPECT_LE(name.size(), 255u);
            EXPECT_GT(name.size(), 255u - 4); // cut no shorter than need be
            EXPECT_TRUE(name.ends_with(number == 1 ? "-edit.tiff"
                                                   : "-edit-" + std::to_string(number) + ".tiff"));
        }
    }
}

class FreeExportTarget : public TemporaryFolder { };

TEST_F(FreeExportTarget, PassesOverEverythingThatHoldsItsName)
{
    const auto target = [&](ExportFormat format) {
        return freeExportTarget(folder, "a.jpg", format).filename().string();
    };
    EXPECT_EQ(target(ExportFormat::jpeg), "a-edit.jpg");
    put("a-edit.jpg", "a file");
    std::filesystem::create_directory(folder / "a-edit-2.jpg");
    std::filesystem::create_symlink("nowhere", folder / "a-edit-3.jpg");
    EXPECT_EQ(target(ExportFormat::jpeg), "a-edit-4.jpg");
    EXPECT_EQ(target(ExportFormat::png), "a-edit.png");
    std::filesystem::remove_all(folder);
    EXPECT_EQ(target(ExportFormat::jpeg), "a-edit.jpg");
}

} // namespace
} // namespace orvane
