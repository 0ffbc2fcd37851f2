#pragma once

#include <QIcon>
#include <QWidget>

#include <string>
#include <vector>

class QAbstractButton;
class QScrollArea;
class QVBoxLayout;

namespace orvane {

class GlyphButton;

/// Named things one under the other, each with a button that removes it if it can be removed. Tab
/// comes to one row and its button, the arrow keys move among the rows, Delete removes.
///
///   icon  Name                     (x)
///   icon  Name                     (x)
class RowList final : public QWidget {
    Q_OBJECT

public:
    struct Row {
        std::string id;
        QString text;
        QIcon icon = {}; ///< may be none
        QString removeHelp = {}; ///< empty: it cannot be removed here
        bool isCurrent = false;
        bool isFaint = false; ///< the text stands in for one that is missing
    };

    /// `name` is for screen readers. More rows than `mostVisible` scroll.
    explicit RowList(const QString& name, int mostVisible = 8, QWidget* parent = nullptr);

    /// In place: the focus stays on the row of the same number, or goes to the last one.
    void show(const std::vector<Row>& rows);
    int count() const { return m_count; }
    QAbstractButton* row(int index) const;
    GlyphButton* removeButton(int index) const;

Q_SIGNALS:
    void picked(const std::string& id);
    void removeAsked(const std::string& id);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    class RowButton;
    struct Line {
        QWidget* widget;
        RowButton* button;
        GlyphButton* remove;
        std::string id;
    };
    void addLine();
    void showRow(Line& line, const Row& row);
    void rescueFocus(int count);
    void makeCurrent(int index);
    bool takeKey(int index, int key);

    int m_mostVisible;
    QScrollArea* m_scroll;
    QVBoxLayout* m_column;
    std::vector<Line> m_lines; ///< those beyond the count are hidden
    int m_count = 0;
};

} // namespace orvane
