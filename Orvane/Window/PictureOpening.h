#pragma once

#include "CIImage.h"

#include <QFuture>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

class QThreadPool;

namespace orvane {

struct OpenedPicture {
    std::filesystem::path path;
    CIImage source;
    CIImage proxy; ///< what the canvas renders
    std::string note; ///< what the user should know of the decoding; often empty
};

/// What came of a list of files, of which one is shown.
struct PictureOpening {
    struct Failure {
        std::filesystem::path path;
        std::string reason; ///< one sentence
    };
    std::optional<OpenedPicture> picture; ///< the first that could be read
    std::vector<Failure> failures; ///< those before it, and any that are missing
    size_t unopened = 0; ///< those after it
};

/// Decodes in the pool and makes the proxy, file by file until one can be read. May be called
/// before there is an application object, so that decoding runs while the window is being made.
QFuture<PictureOpening> openPictures(QThreadPool& pool, std::vector<std::filesystem::path> paths);
/// The same with files that are known not to be there among the failures.
QFuture<PictureOpening> withMissing(const std::vector<std::filesystem::path>& missing,
                                    QFuture<PictureOpening> opening);

} // namespace orvane
