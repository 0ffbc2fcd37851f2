#include "OrvaneDelegate.h"

#include "AppModel.h"
#include "HeldMouse.h"
#include "OpenEventLog.h"
#include "PictureFiles.h"

#include <QApplication>
#include <QTimer>

#include <algorithm>

namespace orvane {

void OrvaneDelegate::attach(AppModel& model, Desktop& desktop, PictureOpener& opener)
{
    m_model = &model;
    m_desktop = &desktop;
    m_opener = &opener;
    flushOpens();
}

void OrvaneDelegate::detach()
{
    m_model = nullptr;
}

void OrvaneDelegate::accept(const Files& files, std::optional<QFuture<ReadImages>> first)
{
    Files fresh;
    for (const auto& file : files) {
        auto path = identifyingPath(file);
        const bool waits =
            std::find(m_pendingOpens.begin(), m_pendingOpens.end(), path) != m_pendingOpens.end();
        if (m_recentlyAccepted.insert(path).second && !waits)
            fresh.push_back(std::move(path));
    }
    if (fresh.empty())
        return;
    if (m_pendingOpens.empty())
        m_firstRead = std::move(first);
    m_pendingOpens.insert(m_pendingOpens.end(), fresh.begin(), fresh.end());
    logOpenEvents(m_recentlyAccepted);
    QTimer::singleShot(std::chrono::seconds(1), this, [this, fresh] {
        for (const auto& file : fresh)
            m_recentlyAccepted.erase(file);
    });
    whenMouseIsFree(this, [this] { flushOpens(); });
}

void OrvaneDelegate::flushOpens()
{
    if (!m_model || m_pendingOpens.empty() || QApplication::activeModalWidget())
        return;
    Files files = std::exchange(m_pendingOpens, {});
    auto first = std::exchange(m_firstRead, std::nullopt);
    if (m_model->confirmDiscardingWork())
        m_opener->open(std::move(files), PictureOpener::How::Replace, std::move(first));
}

bool OrvaneDelegate::applicationShouldTerminate()
{
    if (m_closeAlreadyApproved || !m_model)
        return true;
    if (m_model->isDirty() && !m_model->isUpdating)
        return m_model->confirmDiscardingWork() && mayEndExport();
    return mayEndExport();
}

bool OrvaneDelegate::windowShouldClose()
{
    const bool mayDrop = !m_model || !m_model->isDirty() || m_model->confirmDiscardingWork();
    m_closeAlreadyApproved = mayDrop && mayEndExport();
    return m_closeAlreadyApproved;
}

/// A file that is being written would be lost with the program.
bool OrvaneDelegate::mayEndExport()
{
    if (!m_model || (!m_model->isExporting && !m_model->isExportingAll()))
        return true;
    return m_desktop->ask(
               {.message = "Stop the export?",
                .informative = "An export is still running. What isn't finished will not be there.",
                .buttons = {"Stop and Close", "Cancel"},
                .isFirstDestructive = true})
        == 0;
}

} // namespace orvane
