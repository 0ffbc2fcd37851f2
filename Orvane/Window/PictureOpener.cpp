#include "PictureOpener.h"

#include "AppModel.h"
#include "HeldMouse.h"
#include "SourceKey.h"

#include <QFutureWatcher>
#include <QtConcurrent>

#include <algorithm>

namespace orvane {

namespace {

/// The first alone, so that it is seen soonest; then so many at once as decoders run at once.
constexpr size_t filesAtOnce = 2;

ReadImages readOrNot(const PictureOpener::Files& files)
{
    // What throws here is memory alone. A future that holds an exception would never call back.
    try {
        return readImages(files);
    } catch (const std::exception&) {
        ReadImages none;
        for (const auto& file : files)
            none.failed.push_back(SourceKey::readableName(file));
        return none;
    }
}

QFuture<ReadImages> reading(QThreadPool& pool, PictureOpener::Files files)
{
    return QtConcurrent::run(&pool, [files = std::move(files)] { return readOrNot(files); });
}

bool hasAny(const std::vector<EditImage>& session, const std::vector<std::string>& ids)
{
    return std::any_of(session.begin(), session.end(), [&](const EditImage& image) {
        return std::find(ids.begin(), ids.end(), image.id) != ids.end();
    });
}

} // namespace

PictureOpener::PictureOpener(AppModel& model, QThreadPool& pool)
    : m_model(model)
    , m_pool(pool)
{
}

QFuture<ReadImages> PictureOpener::readFirst(QThreadPool& pool, const Files& files)
{
    return reading(pool, {files.front()});
}

void PictureOpener::open(Files files, How how, std::optional<QFuture<ReadImages>> first)
{
    if (files.empty())
        return;
    if (how == How::Replace)
        stop();
    Batch batch{.files = std::move(files), .how = how, .first = std::move(first)};
    if (how == How::Replace)
        batch.replaced = m_model.sessionItems();
    m_batches.push_back(std::move(batch));
    if (m_batches.size() == 1)
        goOn();
}

void PictureOpener::stop()
{
    ++m_number;
    m_batches.clear();
    Q_EMIT changed();
}

std::string PictureOpener::nameInHand() const
{
    if (m_batches.empty())
        return {};
    const Batch& batch = m_batches.front();
    const size_t index = batch.next > 0 ? batch.next - 1 : 0;
    return SourceKey::readableName(batch.files[std::min(index, batch.files.size() - 1)]);
}

void PictureOpener::goOn()
{
    Batch& batch = m_batches.front();
    if (batch.next == batch.files.size()) {
        finish();
        return;
    }
    const size_t count =
        std::min(batch.next == 0 ? 1 : filesAtOnce, batch.files.size() - batch.next);
    const auto from = batch.files.begin() + std::ptrdiff_t(batch.next);
    batch.next += count;
    QFuture<ReadImages> read = batch.first && count == batch.next
        ? std::move(*batch.first)
        : reading(m_pool, Files(from, from + std::ptrdiff_t(count)));
    Q_EMIT changed();
    // Through the event loop even when it is there already: who opens files is not called back
    // from within.
    auto* watcher = new QFutureWatcher<ReadImages>(this);
    connect(watcher, &QFutureWatcherBase::finished, this, [this, watcher, number = ++m_number] {
        watcher->deleteLater();
        whenMouseIsFree(this, [this, number, read = watcher->future()]() mutable {
            if (number == m_number)
                take(read.takeResult());
        });
    });
    watcher->setFuture(read);
}

void PictureOpener::take(ReadImages read)
{
    Batch& batch = m_batches.front();
    batch.failed.insert(batch.failed.end(), read.failed.begin(), read.failed.end());
    const int number = m_number;
    const bool goesOn = read.images.empty() || adopt(batch, std::move(read.images));
    // A question may have been open: meanwhile another opening may have taken this one's place.
    if (number != m_number)
        return;
    if (goesOn)
        goOn();
    else
        finish();
}

/// False when the rest has nowhere to go.
bool PictureOpener::adopt(Batch& batch, std::vector<IncomingImage> images)
{
    const size_t count = images.size();
    const int number = m_number;
    if (batch.ids.empty() && batch.how == How::Replace) {
        if (m_model.sessionItems() != batch.replaced && !m_model.confirmDiscardingWork())
            return false;
        if (number != m_number)
            return false;
        m_model.adoptIntoSession(std::move(images), false);
    } else {
        // Closed or replaced as a whole meanwhile: what was asked for then is wanted no longer.
        if (!batch.ids.empty() && !hasAny(m_model.session.value(), batch.ids))
            return false;
        m_model.adoptIntoSession(std::move(images), true);
    }
    const auto& open = m_model.session.value();
    for (size_t i = open.size() - std::min(count, open.size()); i < open.size(); ++i)
        batch.ids.push_back(open[i].id);
    batch.opened += count;
    return true;
}

void PictureOpener::finish()
{
    const Batch done = std::move(m_batches.front());
    m_batches.pop_front();
    Q_EMIT changed();
    if (!m_batches.empty())
        goOn();
    m_model.reportUnread(done.opened, done.failed);
}

} // namespace orvane
