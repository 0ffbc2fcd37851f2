#pragma once

#include "CIContext.h"
#include "CanvasContent.h"

#include <QImage>
#include <QObject>
#include <QTimer>

#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <optional>

class QThreadPool;

namespace orvane {

/// A picture scaled to its size on screen: all of it, or what is seen of it and some more. Sizes
/// and places in device pixels.
struct FittedPicture {
    QImage part = {}; ///< null when not scaled
    QPoint at = {}; ///< of the part within the whole
    QSize whole = {};

    QRect place() const { return {at, part.size()}; }
};

/// A picture ready for the screen.
struct RenderedPicture {
    QImage picture = {}; ///< null when the render yielded nothing
    FittedPicture fitted = {}; ///< the same at its size on screen
    CGSize frame = {}; ///< pixels of the finished picture, which a stand-in is stretched to
    CGRect crop = {0, 0, 1, 1}; ///< what it shows of the whole frame
    const char* failure = ""; ///< one sentence, when there is no picture for a reason to tell
    double milliseconds = 0; ///< that drawing and scaling took
    double scale = 1; ///< of a draft to the finished picture
    bool isDraft = false; ///< the finished one follows
};

/// Decides which renders run; one does at a time. Only the newest request counts: a new one cancels
/// the finished picture in the making, and the result of a cancelled render is never shown.
///
/// A request may bring a draft, a quicker render of the same. It starts without the pause, so that
/// a drag gives a live picture; while one is drawn, only the newest waits. A draft may be shown
/// although the drag has gone on, since otherwise none would ever be: what follows it is newer. One
/// that was drawn at the scale of the finished picture is that, after the pause.
///
///     request   r1 r2  r3 r4
///     drafts    [ r1 ][ r2 ][ r4 ]
///     finished                  pause -> [   r4   ]
///
/// Lives on the main thread; renders run in the pool, which the owner empties before the functions'
/// captures go.
class RenderScheduler final : public QObject {
    Q_OBJECT

public:
    using Render = std::function<RenderedPicture(const CancellationToken&)>;
    enum class Start {
        AtOnce,
        Debounced, ///< after a pause without another request: a drag renders when it rests
    };

    RenderScheduler(QThreadPool& pool, std::chrono::milliseconds debounce);
    ~RenderScheduler() override;

    /// Nothing happens when the key is the present one. The last few finished pictures are kept:
    /// one of these comes back at once, without a render. One that failed is rendered when asked
    /// again. Without a draft, what was drafted for others is dropped.
    void request(const RenderKey& key, Render render, Start start, Render draft = {});
    /// Cancels what runs and forgets the kept pictures.
    void clear();

Q_SIGNALS:
    void rendered(const orvane::RenderedPicture& picture);

private:
    void cancel();
    void cancelRunning();
    void proceed();
    void start(const Render& render, bool isDraft);
    void showDraft(const RenderKey& key, RenderedPicture picture);
    void finish(const RenderKey& key, const RenderedPicture& picture);
    void keep(const RenderKey& key, const RenderedPicture& picture);

    QThreadPool& m_pool;
    QTimer m_debounce;
    std::optional<RenderKey> m_wanted;
    Render m_draft; ///< that waits; empty when none does
    Render m_render; ///< that waits; empty when none does
    std::optional<std::pair<RenderKey, RenderedPicture>> m_wholeDraft; ///< the last one of scale 1
    std::shared_ptr<CancellationToken> m_running; ///< null when none does
    bool m_isDrafting = false; ///< what runs is a draft
    std::deque<std::pair<RenderKey, RenderedPicture>> m_kept; ///< newest first
};

} // namespace orvane
