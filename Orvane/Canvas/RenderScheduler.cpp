#include "RenderScheduler.h"

#include "BackgroundWork.h"

#include <algorithm>
#include <utility>

namespace orvane {

namespace {

/// The grade, the comparison and one more, at 15 MB each for a full proxy.
constexpr size_t keptPictures = 3;

RenderedPicture renderedOrWhyNot(const RenderScheduler::Render& render,
                                 const CancellationToken& token)
{
    // What throws here is memory alone. A future that holds an exception would throw it here again.
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
    connect(&m_debounce, &QTimer::timeout, this, &RenderScheduler::proceed);
}

RenderScheduler::~RenderScheduler()
{
    cancel();
}

void RenderScheduler::request(const RenderKey& key, Render render, Start start, Render draft)
{
    if (m_wanted == key)
        return;
    // The draft in the making goes on when another follows it.
    if (!draft || !m_isDrafting)
        cancelRunning();
    m_wanted = key;
    const auto kept = std::find_if(m_kept.begin(), m_kept.end(),
                                   [&](const auto& entry) { return entry.first == key; });
    if (kept != m_kept.end()) {
        const RenderedPicture picture = kept->second;
        m_kept.erase(kept);
        cancel();
        finish(key, picture);
        return;
    }
    m_draft = std::move(draft);
    m_render = std::move(render);
    if (start == Start::AtOnce)
        m_debounce.stop();
    else
        m_debounce.start();
    proceed();
}

void RenderScheduler::clear()
{
    cancel();
    m_wanted.reset();
    m_kept.clear();
}

void RenderScheduler::cancel()
{
    cancelRunning();
    m_debounce.stop();
    m_draft = {};
    m_render = {};
    m_wholeDraft.reset();
}

void RenderScheduler::cancelRunning()
{
    if (m_running)
        m_running->cancel();
    m_running.reset();
    m_isDrafting = false;
}

/// Starts what is next, when nothing runs: the draft, and once the pause is over the rest.
void RenderScheduler::proceed()
{
    if (m_running)
        return;
    if (m_draft)
        start(std::exchange(m_draft, {}), true);
    else if (m_render && !m_debounce.isActive()) {
        const Render render = std::exchange(m_render, {});
        const auto drafted = std::exchange(m_wholeDraft, {});
        if (drafted && drafted->first == m_wanted)
            finish(drafted->first, drafted->second);
        else
            start(render, false);
    }
}

void RenderScheduler::start(const Render& render, bool isDraft)
{
    const auto token = std::make_shared<CancellationToken>();
    m_running = token;
    m_isDrafting = isDraft;
    runInBackground(
        m_pool, *this, [render, token] { return renderedOrWhyNot(render, *token); },
        [this, token, isDraft, key = *m_wanted](const RenderedPicture& picture) {
            if (token->isCancelled())
                return;
            m_running.reset();
            m_isDrafting = false;
            if (!isDraft)
                finish(key, picture);
            else if (!picture.picture.isNull())
                showDraft(key, picture);
            proceed();
        });
}

void RenderScheduler::showDraft(const RenderKey& key, RenderedPicture picture)
{
    m_wholeDraft.reset();
    if (picture.scale >= 1)
        m_wholeDraft.emplace(key, picture);
    picture.isDraft = true;
    Q_EMIT rendered(picture);
}

void RenderScheduler::finish(const RenderKey& key, const RenderedPicture& picture)
{
    if (picture.picture.isNull())
        m_wanted.reset();
    else
        keep(key, picture);
    Q_EMIT rendered(picture);
}

void RenderScheduler::keep(const RenderKey& key, const RenderedPicture& picture)
{
    m_kept.emplace_front(key, picture);
    if (m_kept.size() > keptPictures)
        m_kept.pop_back();
}

} // namespace orvane
