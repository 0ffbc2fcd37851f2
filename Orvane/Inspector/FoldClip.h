#pragma once

#include <QWidget>

namespace orvane {

/// Shows the upper part of a widget, which keeps the height that it asks for.
class FoldClip final : public QWidget {
    Q_OBJECT

public:
    /// Takes the content over, and shows all of it.
    explicit FoldClip(QWidget* content);

    /// 0 shows nothing, 1 everything.
    void setShare(double share);
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    int fullHeight(int width) const;
    void place();

    QWidget* m_content;
    double m_share = 1;
};

} // namespace orvane
