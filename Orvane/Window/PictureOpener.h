#pragma once

#include "EditImage.h"
#include "SessionRules.h"

#include <QFuture>
#include <QObject>

#include <deque>

class QThreadPool;

namespace orvane {

class AppModel;

/// Brings files into the session while the window goes on working: the first is shown as soon as
/// it is decoded, the others join it in their order, and what could not be read is told at the end.
class PictureOpener final : public QObject {
    Q_OBJECT

public:
    using Files = std::vector<std::filesystem::path>;
    enum class How {
        Replace, ///< the session, which may be dropped; asked again if it changes meanwhile
        Append,
    };

    /// Reads in the pool, which outlives this.
    PictureOpener(AppModel& model, QThreadPool& pool);

    /// The first step of open(), for a program that begins with it before it has a window.
    static QFuture<ReadImages> readFirst(QThreadPool& pool, const Files& files);
    /// Replacing ends what is still being opened; appending waits for it. `first` is a reading that
    /// has begun already.
    void open(Files files, How how, std::optional<QFuture<ReadImages>> first = {});
    /// Ends it; what has come in stays.
    void stop();

    bool isOpening() const { return !m_batches.empty(); }
    /// The file that is being read; empty when none is.
    std::string nameInHand() const;

Q_SIGNALS:
    /// Another file is in hand, or none any more.
    void changed();

private:
    struct Batch {
        Files files;
        How how = How::Append;
        std::optional<QFuture<ReadImages>> first;
        std::vector<SessionRules::Item<EditState>> replaced =
            {}; ///< the session that may be dropped
        size_t next = 0; ///< the first file that is not in hand yet
        size_t opened = 0;
        std::vector<std::string> failed = {};
        std::vector<std::string> ids = {}; ///< of its images that have come in
    };

    void goOn();
    void take(ReadImages read);
    bool adopt(Batch& batch, std::vector<IncomingImage> images);
    void finish();

    AppModel& m_model;
    QThreadPool& m_pool;
    std::deque<Batch> m_batches; ///< that of the front is being read
    int m_number = 0; ///< of the reading whose result counts
};

} // namespace orvane
