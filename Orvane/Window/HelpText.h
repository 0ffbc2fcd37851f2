#pragma once

#include <QCoreApplication>

#include <array>
#include <span>

namespace orvane::HelpText {

/// A row of a table of keys: an action, or two that belong together.
struct Row {
    std::array<const char*, 2> actionIds; ///< the second may be null
    const char* description;
};
struct Group {
    const char* title;
    std::span<const Row> rows;
};

inline constexpr const char* context = "orvane::HelpText";

// In these, ** stands round what is bold, and {save} for the key of that action.
inline constexpr const char* title =
    QT_TRANSLATE_NOOP("orvane::HelpText", "Save Edits is not Export");
inline constexpr const char* paragraphs[] = {
    QT_TRANSLATE_NOOP(
        "orvane::HelpText",
        "Orvane never writes to your originals. **Save Edits** ({save}) keeps your changes beside "
        "the image, so reopening it brings them back — and you can keep editing from where you "
        "left off. **Export** ({export}) writes a new, finished file with the changes baked in: "
        "that's the one you send to someone."),
    QT_TRANSLATE_NOOP(
        "orvane::HelpText",
        "A **collection** is the same idea for a set of images: it remembers where they live and "
        "how you graded each one, never copies of the images. The same photo can sit in a "
        "black-and-white collection and a colour one at once."),
};

inline constexpr Row images[] = {
    {{"open"}, QT_TRANSLATE_NOOP("orvane::HelpText", "Open an image")},
    {{"importFromPhotos"}, QT_TRANSLATE_NOOP("orvane::HelpText", "Import from Photos")},
    {{"paste"}, QT_TRANSLATE_NOOP("orvane::HelpText", "Paste an image from the clipboard")},
    {{"reveal"}, QT_TRANSLATE_NOOP("orvane::HelpText", "Reveal the original in the Finder")},
    {{"closeImage"}, QT_TRANSLATE_NOOP("orvane::HelpText", "Close the image")},
};
inline constexpr Row keeping[] = {
    {{"save"}, QT_TRANSLATE_NOOP("orvane::HelpText", "Save Edits — keep them with the image")},
    {{"export"}, QT_TRANSLATE_NOOP("orvane::HelpText", "Export — write a finished file")},
    {{"share"}, QT_TRANSLATE_NOOP("orvane::HelpText", "Share")},
};
inline constexpr Row tools[] = {
    {{"makeItPop"}, QT_TRANSLATE_NOOP("orvane::HelpText", "Make it Pop")},
    {{"crop"}, QT_TRANSLATE_NOOP("orvane::HelpText", "Crop")},
    {{"whiteBalance"}, QT_TRANSLATE_NOOP("orvane::HelpText", "White balance")},
    {{"heal"}, QT_TRANSLATE_NOOP("orvane::HelpText", "Heal blemishes")},
    {{"relight"}, QT_TRANSLATE_NOOP("orvane::HelpText", "Relight")},
    {{"histogram"}, QT_TRANSLATE_NOOP("orvane::HelpText", "Histogram")},
};
inline constexpr Row looking[] = {
    {{"compare"}, QT_TRANSLATE_NOOP("orvane::HelpText", "Show the original — again to come back")},
    {{"zoomIn", "zoomOut"}, QT_TRANSLATE_NOOP("orvane::HelpText", "Zoom in / out")},
    {{"zoomToFit"}, QT_TRANSLATE_NOOP("orvane::HelpText", "Zoom to fit")},
    {{"actualSize"}, QT_TRANSLATE_NOOP("orvane::HelpText", "Actual size")},
    {{"inspector"}, QT_TRANSLATE_NOOP("orvane::HelpText", "Show or hide the inspector")},
};
inline constexpr Row undo[] = {
    {{"undo"}, QT_TRANSLATE_NOOP("orvane::HelpText", "Undo")},
    {{"redo"}, QT_TRANSLATE_NOOP("orvane::HelpText", "Redo")},
};
inline constexpr Group groups[] = {
    {QT_TRANSLATE_NOOP("orvane::HelpText", "Images"), images},
    {QT_TRANSLATE_NOOP("orvane::HelpText", "Keeping your work"), keeping},
    {QT_TRANSLATE_NOOP("orvane::HelpText", "Tools"), tools},
    {QT_TRANSLATE_NOOP("orvane::HelpText", "Looking"), looking},
    {QT_TRANSLATE_NOOP("orvane::HelpText", "Undo"), undo},
};

} // namespace orvane::HelpText
