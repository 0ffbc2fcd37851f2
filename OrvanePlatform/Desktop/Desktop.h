#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace orvane {

/// A modal question or message. Texts are UTF-8 and shown as they stand.
struct Alert {
    /// Warning: something has failed.
    enum class Style { Plain, Warning };

    std::string message;
    std::string informative = {};
    /// In the order of reading, the default first; empty for a message that is only dismissed.
    std::vector<std::string> buttons = {};
    bool isFirstDestructive = false;
    Style style = Style::Plain;

    /// Whether they say and offer the same, however they look.
    bool operator==(const Alert& other) const
    {
        return message == other.message && informative == other.informative
            && buttons == other.buttons && isFirstDestructive == other.isFirstDestructive;
    }
};

/// A panel that chooses what is there already. Starts where the last one ended.
struct OpenPanel {
    enum class Choosing { Pictures, FilesOfExtension, Folder };

    Choosing choosing = Choosing::Pictures;
    std::string message;
    std::string prompt; ///< the text of the button that accepts
    /// Without the dot. For pictures: besides all general picture formats.
    std::vector<std::string> extensions = {};
    bool allowsSeveral = false;
    bool canCreateFolders = false;

    bool operator==(const OpenPanel&) const = default;
};

/// A panel that names a new file. It asks itself before an existing one is named.
struct SavePanel {
    std::string suggestedName;
    std::string extension; ///< without the dot

    bool operator==(const SavePanel&) const = default;
};

/// What the window says of the work in it.
struct WindowChrome {
    std::string title;
    std::optional<std::filesystem::path> representedFile = {};
    bool isEdited = false;

    bool operator==(const WindowChrome&) const = default;
};

/// An encoded picture from the pasteboard.
struct PastedPicture {
    enum class Kind { Png, Tiff };
    Kind kind = Kind::Png;
    std::vector<uint8_t> bytes;
};

/// All that the model asks of the desktop around it: the questions that a person answers, the
/// pasteboard, the file manager, sharing, the window's frame. Every call comes on the main thread.
/// The modal ones return when they are answered; other events of the program may be handled
/// meanwhile. Without a window the calls about it do nothing.
class Desktop {
public:
    virtual ~Desktop() = default;

    /// The index of the button that was pressed. Closing an alert without one counts as its last
    /// button.
    virtual size_t ask(const Alert& alert) = 0;
    /// Empty when the panel was cancelled.
    virtual std::vector<std::filesystem::path> choose(const OpenPanel& panel) = 0;
    virtual std::optional<std::filesystem::path> chooseTarget(const SavePanel& panel) = 0;

    /// The first there is of PNG and TIFF, in this order.
    virtual std::optional<PastedPicture> pastedPicture() = 0;
    /// The files that the pasteboard refers to.
    virtual std::vector<std::filesystem::path> pastedFiles() = 0;

    /// Shows the file or folder, selected, in the file manager.
    virtual void reveal(const std::filesystem::path& path) = 0;
    /// Offers the ways to share a file, on the next turn of the event loop, at the window's edge.
    virtual void share(const std::filesystem::path& file) = 0;
    /// Opens an address in the browser.
    virtual void openAddress(const std::string& address) = 0;

    virtual bool hasWindow() const = 0;
    virtual void showChrome(const WindowChrome& chrome) = 0;
};

} // namespace orvane
