#include "LutControls.h"

#include "Icon.h"
#include "ModelSlider.h"
#include "PanelControls.h"
#include "Theme.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>

namespace orvane {

namespace {

constexpr int iconSize = 16;

/// A quiet box round what needs attention.
class Box final : public QWidget {
protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(QColor(0x50, 0x50, 0x50), 1));
        painter.setBrush(Theme::panel);
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), Theme::radius,
                                Theme::radius);
    }
};

class WarningSign final : public QWidget {
public:
    WarningSign() { setFixedSize(iconSize, iconSize); }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        drawIcon(painter, m_sign, QRectF(rect()).center(), iconSize);
    }

private:
    QIcon m_sign = icon("triangle-alert", Theme::text, IconForm::Filled);
};

/// One line, cut off in the middle when it is too long.
class NameLabel final : public QLabel {
public:
    NameLabel() { setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred); }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.setPen(Theme::text);
        painter.drawText(rect(), Qt::AlignVCenter | Qt::AlignLeft,
                         fontMetrics().elidedText(text(), Qt::ElideMiddle, width()));
    }
};

} // namespace

LutControls::LutControls(AppModel& model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_loaded(makeLoaded())
    , m_missing(makeMissing())
    , m_watch([this] { refresh(); })
{
    auto* load = new PanelButton("layers", tr("Load a LUT (.cube)…"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(8);
    column->addWidget(load);
    column->addWidget(m_loaded);
    column->addWidget(m_missing);
    setTabOrder(load, m_loaded);
    setTabOrder(m_loaded, m_missing);
    connect(load, &QPushButton::clicked, this, [this] { m_model.importLut(); });
    m_watch.watch(model.lutName, model.lutAmount, model.lutMissing);
    refresh();
}

QWidget* LutControls::makeLoaded()
{
    auto* loaded = new QWidget;
    m_name = new NameLabel;
    auto* remove = new PanelButton("layers", tr("Remove"));
    auto* head = new QHBoxLayout;
    head->setSpacing(8);
    head->addWidget(m_name, 1);
    head->addWidget(remove);
    const auto write = [this](double amount) {
        m_model.lutAmount = amount;
        m_model.pushHistory();
    };
    m_amount =
        new ModelSlider(m_model, tr("LUT Amount"), {.minimum = 0, .maximum = 100, .resets = false},
                        {[this] { return m_model.lutAmount.value(); }, write});
    auto* column = new QVBoxLayout(loaded);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(4);
    column->addLayout(head);
    column->addWidget(m_amount);
    connect(remove, &QPushButton::clicked, this, [this] { m_model.removeLut(); });
    return loaded;
}

QWidget* LutControls::makeMissing()
{
    auto* missing = new Box;
    auto* title = new QLabel(tr("Missing LUT"));
    QFont heading = title->font();
    heading.setWeight(QFont::Medium);
    title->setFont(heading);
    auto* head = new QHBoxLayout;
    head->setSpacing(8);
    head->addWidget(new WarningSign);
    head->addWidget(title, 1);
    auto* word = new QLabel(tr("This edit uses a LUT whose file couldn't be loaded. Its colour "
                               "won't be applied. Re-import it, or remove it from this edit."));
    word->setWordWrap(true);
    Theme::makeSecondary(*word);
    auto* import = new PanelButton("layers", tr("Re-import"));
    auto* remove = new PanelButton("trash-2", tr("Remove"));

    auto* column = new QVBoxLayout(missing);
    column->setContentsMargins(10, 10, 10, 10);
    column->setSpacing(8);
    column->addLayout(head);
    column->addWidget(word);
    column->addLayout(buttonRow({import, remove}));
    connect(import, &QPushButton::clicked, this, [this] { m_model.importLut(); });
    connect(remove, &QPushButton::clicked, this, [this] { m_model.removeLut(); });
    return missing;
}

void LutControls::refresh()
{
    const QString name = QString::fromStdString(m_model.lutName);
    m_name->setText(name);
    m_name->setToolTip(name);
    m_amount->refresh();
    m_loaded->setVisible(!name.isEmpty());
    m_missing->setVisible(m_model.lutMissing);
}

} // namespace orvane
