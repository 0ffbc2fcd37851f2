#pragma once

#include "CIPreviewView.h"
#include "ModelTesting.h"
#include "OrvaneApp.h"
#include "WidgetTesting.h"

#include <QAction>

#include <memory>

namespace orvane {

/// The whole program, offscreen, over a folder of pictures and a scripted desktop.
class WindowTest : public TemporaryFolder {
protected:
    WindowTest()
    {
        qputenv("XDG_CONFIG_HOME", (folder / "config").c_str());
        start();
    }
    ~WindowTest() override { end(); }

    /// A run of the program.
    void start()
    {
        app = std::make_unique<OrvaneApp>(desktop, pool, folder / "stores");
        app->delegate.attach(app->model, desktop, app->opener);
        app->window.resize(1280, 800);
        app->window.show();
        app->window.activateWindow();
        waitFor([&] { return app->window.isActiveWindow(); });
    }
    void end()
    {
        if (app)
            app->opener.stop();
        pool.waitForDone();
        app.reset();
    }

    AppModel& model() { return app->model; }
    CIPreviewView& canvas() { return app->window.canvas(); }

    std::filesystem::path picture(const std::string& name, std::array<int, 3> color = {90, 120, 60})
    {
        writePicture(folder / name, color, EncodedFormat::Jpeg, 480, 320);
        return folder / name;
    }
    /// Sent by the desktop, and waited for until the canvas shows them.
    void openFiles(const std::vector<std::string>& names)
    {
        OrvaneDelegate::Files files;
        for (const std::string& name : names)
            files.push_back(std::filesystem::exists(folder / name) ? folder / name : picture(name));
        app->delegate.accept(files);
        waitFor([&] {
            return model().session.value().size() >= names.size() && !app->opener.isOpening();
        });
        waitForPicture();
    }
    void waitForPicture()
    {
        waitFor([&] { return canvas().mapping().hasFrame(); });
    }

    QAction& action(const char* id)
    {
        QAction* found = app->window.commands().action(id);
        if (!found)
            throw std::runtime_error(std::string("There is no command ") + id);
        return *found;
    }
    void trigger(const char* id)
    {
        QCoreApplication::processEvents();
        if (!action(id).isEnabled())
            throw std::runtime_error(std::string("The command is off: ") + id);
        action(id).trigger();
        QCoreApplication::processEvents();
    }

    /// Where a point of the picture lies in the canvas, both as fractions with y from the top.
    QPoint onCanvas(double x, double y)
    {
        const CGPoint point = viewPoint({x, y}, canvas().mapping());
        return QPoint(int(std::lround(point.x)), int(std::lround(point.y)));
    }
    void drag(const QPoint& from, const QPoint& to) { dragOn(canvas(), from, to); }
    static void dragOn(QWidget& widget, const QPoint& from, const QPoint& to)
    {
        QTest::mousePress(&widget, Qt::LeftButton, {}, from);
        for (int step = 1; step <= 5; ++step)
            moveHeld(widget, from + (to - from) * step / 5);
        QTest::mouseRelease(&widget, Qt::LeftButton, {}, to);
        QCoreApplication::processEvents();
    }
    static void moveHeld(QWidget& widget, const QPoint& to)
    {
        QMouseEvent move(QEvent::MouseMove, to, widget.mapToGlobal(to), Qt::NoButton,
                         Qt::LeftButton, {});
        QCoreApplication::sendEvent(&widget, &move);
    }
    /// By the name that a screen reader says, and its kind.
    template <class Widget> Widget& named(const QString& name)
    {
        for (Widget* widget : app->window.findChildren<Widget*>()) {
            if (widget->accessibleName() == name && widget->isVisible())
                return *widget;
        }
        throw std::runtime_error("There is no " + name.toStdString());
    }

    ScriptedDesktop desktop;
    QThreadPool pool;
    std::unique_ptr<OrvaneApp> app;
};

} // namespace orvane
