#pragma once

#include "Popover.h"

#include <QAbstractButton>
#include <QPointer>

class QLineEdit;
class QListView;
class QSortFilterProxyModel;

namespace orvane {

/// Font families, each written in its own font, above them a field that narrows them down by
/// typing. Up and Down walk the list, Return or a click takes a family, Escape none.
class FontPopover final : public Popover {
    Q_OBJECT

public:
    FontPopover(const QString& name, const QString& family, QWidget* parent);

    /// At least as wide as the widget, with the focus in the field.
    void openBeside(const QWidget& anchor);
    QListView& list() { return *m_list; }

Q_SIGNALS:
    /// Empty stands for the system's font.
    void familyPicked(const QString& family);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void narrow(const QString& text);
    void take(const QModelIndex& index);

    QLineEdit* m_search;
    QListView* m_list;
    QSortFilterProxyModel* m_families;
};

/// The font of a text: shows its name in itself, and opens the list of all. Up and Down step
/// through the families without it.
class FontPicker final : public QAbstractButton {
    Q_OBJECT

public:
    /// `name` is for screen readers.
    explicit FontPicker(const QString& name, QWidget* parent = nullptr);

    QString family() const { return m_family; }
    /// Without a signal. Empty stands for the system's font.
    void setFamily(const QString& family);
    QSize sizeHint() const override { return {120, 26}; }

Q_SIGNALS:
    /// By the user.
    void familyPicked(const QString& family);

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void open();
    void step(int by);
    void pick(const QString& family);

    QString m_family;
    QPointer<FontPopover> m_popover;
};

} // namespace orvane
