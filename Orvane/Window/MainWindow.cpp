#include "MainWindow.h"

#include "ExportDialog.h"
#include "ExportOverlay.h"
#include "PathText.h"
#include "Schema.h"
#include "SliderRow.h"
#include "Theme.h"

#include <QAction>
#include <QDragEnterEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenuBar>
#include <QMimeData>
#include <QPushButton>
#include <QStackedWidget>
#include <QStatusBar>
#include <QThreadPool>
#include <QTimer>
#include <QUrl>

#include <cmath>

namespace orvane {

namespace {

QString inQuotes(const std::filesystem::path& path)
{
    return "“" + textFromPath(path.filename()) + "”";
}

QString pictureSize(const CIImage& image)
{
    return QString("%1 × %2").arg(image.extent().width()).arg(image.extent().height());
}

std::string suggestedName(const std::filesystem::path& source, ExportFormat format)
{
    return source.stem().string() + "-edit." + std::string(info(format).ext);
}

EditState untouched()
{
    EditState state;
    state.adjust = Schema::file().defaults;
    return state;
}

bool isSameFile(const std::filesystem::path& a, const std::filesystem::path& b)
{
    std::error_code none;
    return std::filesystem::equivalent(a, b, none);
}

} // namespace

/// A command of the menus: everything about it in one row.
struct MainWindow::ActionRow {
    const char* id;
    const char* menu;
    const char* text;
    std::initializer_list<const char*> keys;
    When when;
    void (MainWindow::*handler)();
};

MainWindow::MainWindow(QThreadPool& pool, Panels& panels)
    : m_pool(pool)
    , m_panels(panels)
    , m_canvas(new CIPreviewView(pool))
    , m_panel(new AdjustPanel)
    , m_exporter(pool)
{
    setWindowTitle("Orvane");
    setAcceptDrops(true);
    layOut();
    makeActions();
    resize(1280, 800);

    connect(m_panel, &AdjustPanel::adjusted, this, &MainWindow::setAdjust);
    connect(m_canvas, &CIPreviewView::scaleChanged, this, &MainWindow::showStatus);
    connect(m_canvas, &CIPreviewView::picturePainted, this, &MainWindow::showStatus);
    connect(m_canvas, &CIPreviewView::picturePainted, this, &MainWindow::firstPicturePainted,
            Qt::SingleShotConnection);
    connect(m_overlay, &ExportOverlay::cancelled, &m_exporter, &Exporter::cancel);
    connect(&m_exporter, &Exporter::finished, this, &MainWindow::exportEnded);
}

MainWindow::~MainWindow() = default;

void MainWindow::stopWork()
{
    ++m_openingNumber;
    m_exporter.cancel();
    m_canvas->setContent({.version = ++m_sourceVersion});
}

// ---- Layout and commands ----

//   ┌ menu ───────────────────────────────┐
//   │ empty page, or canvas      │ panel  │
//   ├────────────────────────────┴────────┤
//   └ note                           zoom ┘
void MainWindow::layOut()
{
    auto* title = new QLabel(tr("No image open"));
    QFont large = title->font();
    large.setPixelSize(20);
    large.setWeight(QFont::Medium);
    title->setFont(large);
    auto* hint = new QLabel(tr("Drop an image here, or open one."));
    QPalette secondary = hint->palette();
    secondary.setColor(QPalette::WindowText, Theme::secondaryText);
    hint->setPalette(secondary);
    auto* button = new QPushButton(tr("Open Image…"));
    connect(button, &QPushButton::clicked, this, &MainWindow::openByPanel);

    m_emptyPage = new QWidget;
    QPalette ground = m_emptyPage->palette();
    ground.setColor(QPalette::Window, Theme::surround);
    m_emptyPage->setPalette(ground);
    m_emptyPage->setAutoFillBackground(true);
    auto* empty = new QVBoxLayout(m_emptyPage);
    empty->setSpacing(8);
    empty->addStretch(1);
    empty->addWidget(title, 0, Qt::AlignHCenter);
    empty->addWidget(hint, 0, Qt::AlignHCenter);
    empty->addSpacing(8);
    empty->addWidget(button, 0, Qt::AlignHCenter);
    empty->addStretch(1);

    m_canvas->setFocusPolicy(Qt::ClickFocus);
    m_overlay = new ExportOverlay(m_canvas);
    m_column = new QStackedWidget;
    m_column->addWidget(m_emptyPage);
    m_column->addWidget(m_canvas);
    m_panel->setEnabled(false);

    auto* content = new QWidget;
    auto* columns = new QHBoxLayout(content);
    columns->setContentsMargins(0, 0, 0, 0);
    columns->setSpacing(0);
    columns->addWidget(m_column, 1);
    columns->addWidget(m_panel);
    setCentralWidget(content);

    m_noteLabel = new QLabel;
    m_zoomLabel = new QLabel;
    Theme::makeSecondary(*m_noteLabel);
    Theme::makeSecondary(*m_zoomLabel);
    m_noteLabel->setContentsMargins(8, 0, 8, 0);
    m_zoomLabel->setContentsMargins(8, 0, 8, 0);
    statusBar()->setSizeGripEnabled(false);
    statusBar()->addWidget(m_noteLabel, 1);
    statusBar()->addPermanentWidget(m_zoomLabel);
}

void MainWindow::makeActions()
{
    static const ActionRow table[] = {
        {"open", "File", "Open Image…", {"Ctrl+O"}, When::Always, &MainWindow::openByPanel},
        {"export", "File", "Export…", {"Ctrl+E"}, When::WhenExportable, &MainWindow::askExport},
        {"close", "File", "Close Window", {"Ctrl+W"}, When::Always, &MainWindow::closeWindow},
        {"quit", "File", "Quit", {"Ctrl+Q"}, When::Always, &MainWindow::closeWindow},
        {"zoomIn", "View", "Zoom In", {"Ctrl++", "Ctrl+="}, When::WithPicture, &MainWindow::zoomIn},
        {"zoomOut", "View", "Zoom Out", {"Ctrl+-"}, When::WithPicture, &MainWindow::zoomOut},
        {"zoomToFit", "View", "Zoom to Fit", {"Ctrl+0"}, When::WithPicture, &MainWindow::zoomToFit},
        {"actualSize",
         "View",
         "Actual Size",
         {"Ctrl+1"},
         When::WithPicture,
         &MainWindow::zoomToActualSize},
        // Two keys: on many layouts the first is hard to reach.
        {"compare",
         "View",
         "Show Original",
         {"\\", "B"},
         When::WithPicture,
         &MainWindow::toggleComparing},
    };
    QMenu* menu = nullptr;
    for (const ActionRow& row : table) {
        if (!menu || menu->objectName() != row.menu) {
            menu = menuBar()->addMenu(tr(row.menu));
            menu->setObjectName(row.menu);
        }
        QAction* action = menu->addAction(tr(row.text));
        action->setObjectName(row.id);
        QList<QKeySequence> keys;
        for (const char* key : row.keys)
            keys << QKeySequence(key);
        action->setShortcuts(keys);
        connect(action, &QAction::triggered, this, row.handler);
        m_actions.emplace_back(action, row.when);
    }
    m_compareAction = findChild<QAction*>("compare");
    m_compareAction->setAutoRepeat(false);
    updateActions();
}

void MainWindow::updateActions()
{
    for (const auto& [action, when] : m_actions) {
        const bool needsPicture = when != When::Always;
        const bool needsIdle = when == When::WhenExportable;
        action->setEnabled((!needsPicture || m_picture) && (!needsIdle || !m_exporter.isRunning()));
    }
}

void MainWindow::closeWindow()
{
    close();
}

void MainWindow::zoomIn()
{
    m_canvas->zoomIn();
}

void MainWindow::zoomOut()
{
    m_canvas->zoomOut();
}

void MainWindow::zoomToFit()
{
    m_canvas->zoomToFit();
}

void MainWindow::zoomToActualSize()
{
    m_canvas->zoomToActualSize();
}

// ---- Opening ----

void MainWindow::openByPanel()
{
    openFiles(m_panels.picturesToOpen());
}

void MainWindow::open(const QStringList& files)
{
    std::vector<std::filesystem::path> paths;
    for (const QString& file : files)
        paths.push_back(pathFromText(file));
    openFiles(paths);
}

void MainWindow::openFiles(const std::vector<std::filesystem::path>& paths)
{
    if (!paths.empty())
        adopt(openPictures(m_pool, paths), paths);
}

void MainWindow::adopt(const QFuture<PictureOpening>& opening,
                       const std::vector<std::filesystem::path>& paths)
{
    const int number = ++m_openingNumber;
    m_openingText = tr("Opening %1…").arg(inQuotes(paths.front()));
    m_canvas->setMessage(m_openingText);
    if (!m_picture)
        m_column->setCurrentWidget(m_canvas);
    showStatus();
    QFuture<PictureOpening>(opening).then(this, [this, number](const PictureOpening& result) {
        if (number == m_openingNumber)
            take(result);
    });
}

void MainWindow::take(const PictureOpening& opening)
{
    m_openingText.clear();
    m_canvas->setMessage({});
    showStatus();
    const int number = m_openingNumber;
    // Only here is it known that the picture will be replaced, and by the whole edit.
    if (opening.picture && !mayDropEdit())
        return;
    if (number != m_openingNumber)
        return;
    if (opening.picture) {
        setComparing(false);
        m_picture = opening.picture;
        m_state = untouched();
        m_keptState = m_state;
        if (opening.unopened > 0)
            m_picture->note = tr("Only the first of the %1 pictures is shown.")
                                  .arg(opening.unopened + 1)
                                  .toStdString();
        ++m_sourceVersion;
        m_panel->showState(m_state);
        m_panel->setEnabled(true);
        setWindowTitle(textFromPath(m_picture->path.filename()) + " — Orvane");
        m_column->setCurrentWidget(m_canvas);
        refreshCanvas();
    } else if (!m_picture) {
        m_column->setCurrentWidget(m_emptyPage);
    }
    updateActions();
    showStatus();
    if (!opening.failures.empty())
        tellFailures(opening);
}

bool MainWindow::mayDropEdit()
{
    if (!m_picture || m_state == m_keptState || m_state == untouched())
        return true;
    return m_panels.confirm(
        tr("Discard your edits to %1?").arg(inQuotes(m_picture->path)),
        tr("They haven't been exported since the last change. Export first to keep them."),
        tr("Discard"));
}

void MainWindow::tellFailures(const PictureOpening& opening)
{
    const auto count = opening.failures.size();
    QStringList names;
    QStringList reasons;
    for (const auto& failure : opening.failures) {
        names << textFromPath(failure.path.filename());
        reasons << inQuotes(failure.path) + ": " + QString::fromStdString(failure.reason);
    }
    const QString informative = tr("Not a readable image: %1").arg(names.join(", "));
    const QString message = opening.picture ? tr("1 opened, %1 couldn't be read").arg(count)
        : count == 1                        ? tr("Couldn't open that file")
                                            : tr("Couldn't open those files");
    m_panels.alert(message, informative + '\n' + reasons.join('\n'));
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event)
{
    QStringList files;
    for (const QUrl& url : event->mimeData()->urls()) {
        if (url.isLocalFile())
            files << url.toLocalFile();
    }
    event->acceptProposedAction();
    if (!files.isEmpty()) {
        open(files);
        return;
    }
    // After the drop is over: the program it came from waits for it.
    QTimer::singleShot(0, this, [this] {
        m_panels.alert(tr("Couldn't open that file"),
                       tr("What was dropped is no file on this computer. Save it first, then drop "
                          "the saved file."));
    });
}

// ---- Editing and looking ----

void MainWindow::setAdjust(const std::string& key, double value)
{
    m_state.adjust[key] = value;
    refreshCanvas();
}

void MainWindow::toggleComparing()
{
    setComparing(!m_comparing);
}

void MainWindow::setComparing(bool comparing)
{
    if (m_comparing == comparing || !m_picture)
        return;
    m_comparing = comparing;
    m_compareAction->setText(comparing ? tr("Show Edited") : tr("Show Original"));
    refreshCanvas();
    showStatus();
}

void MainWindow::refreshCanvas()
{
    m_canvas->setContent({.version = m_sourceVersion,
                          .proxy = m_picture->proxy,
                          .sourceSize = m_picture->source.extent().size,
                          .state = m_state,
                          .comparing = m_comparing});
}

void MainWindow::showStatus()
{
    if (!m_picture) {
        m_noteLabel->clear();
        m_zoomLabel->clear();
        return;
    }
    QString text =
        textFromPath(m_picture->path.filename()) + "   " + pictureSize(m_picture->source);
    if (!m_picture->note.empty())
        text += "   " + QString::fromStdString(m_picture->note);
    if (m_comparing)
        text += "   " + tr("Original");
    m_noteLabel->setText(m_openingText.isEmpty() ? text : m_openingText);

    const CanvasView& view = m_canvas->mapping();
    const double percent =
        100 * fitScale(view.size, m_picture->source.extent().size) * effectiveZoom(view);
    m_zoomLabel->setText(view.zoom == 1 ? tr("Fit, %1%").arg(std::lround(percent))
                                        : tr("%1%").arg(std::lround(percent)));
}

// ---- Export ----

void MainWindow::askExport()
{
    auto* dialog = new ExportDialog(m_exportOptions, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    const ExportCommand command{*m_picture, m_state, m_sourceVersion};
    connect(dialog, &QDialog::accepted, this, [this, dialog, command] {
        m_exportOptions = dialog->options();
        // When the dialog is done: it may be deleted while the next one is asked.
        QMetaObject::invokeMethod(
            this, [this, command] { exportImage(command); }, Qt::QueuedConnection);
    });
    dialog->open();
}

void MainWindow::exportImage(const ExportCommand& command)
{
    const ExportOptions options = m_exportOptions;
    const auto& source = command.picture.path;
    const std::string name = suggestedName(source, options.format);
    const auto target = m_panels.exportTarget(source.parent_path() / name, info(options.format));
    if (!target)
        return;
    if (isSameFile(*target, source) || isSameFile(*target, m_picture->path)) {
        tellExportFailure(
            name,
            tr("This is the original, which is never written. Choose another name.").toStdString());
        return;
    }
    m_exportName = name;
    m_exporting = command;
    m_exporter.start({command.picture.source, command.state, options, *target});
    m_overlay->begin();
    updateActions();
}

void MainWindow::exportEnded(const Exporter::End& end)
{
    m_overlay->end();
    updateActions();
    if (end.isWritten && m_exporting->version == m_sourceVersion)
        m_keptState = m_exporting->state;
    m_exporting.reset();
    if (!end.failure.empty())
        tellExportFailure(m_exportName, end.failure);
}

void MainWindow::tellExportFailure(const std::string& name, const std::string& failure)
{
    m_panels.alert(tr("Couldn't export “%1”").arg(textFromPath(name)),
                   QString::fromStdString(failure));
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    const bool mayStop = !m_exporter.isRunning()
        || m_panels.confirm(
            tr("Stop the export?"),
            tr("%1 is still being written.").arg(inQuotes(std::filesystem::path(m_exportName))),
            tr("Stop and Close"));
    event->setAccepted(mayStop && mayDropEdit());
}

} // namespace orvane
