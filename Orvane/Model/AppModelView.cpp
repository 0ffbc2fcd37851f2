// How the picture is looked at: zoom and histogram.

#include "AppModel.h"

#include "EditRendering.h"

#include <algorithm>

namespace orvane {

namespace {

constexpr double zoomStep = 1.25;
constexpr double largestZoom = 16;

} // namespace

void AppModel::zoomIn()
{
    zoom = std::min(zoom * zoomStep, largestZoom);
}

void AppModel::zoomOut()
{
    zoom = std::max(zoom / zoomStep, 1.0);
}

void AppModel::refreshHistogram()
{
    if (!histogramOn && !m_isHistogramWanted)
        return;
    m_histogramCounter.refresh(geometrySource(), adjustments(editState(), ciLUT.value()));
}

void AppModel::setHistogramWanted(bool wanted)
{
    const bool isNew = wanted && !m_isHistogramWanted;
    m_isHistogramWanted = wanted;
    if (isNew)
        refreshHistogram();
}

} // namespace orvane
