#include "Commands.h"

#include "AppModel.h"
#include "Shell.h"

#include <QKeySequence>

#include <algorithm>
#include <string_view>

namespace orvane {

namespace {

bool always(const Shell&)
{
    return true;
}

bool withImage(const Shell& shell)
{
    return shell.model.sourceImage.value().has_value();
}

bool withIdleImage(const Shell& shell)
{
    return withImage(shell) && !shell.model.isExporting && !shell.model.isExportingAll();
}

bool withFile(const Shell& shell)
{
    return shell.model.activeFileURL().has_value();
}

/// The other tool first: what it did stands, as a step of its own.
void switchCrop(Shell& shell)
{
    AppModel& model = shell.model;
    if (model.cropMode) {
        model.finishCrop();
    } else {
        model.endActiveTool();
        model.enterCrop();
    }
}

void switchRelight(Shell& shell)
{
    AppModel& model = shell.model;
    if (model.relightMode) {
        model.exitRelight();
    } else {
        model.endActiveTool();
        model.enterRelight();
    }
}

void switchWhiteBalance(Shell& shell)
{
    AppModel& model = shell.model;
    if (!model.pickingWhite && (model.cropMode || model.relightMode))
        model.endActiveTool();
    model.pickWhiteBalance();
}

void switchHeal(Shell& shell)
{
    AppModel& model = shell.model;
    if (!model.healing && (model.cropMode || model.relightMode))
        model.endActiveTool();
    model.toggleHeal();
}

void switchHistogram(Shell& shell)
{
    AppModel& model = shell.model;
    model.histogramOn = !model.histogramOn;
    if (model.histogramOn)
        model.refreshHistogram();
}

// clang-format off
const Command table[] = {
    {"open", "File", "Open Image…", {"Ctrl+O"}, always,
     [](Shell& s) { s.model.openImage(false); }, "folder-open"},
    {"importFromPhotos", "File", "Import from Photos…", {"Ctrl+Shift+I"}, always,
     [](Shell& s) { s.showSidebar(true); s.model.importFromPhotos(); }, "images"},
    {"paste", "File", "Paste Image", {"Ctrl+V"}, always,
     [](Shell& s) { s.model.pasteImage(); }, "clipboard-paste"},
    {"reveal", "File", "Reveal Original in Finder", {"Ctrl+Alt+R"}, withFile,
     [](Shell& s) { s.model.revealOriginal(); }, "folder"},
    {"save", "File|", "Save Edits", {"Ctrl+S"}, [](const Shell& s) { return s.model.isDirty(); },
     [](Shell& s) { s.model.saveWork(); }, "save"},
    {"export", "File", "Export…", {"Ctrl+E"}, withIdleImage,
     [](Shell& s) { s.model.exportImage(); }, "upload"},
    {"share", "File", "Share…", {"Ctrl+Shift+E"}, withIdleImage,
     [](Shell& s) { s.model.shareImage(); }, "share"},
    {"removeLocation", "File", "Remove Location from All Images…", {}, withIdleImage,
     [](Shell& s) { s.model.exportAll(Baker::Metadata::stripLocation); }},
    {"closeImage", "File|", "Close Image", {"Ctrl+Shift+W"}, withImage,
     [](Shell& s) { s.model.removeImage(s.model.activeImageID); }, "x"},
    {"closeWindow", "File", "Close Window", {"Ctrl+W"}, always,
     [](Shell& s) { s.closeWindow(); }},
    {"quit", "File", "Quit", {"Ctrl+Q"}, always, [](Shell& s) { s.closeWindow(); }},

    {"undo", "Edit", "Undo", {"Ctrl+Z"},
     [](const Shell& s) { return s.model.history.value().canUndo(); },
     [](Shell& s) { s.model.undo(); }, "undo-2"},
    {"redo", "Edit", "Redo", {"Ctrl+Shift+Z"},
     [](const Shell& s) { return s.model.history.value().canRedo(); },
     [](Shell& s) { s.model.redo(); }, "redo-2"},
    // The second key for layouts where the first is hard to reach.
    {"compare", "Edit|", "Show Original", {"\\", "B"}, withImage,
     [](Shell& s) { s.model.comparing = !s.model.comparing; }, "eye",
     [](const Shell& s) { return s.model.comparing ? "Show Edited" : "Show Original"; },
     [](const Shell& s) { return s.model.comparing.value(); }},
    {"revert", "Edit", "Revert All Edits", {}, [](const Shell& s) { return s.model.hasEdits(); },
     [](Shell& s) { s.model.revertAllEdits(); }, "rotate-ccw"},
    {"settings", "Edit|", "Settings…", {"Ctrl+,"}, always,
     [](Shell& s) { s.openSettings(); }, "settings"},

    {"zoomIn", "View", "Zoom In", {"Ctrl++", "Ctrl+="}, withImage,
     [](Shell& s) { s.model.zoomIn(); }, "zoom-in"},
    {"zoomOut", "View", "Zoom Out", {"Ctrl+-"}, withImage,
     [](Shell& s) { s.model.zoomOut(); }, "zoom-out"},
    {"zoomToFit", "View", "Zoom to Fit", {"Ctrl+0"}, withImage,
     [](Shell& s) { s.model.zoom = 1; }, "maximize"},
    {"actualSize", "View", "Actual Size", {"Ctrl+1"}, withImage,
     [](Shell& s) { s.model.actualSizeTick = s.model.actualSizeTick + 1; }, "scan"},
    {"inspector", "View|", "Hide Inspector", {"Ctrl+Alt+I", "F9"}, always,
     [](Shell& s) { s.showInspector(!s.isInspectorShown()); }, "panel-right",
     [](const Shell& s) { return s.isInspectorShown() ? "Hide Inspector" : "Show Inspector"; },
     [](const Shell& s) { return s.isInspectorShown(); }},
    {"sidebar", "View", "Show Sidebar", {"Ctrl+Alt+S", "F8"}, always,
     [](Shell& s) { s.showSidebar(!s.isSidebarShown()); }, "panel-left",
     [](const Shell& s) { return s.isSidebarShown() ? "Hide Sidebar" : "Show Sidebar"; },
     [](const Shell& s) { return s.isSidebarShown(); }},
    {"fullScreen", "View|", "Full Screen", {"F11"}, always,
     [](Shell& s) { s.showFullScreen(!s.isFullScreen()); }, "",
     [](const Shell& s) { return s.isFullScreen() ? "Leave Full Screen" : "Full Screen"; }},

    {"makeItPop", "Tools", "Make it Pop", {"Ctrl+M", "Ctrl+Shift+M"}, withImage,
     [](Shell& s) { s.model.makeItPop(); }, "wand-sparkles"},
    {"crop", "Tools|", "Crop", {"Ctrl+Shift+C"}, withImage, switchCrop, "crop",
     [](const Shell& s) { return s.model.cropMode ? "Finish Cropping" : "Crop"; },
     [](const Shell& s) { return s.model.cropMode.value(); }},
    {"whiteBalance", "Tools", "White Balance", {"Ctrl+Shift+B"}, withImage, switchWhiteBalance,
     "pipette",
     [](const Shell& s) {
         return s.model.pickingWhite ? "Cancel White Balance" : "White Balance";
     },
     [](const Shell& s) { return s.model.pickingWhite.value(); }},
    {"heal", "Tools", "Heal Blemishes", {"Ctrl+Shift+H"}, withImage, switchHeal, "bandage",
     [](const Shell& s) { return s.model.healing ? "Finish Healing" : "Heal Blemishes"; },
     [](const Shell& s) { return s.model.healing.value(); }},
    {"relight", "Tools", "Relight", {"Ctrl+Shift+R"}, withImage, switchRelight, "sun",
     [](const Shell& s) { return s.model.relightMode ? "Finish Relighting" : "Relight"; },
     [](const Shell& s) { return s.model.relightMode.value(); }},
    {"histogram", "Tools|", "Histogram", {"Ctrl+Y"}, withImage, switchHistogram, "chart-area",
     nullptr, [](const Shell& s) { return s.model.histogramOn.value(); }},

    {"help", "Help", "Orvane Help", {"Ctrl+?", "F1"}, always, [](Shell& s) { s.openHelp(); },
     "info"},
    {"feedback", "Help", "Orvane Feedback…", {}, always,
     [](Shell& s) { s.desktop.openAddress(std::string(AppModel::feedbackURL)); }, "mail"},
};
// clang-format on

} // namespace

std::span<const Command> commandTable()
{
    return table;
}

QStringList keysOf(const char* id)
{
    const auto* row = std::find_if(std::begin(table), std::end(table), [&](const Command& each) {
        return std::string_view(each.id) == id;
    });
    QStringList texts;
    if (row != std::end(table)) {
        for (const char* key : row->keys)
            texts << QKeySequence(key).toString(QKeySequence::NativeText);
    }
    return texts;
}

} // namespace orvane
