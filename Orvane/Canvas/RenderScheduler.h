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

/// A picture ready for the screen.
struct RenderedPicture {
    QImage picture = {}; ///< null when the render yielded nothing
    QImage fitted = {}; ///< the same at its size on screen, in device pixels; null when not scaled
    CGSize frame = {}; ///< pixels of the finished picture, which a stand-in is stretched to
    CGRect crop = {0, 0, 1, 1}; ///< what it shows of the whole frame
    const char* failure = ""; ///< one sentence, when there is no picture for a reason to tell
};

/// Decides which renders run. Only the newest request counts: a new one cancels what runs, and the
/// result of a cancelled render is never shown. Lives on the main thread; renders run in the pool,
/// which the owner empties before the functions' captures go.
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

    /// Nothing happens when the key is the present one. The last few pictures are kept: one of
    /// these comes back at once, without a render. One that failed is rendered when asked again.
    void request(const RenderKey& key, Render render, Start start);
    /// Cancels what runs and forgets the kept pictures.
    void clear();

Q_SIGNALS:
    void rendered(const orvane::RenderedPicture& picture);

private:
    void cancelRunning();
    void start();
    void keep(const RenderKey& key, const RenderedPicture& picture);

    QThreadPool& m_pool;
    QTimer m_debounce;
    std::optional<RenderKey> m_wanted;
    Render m_pending;
    std::shared_ptr<CancellationToken> m_running;
    std::deque<std::pair<RenderKey, RenderedPicture>> m_kept; ///< newest first
};

} // namespace orvane
