#pragma once

#include <QObject>
#include <QProperty>

#include <functional>
#include <memory>
#include <vector>

namespace orvane {

/// Keeps a view true to fields of the model: after any of the watched ones has changed, `refresh`
/// runs once on the next turn of the event loop. So a view never sees an edit half restored, and
/// many changes in one turn cost one refresh. Its place is in the view; the fields outlive it.
/// Main thread only.
class FieldWatch {
public:
    explicit FieldWatch(std::function<void()> refresh);
    FieldWatch(const FieldWatch&) = delete;
    FieldWatch& operator=(const FieldWatch&) = delete;

    template <class... Fields> void watch(Fields&... fields)
    {
        (m_notifiers.push_back(
             std::make_unique<QPropertyNotifier>(fields.addNotifier([this] { schedule(); }))),
         ...);
    }
    /// Now, in place of the one that may be due.
    void refresh();
    /// As if a field had changed.
    void schedule();

private:
    std::function<void()> m_refresh;
    bool m_isDue = false;
    QObject m_receiver;
    std::vector<std::unique_ptr<QPropertyNotifier>> m_notifiers;
};

} // namespace orvane
