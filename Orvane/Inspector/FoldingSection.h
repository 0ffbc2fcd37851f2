#pragma once

#include <QWidget>

class QAbstractButton;
class QLabel;
class QPushButton;

namespace orvane {

/// A part of the panel under a header that folds it away: title, and when something in it was
/// changed the mark "Edited" and a button that asks to undo it.
///
///   v Title                 Edited  Reset
///   content
class FoldingSection final : public QWidget {
    Q_OBJECT

public:
    /// Open, and takes the content over.
    FoldingSection(const QString& title, QWidget* content, QWidget* parent = nullptr);

    bool isExpanded() const;
    void setExpanded(bool expanded);
    void setEdited(bool edited);

Q_SIGNALS:
    void expandedChanged(bool expanded);
    void resetAsked();

private:
    QWidget* makeHeader(const QString& title);

    QAbstractButton* m_header;
    QLabel* m_mark;
    QPushButton* m_reset;
    QWidget* m_content;
};

} // namespace orvane
