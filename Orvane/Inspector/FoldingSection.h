#pragma once

#include <QWidget>

#include <functional>

class QAbstractButton;
class QLabel;
class QPushButton;
class QVBoxLayout;
class QVariantAnimation;

namespace orvane {

class FoldClip;

/// A part of the panel under a header that folds it away: title, and when something in it was
/// changed the mark "Edited" and a button that asks to undo it. What is in it is made when it is
/// first opened.
///
///   v Title                 Edited  Reset
///   content
class FoldingSection final : public QWidget {
    Q_OBJECT

public:
    static constexpr int openingTime = 120; ///< ms
    using Maker = std::function<QWidget*(QWidget* parent)>;
    FoldingSection(const QString& title, Maker make, bool isExpanded, QWidget* parent = nullptr);

    bool isExpanded() const;
    void setExpanded(bool expanded);
    void setEdited(bool edited);
    /// Null until it has been open.
    QWidget* content() const { return m_content; }

Q_SIGNALS:
    void expandedChanged(bool expanded);
    void resetAsked();
    /// Just made, not yet shown.
    void contentMade(QWidget* content);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QWidget* makeHeader(const QString& title);
    void fold(bool isOpen);
    void makeContent();
    void animate(bool isOpen);

    QAbstractButton* m_header;
    QLabel* m_mark;
    QPushButton* m_reset;
    QVBoxLayout* m_column;
    Maker m_make;
    QWidget* m_content = nullptr;
    FoldClip* m_clip = nullptr;
    QVariantAnimation* m_animation;
};

} // namespace orvane
