#include "PictureOpening.h"

#include "CanvasContent.h"
#include "PictureDecoder.h"

#include <QtConcurrent>

namespace orvane {

namespace {

Result<OpenedPicture> opened(const std::filesystem::path& path)
{
    // What throws here is memory alone. A future that holds an exception would never call back.
    try {
        const Result<DecodedPicture> decoded = decodePictureFile(path);
        if (!decoded)
            return decoded.error();
        const CIImage source = imageFromPicture(*decoded);
        return OpenedPicture{path, source, proxyOf(source), decoded->note};
    } catch (const std::exception&) {
        return Error{"There is not enough memory to open this picture."};
    }
}

PictureOpening firstOpened(const std::vector<std::filesystem::path>& paths)
{
    PictureOpening opening;
    for (const auto& path : paths) {
        const Result<OpenedPicture> picture = opened(path);
        if (!picture) {
            opening.failures.push_back({path, picture.error().message});
            continue;
        }
        opening.picture = *picture;
        opening.unopened = paths.size() - opening.failures.size() - 1;
        break;
    }
    return opening;
}

} // namespace

QFuture<PictureOpening> openPictures(QThreadPool& pool, std::vector<std::filesystem::path> paths)
{
    return QtConcurrent::run(&pool, [paths = std::move(paths)] { return firstOpened(paths); });
}

QFuture<PictureOpening> withMissing(const std::vector<std::filesystem::path>& missing,
                                    QFuture<PictureOpening> opening)
{
    return opening.then([missing](PictureOpening result) {
        for (const auto& path : missing) {
            if (const Result<OpenedPicture> picture = opened(path); !picture)
                result.failures.push_back({path, picture.error().message});
        }
        return result;
    });
}

} // namespace orvane
