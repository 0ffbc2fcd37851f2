#pragma once

#include "CIContext.h"
#include "EditState.h"
#include "History.h"
#include "SourcePixels.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orvane {

/// A small drawn picture; shared, never changed.
using Thumbnail = std::shared_ptr<const CGImage>;

/// One image of the open set, with its parked edit. For the active image `state` and `history` are
/// stale: its true edit lies in the model's own fields until it is parked.
struct EditImage {
    std::string id; ///< "img_" and eight characters; never stored
    std::string name; ///< with the extension, as it is shown
    /// The identity across launches (SourceKey.h); absent for what exists in memory only. Two
    /// images with one source are variants of one photo.
    std::optional<std::string> source;
    std::shared_ptr<const SourcePixels> pixels;
    EditState state;
    /// What dirtiness is measured against: the edit it came with, then the edit as last stored.
    std::optional<EditState> savedState;
    History<EditState> history;
    Thumbnail thumb; ///< long edge 64, with the edit; null where none could be drawn

    bool operator==(const EditImage&) const = default;
};

/// An image on its way into the session.
struct IncomingImage {
    std::vector<uint8_t> data; ///< the encoded file; empty when `pixels` has it already
    std::string name;
    std::optional<std::string> source;
    std::shared_ptr<const SourcePixels> pixels = {}; ///< null until decoded
    CIImage held = {}; ///< keeps the decoded picture alive up to its activation; often empty
    /// Comes in with this edit, while the baseline stays that of the source; otherwise with the
    /// baseline itself.
    std::optional<EditState> edit = {};

    /// Makes `pixels` of `data`, once; false when the bytes are no picture.
    bool decode();
};

/// Files read and decoded.
struct ReadImages {
    std::vector<IncomingImage> images; ///< that of the first file with its picture held
    std::vector<std::string> failed; ///< names of those that are no pictures
};
/// A file, and the identity that its image gets.
struct SourceFile {
    std::filesystem::path path;
    std::string source;
};
/// Reads and decodes files, several at a time; from any thread. The files are opened for reading
/// only. A file that stands there several times is read once, and its images share their pixels.
ReadImages readImages(const std::vector<SourceFile>& files);
/// The same, with the identities that belong to the paths.
ReadImages readImages(const std::vector<std::filesystem::path>& files);

/// Decodes what came from elsewhere, several at a time, and leaves out what is no picture; the
/// first is held.
std::vector<IncomingImage> decodedImages(std::vector<IncomingImage> incoming);

} // namespace orvane
