#pragma once

#include "FieldWatch.h"

#include <QToolButton>

class QMenu;

namespace orvane {

class AppModel;
struct Collection;

/// The button that names the open collection, with the menu of all that is done with collections.
class SessionMenu final : public QToolButton {
    Q_OBJECT

public:
    explicit SessionMenu(AppModel& model, QWidget* parent = nullptr);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void refresh();
    /// The menu as the model stands now.
    void fillMenu();
    void addOpenCollection(const QString& name);
    void addStoredCollections();
    void askForName();
    void askForNewName(const Collection& collection);

    AppModel& m_model;
    QMenu* m_menu;
    FieldWatch m_watch;
};

} // namespace orvane
