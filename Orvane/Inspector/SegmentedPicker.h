#pragma once

#include <QString>
#include <QWidget>

#include <utility>
#include <vector>

class QButtonGroup;

namespace orvane {

/// Lets Tab come to the chosen button of a group, or to its first while none is chosen. To be
/// called after each choice: by itself the toolkit stays with the button that last had the focus.
void tabToChosen(QButtonGroup& group);

/// One choice of a few, all in sight. Tab reaches the chosen one, arrow keys choose another.
class SegmentedPicker final : public QWidget {
    Q_OBJECT

public:
    /// Keys with their labels; the first is chosen.
    using Choices = std::vector<std::pair<QString, QString>>;
    /// `name` is for screen readers. Many choices take several lines of so many `columns` each; 0
    /// puts them all into one.
    SegmentedPicker(const QString& name, Choices choices, int columns = 0,
                    QWidget* parent = nullptr);

    QString chosen() const;
    /// Without a signal; for an unknown key none is chosen.
    void choose(const QString& key);

Q_SIGNALS:
    /// By the user.
    void picked(const QString& key);

private:
    Choices m_choices;
    QButtonGroup* m_group;
};

} // namespace orvane
