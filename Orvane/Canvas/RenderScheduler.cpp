#include "RenderScheduler.h"

#include <QtConcurrent>

#include <algorithm>

namespace orvane {

namespace {

/// The grade, the comparison and one more, at 15 MB each for a full proxy.
constexpr size_t keptPictures = 3;

RenderedPicture renderedOrWhyNot(const RenderScheduler::Render& render,
                                 const CancellationToken& token)
{
    // What throws here is memory alone. A future that holds an exception would never call back.
    try {
        return render(token);
    } catch (const std::exception&) {
        return {.failure = QT_TRANSLATE_NOOP("orvane::CIPreviewView",
                                             "There is not enough memory to show the picture.")};
    }
}

} // namespace

RenderScheduler::RenderScheduler(QThreadPool& pool, std::chrono::milliseconds debounce)
    : m_pool(pool)
{
    m_debounce.setSingleShot(true);
    m_debounce.setInterval(debounce);
    connect(&m_debounce, &QTimer::timeout, this, &RenderScheduler::start);
}

RenderScheduler::~RenderScheduler()
{
    cancelRunning();
}

void RenderScheduler::request(const RenderKey& key, Render render, Start start)
{
    if (m_wanted == key)
        return;
    cancelRunning();
    m_wanted = key;
    const auto kept = std::find_if(m_kept.begin(), m_kept.end(),
                                   [&](const auto& entry) { return entry.first == key; });
    if (kept != m_kept.end()) {
        const RenderedPicture picture = kept->second;
        m_kept.erase(kept);
        keep(key, picture);
        Q_EMIT rendered(picture);
        return;
    }
    m_pending = std::move(render);
    if (start == Start::AtOnce)
        this->start();
    else
        m_debounce.start();
}

void RenderScheduler::clear()
{
    cancelRunning();
    m_wanted.reset();
    m_kept.clear();
}

void RenderScheduler::cancelRunning()
{
    m_debounce.stop();
    m_pending = {};
    if (m_running)
        m_running->cancel();
    m_running.reset();
}

void RenderScheduler::start()
{
    const auto token = std::make_shared<CancellationToken>();
    m_running = token;
    QtConcurrent::run(&m_pool, [render = std::move(m_pending), token] {
        return renderedOrWhyNot(render, *token);
    }).then(this, [this, token, key = *m_wanted](const RenderedPicture& picture) {
        if (token->isCancelled())
            return;
        m_running.reset();
        if (picture.picture.isNull())
            m_wanted.reset();
        else
            keep(key, picture);
        Q_EMIT rendered(picture);
    });
}

void RenderScheduler::keep(const RenderKey& key, const RenderedPicture& picture)
{
    m_kept.emplace_front(key, picture);
    if (m_kept.size() > keptPictures)
        m_kept.pop_back();
}

} // namespace orvane
