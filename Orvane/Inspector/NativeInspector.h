#pragma once

#include "AppModel.h"
#include "FieldWatch.h"
#include "InspectorLayout.h"

#include <QWidget>

#include <set>

class QPushButton;
class QScrollArea;
class QVBoxLayout;

namespace orvane {

class FoldingSection;

/// The panel beside the picture: every slider of the catalogue and every tool, in sections that
/// fold, under headings that fold all of theirs. It is empty while nothing is open, and made when
/// something is. Which sections there are, and their order, is InspectorLayout's.
class NativeInspector final : public QWidget {
    Q_OBJECT

public:
    explicit NativeInspector(AppModel& model, QWidget* parent = nullptr);
    ~NativeInspector() override;

    static constexpr int panelWidth = 320;
    /// Names of the sections that are open.
    const std::set<QString>& expanded() const { return m_expanded; }
    /// Opens or folds a section; does nothing for a name that there is not.
    void setExpanded(const QString& name, bool expanded);
    /// Opens a section and scrolls it into sight.
    void reveal(const QString& name);
    /// Null for a name that there is not.
    FoldingSection* section(const QString& name) const;

protected:
    bool focusNextPrevChild(bool next) override;

private:
    struct Shown {
        InspectorSection section;
        FoldingSection* widget;
    };
    struct Heading {
        QString title;
        std::vector<QString> names;
        QPushButton* button;
    };
    void build();
    void addHeading(const InspectorHeading& heading);
    QWidget* made(const decltype(InspectorSection::make)& make, QWidget* under);
    FoldingSection* addSection(const InspectorSection& section);
    void takeExpanded(const QString& name, bool isExpanded);
    bool isAllExpanded(const Heading& heading) const;
    void toggleAll(const Heading& heading);
    void showHeadings();
    void askForName();
    void showFocused(QWidget* focused);
    void refresh();

    AppModel& m_model;
    std::set<QString> m_expanded = {"Crop", "Looks", "Light"};
    QScrollArea* m_scroll;
    QVBoxLayout* m_column = nullptr;
    std::vector<Heading> m_headings;
    std::vector<Shown> m_sections;
    FoldingSection* m_history = nullptr; ///< absent while there is nothing to go back to
    FieldWatch m_watch;
};

} // namespace orvane
