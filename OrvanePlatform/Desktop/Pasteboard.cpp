#include "Pasteboard.h"

#include "FileAddress.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

#include <memory>

namespace orvane::Pasteboard {

namespace {

constexpr const char* addresses = "text/uri-list";
/// A word of what is to be done, then an address a line; file managers ask for no other form.
constexpr const char* copiedFiles = "x-special/gnome-copied-files";

struct PictureType {
    PastedPicture::Kind kind;
    const char* name;
};
/// In the order of preference.
constexpr PictureType pictureTypes[] = {
    {PastedPicture::Kind::Png, "image/png"},
    {PastedPicture::Kind::Tiff, "image/tiff"},
};

} // namespace

void copyFile(const std::filesystem::path& file)
{
    const QByteArray address = fileAddress(file).toLatin1();
    auto data = std::make_unique<QMimeData>();
    data->setData(addresses, address + "\r\n");
    data->setData(copiedFiles, "copy\n" + address);
    QGuiApplication::clipboard()->setMimeData(data.release());
}

void copyPicture(const PastedPicture& picture)
{
    auto data = std::make_unique<QMimeData>();
    for (const PictureType& type : pictureTypes) {
        if (type.kind == picture.kind)
            data->setData(type.name,
                          QByteArray(reinterpret_cast<const char*>(picture.bytes.data()),
                                     qsizetype(picture.bytes.size())));
    }
    QGuiApplication::clipboard()->setMimeData(data.release());
}

std::optional<PastedPicture> picture()
{
    const QMimeData* const data = QGuiApplication::clipboard()->mimeData();
    for (const PictureType& type : pictureTypes) {
        const QByteArray bytes = data ? data->data(type.name) : QByteArray();
        if (!bytes.isEmpty())
            return PastedPicture{type.kind, {bytes.begin(), bytes.end()}};
    }
    return std::nullopt;
}

std::vector<std::filesystem::path> files()
{
    std::vector<std::filesystem::path> found;
    const QMimeData* const data = QGuiApplication::clipboard()->mimeData();
    const QString text = data ? QString::fromLatin1(data->data(addresses)) : QString();
    for (const QString& line : text.split('\n')) {
        if (const std::filesystem::path path = pathOfFileAddress(line); !path.empty())
            found.push_back(path);
    }
    return found;
}

} // namespace orvane::Pasteboard
