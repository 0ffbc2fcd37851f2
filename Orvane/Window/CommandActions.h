#pragma once

#include "FieldWatch.h"

#include <QObject>

#include <vector>

class QAction;
class QMenuBar;
class QWidget;

namespace orvane {

struct Command;
class Shell;

/// The commands as actions of the window, with title, state and whether they can be used kept true
/// to the model.
class CommandActions final : public QObject {
    Q_OBJECT

public:
    /// The actions belong to `window`, where their keys hold. Their state is first looked at by
    /// refresh().
    CommandActions(Shell& shell, QWidget& window);

    void fill(QMenuBar& menus) const;
    /// By a command's id; null for an unknown one.
    QAction* action(const char* id) const;
    /// At once, after something that no field of the model tells of.
    void refresh();

protected:
    /// Keys wait until the hand has let go: one that took a step back, or brought another picture
    /// under a slider that is being dragged, would have the rest of the drag go elsewhere.
    bool eventFilter(QObject* action, QEvent* event) override;

private:
    struct Entry {
        const Command* command;
        QAction* action;
    };

    Shell& m_shell;
    std::vector<Entry> m_entries;
    FieldWatch m_watch;
};

} // namespace orvane
