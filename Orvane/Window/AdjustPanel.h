#pragma once

#include "EditState.h"

#include <QScrollArea>

#include <map>
#include <string>

namespace orvane {

class SliderRow;

/// The panel beside the picture: sections of sliders from the catalogue.
class AdjustPanel final : public QScrollArea {
    Q_OBJECT

public:
    explicit AdjustPanel(QWidget* parent = nullptr);

    /// Moves the sliders to an edit, without telling of it.
    void showState(const EditState& state);
    /// The row of a slider that the panel shows.
    SliderRow& row(const std::string& key) { return *m_rows.at(key); }

Q_SIGNALS:
    void adjusted(const std::string& key, double value);

private:
    std::map<std::string, SliderRow*> m_rows;
    std::map<std::string, double> m_rest;
};

} // namespace orvane
