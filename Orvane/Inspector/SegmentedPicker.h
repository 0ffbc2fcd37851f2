#pragma once

#include <QString>
#include <QWidget>

#include <utility>
#include <vector>

class QButtonGroup;

namespace orvane {

/// One choice of a few, all in sight. Tab reaches the chosen one, arrow keys choose another.
class SegmentedPicker final : public QWidget {
    Q_OBJECT

public:
    /// Keys with their labels; the first is chosen.
    using Choices = std::vector<std::pair<QString, QString>>;
    /// `name` is for screen readers.
    SegmentedPicker(const QString& name, Choices choices, QWidget* parent = nullptr);

    QString chosen() const;
    /// Without a signal; an unknown key changes nothing.
    void choose(const QString& key);

Q_SIGNALS:
    /// By the user.
    void picked(const QString& key);

private:
    Choices m_choices;
    QButtonGroup* m_group;
};

} // namespace orvane
