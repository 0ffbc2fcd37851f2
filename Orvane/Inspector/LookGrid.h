#pragma once

#include "EditImage.h"

#include <QAbstractButton>

#include <vector>

namespace orvane {

/// A look in the grid: its picture, the name under it, and a ring round the one in use.
class LookTile final : public QAbstractButton {
    Q_OBJECT

public:
    /// The rows of pictures are 58 high.
    static constexpr int pictureHeight = 58;
    static constexpr int tileHeight = pictureHeight + 20;

    explicit LookTile(QWidget* parent = nullptr);

    struct Shown {
        std::string id;
        QString name;
        QString reason = {}; ///< the tooltip
        Thumbnail picture = {}; ///< without one the tile shows a calm ground
        bool isInUse = false;
        bool isStale = false; ///< the picture is of what was open before

        bool operator==(const Shown&) const = default;
    };
    const Shown& shown() const { return m_shown; }
    void show(const Shown& shown);

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void paintPicture(QPainter& painter);

    Shown m_shown;
    QImage m_fitted; ///< the picture as it is painted: rounded, in device pixels
};

/// Looks side by side. Tab comes to one of them, the arrow keys move among them, Enter and Space
/// apply the one that has the focus.
class LookGrid final : public QWidget {
    Q_OBJECT

public:
    explicit LookGrid(QWidget* parent = nullptr);

    /// In place: a tile that stays keeps the focus.
    void show(const std::vector<LookTile::Shown>& looks);
    const std::vector<LookTile*>& tiles() const { return m_tiles; }

Q_SIGNALS:
    void picked(const std::string& id);

protected:
    bool eventFilter(QObject* tile, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    int columns() const;
    void arrange();
    void addTile();
    void makeCurrent(int index);
    int steppedBy(int index, int key) const;

    std::vector<LookTile*> m_tiles;
};

} // namespace orvane
