#pragma once

#include "Result.h"

#include <QString>

#include <filesystem>
#include <vector>

namespace orvane {

/// A program of the desktop, as its entry in a folder "applications" describes it.
struct Program {
    QString id; ///< the entry's file name, "org.example.Viewer.desktop"
    QString name; ///< in the user's language
    QString command; ///< with the codes of desktop entries, such as "%f"
};

/// The programs that open files of a kind ("image/jpeg"), the user's default first, each once.
/// Those that are hidden, run in a terminal or are not installed are left out.
std::vector<Program> programsFor(const QString& mimeType);

/// Starts the program with the file, and does not wait for it.
Result<void> openWith(const Program& program, const std::filesystem::path& file);

} // namespace orvane
