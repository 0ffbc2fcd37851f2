#include "PictureOpening.h"

#include "CanvasContent.h"
#include "PictureDecoder.h"

#include <QtConcurrent>

namespace orvane {

namespace {

PictureOpening opened(const std::vector<std::filesystem::path>& paths)
{
    PictureOpening opening;
    for (const auto& path : paths) {
        const Result<DecodedPicture> decoded = decodePictureFile(path);
        if (!decoded) {
            opening.failures.push_back({path, decoded.error().message});
            continue;
        }
        const CIImage source = imageFromPicture(*decoded);
        opening.picture = OpenedPicture{path, source, proxyOf(source), decoded->note};
        opening.unopened = paths.size() - opening.failures.size() - 1;
        break;
    }
    return opening;
}

} // namespace

QFuture<PictureOpening> openPictures(QThreadPool& pool, std::vector<std::filesystem::path> paths)
{
    return QtConcurrent::run(&pool, [paths = std::move(paths)] { return opened(paths); });
}

} // namespace orvane
