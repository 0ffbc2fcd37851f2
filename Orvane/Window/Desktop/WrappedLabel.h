#pragma once

#include <QLabel>

namespace orvane {

/// Plain text as it stands, in as many lines as its width asks for. Unlike a plain label it also
/// breaks inside a word that is wider than itself, as names of files are.
class WrappedLabel final : public QLabel {
public:
    explicit WrappedLabel(const QString& text, QWidget* parent = nullptr);

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    /// Lays the text out and draws it where there is a painter; gives the height and the width that
    /// it took.
    QSizeF lay(double width, QPainter* painter) const;
};

} // namespace orvane
