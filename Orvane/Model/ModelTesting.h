#pragma once

#include "AppModel.h"
#include "PictureEncoder.h"
#include "ScriptedDesktop.h"
#include "TemporaryFolder.h"
#include "TestWaiting.h"

#include <QCoreApplication>

#include <gmock/gmock.h>

#include <array>
#include <memory>
#include <ostream>

namespace orvane {

inline void PrintTo(const Alert& alert, std::ostream* out)
{
    *out << alert.message << " / " << alert.informative;
    for (const std::string& button : alert.buttons)
        *out << " [" << button << "]";
}

/// The bytes of a drawn picture.
inline std::vector<uint8_t> bytesOf(const CGImage& drawn)
{
    const uint8_t* const bytes = drawn.pixels.data();
    return {bytes, bytes + drawn.rowBytes * size_t(drawn.height)};
}

/// A small picture file of one colour, written without the engine and so without its threads.
inline void writePicture(const std::filesystem::path& file, std::array<int, 3> color,
                         EncodedFormat format = EncodedFormat::Jpeg, int width = 96,
                         int height = 64)
{
    MemoryByteSink bytes;
    auto encoder = makePictureEncoder({.format = format, .width = width, .height = height}, bytes);
    ASSERT_TRUE(encoder);
    ASSERT_EQ((*encoder)->format(), PixelFormat::RGB8);
    std::vector<uint8_t> row;
    for (int i = 0; i < width * 3; ++i)
        row.push_back(uint8_t(color[size_t(i % 3)]));
    for (int y = 0; y < height; ++y)
        ASSERT_TRUE((*encoder)->writeRows(row.data(), 1, row.size()));
    ASSERT_TRUE((*encoder)->finish());
    const auto encoded = bytes.take();
    const Result<void> written =
        writeFile(file, {reinterpret_cast<const char*>(encoded.data()), encoded.size()});
    ASSERT_TRUE(written) << written.error().message;
}

/// A photo library that answers when the test says so.
class FakePhotos final : public PhotoSource {
public:
    void loadFullImages(const std::vector<std::string>& identifiers, Completion done) override
    {
        asked = identifiers;
        completion = std::move(done);
    }
    void pickImages(Completion done) override { completion = std::move(done); }

    std::vector<std::string> asked;
    Completion completion;
};

/// Tests of the model: a folder with pictures and stores, a scripted desktop, a clock set by hand.
class ModelTest : public TemporaryFolder {
protected:
    ModelTest()
    {
        makeTestApplication();
        restart();
    }

    /// The model as a new run of the program makes it.
    void restart()
    {
        model.reset();
        model = std::make_unique<AppModel>(AppModel::Surroundings{
            .desktop = desktop, .supportFolder = stores, .photos = photos, .now = [this] {
                return clock;
            }});
    }

    std::filesystem::path picture(const std::string& name,
                                  std::array<int, 3> color = {90, 120, 60}) const
    {
        writePicture(folder / name, color,
                     name.ends_with(".png") ? EncodedFormat::Png : EncodedFormat::Jpeg);
        return folder / name;
    }
    std::string source(const std::string& name) const { return "file:" + (folder / name).string(); }
    /// Makes pictures that are not there yet and opens them in the session's place.
    void open(const std::vector<std::string>& names, bool append = false)
    {
        std::vector<std::filesystem::path> files;
        for (const std::string& name : names) {
            files.push_back(folder / name);
            if (!std::filesystem::exists(files.back()))
                picture(name);
        }
        model->adoptIntoSession(model->readImageFiles(files), append);
    }
    /// Pastes a picture that no file holds.
    void paste(PastedPicture::Kind kind = PastedPicture::Kind::Png)
    {
        const auto bytes = readFile(picture("pasteboard.png"), 1'000'000);
        desktop.pasteboardPicture = PastedPicture{kind, *bytes};
        model->pasteImage();
        std::filesystem::remove(folder / "pasteboard.png");
    }
    const EditImage& image(size_t index) const { return model->session.value().at(index); }
    void activate(size_t index) { model->activate(image(index).id, true); }
    /// A discrete change of the active image.
    void expose(double value)
    {
        clock += 10;
        model->setAdjust("exposure", value);
    }
    double exposure() const
    {
        const auto& adjust = model->adjust.value();
        return adjust.contains("exposure") ? adjust.at("exposure") : 0;
    }
    std::string imageNames() const
    {
        std::string text;
        for (const EditImage& each : model->session.value())
            text += (text.empty() ? "" : ", ") + each.name;
        return text;
    }
    std::vector<std::string> alertMessages()
    {
        std::vector<std::string> messages;
        for (const Alert& alert : desktop.takeAlerts())
            messages.push_back(alert.message);
        return messages;
    }

    ScriptedDesktop desktop;
    PhotoSource* photos = nullptr;
    double clock = 1.7e9; ///< seconds since 1970
    std::filesystem::path stores = folder / "support" / "Orvane";
    std::unique_ptr<AppModel> model;
};

} // namespace orvane
