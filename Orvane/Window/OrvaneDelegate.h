#pragma once

#include "PictureOpener.h"

#include <QObject>

#include <set>

namespace orvane {

class Desktop;

/// Takes the files that the desktop sends, at the start and while the program runs, and guards
/// closing with the question about unsaved work.
class OrvaneDelegate final : public QObject {
    Q_OBJECT

public:
    using Files = PictureOpener::Files;

    /// When the window is there: what came before is opened now.
    void attach(AppModel& model, Desktop& desktop, PictureOpener& opener);
    void detach();

    /// Files to open in the session's place. One that was accepted a moment ago is not opened
    /// again: desktops may send the same file twice. `first` is the reading of the first of them,
    /// if it has begun already.
    void accept(const Files& files, std::optional<QFuture<ReadImages>> first = {});
    /// Opens what waits, unless a question is open: who asked it counts on the session as it is.
    /// The window calls again when the question is answered.
    void flushOpens();

    /// Whether the program may end now.
    bool applicationShouldTerminate();
    /// Whether the window may close; remembered, so that the end of the program asks no more.
    bool windowShouldClose();

private:
    bool mayEndExport();

    AppModel* m_model = nullptr;
    Desktop* m_desktop = nullptr;
    PictureOpener* m_opener = nullptr;
    Files m_pendingOpens;
    std::optional<QFuture<ReadImages>> m_firstRead; ///< of the first pending one
    std::set<std::filesystem::path> m_recentlyAccepted;
    bool m_closeAlreadyApproved = false;
};

} // namespace orvane
