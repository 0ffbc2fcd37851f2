#include "HistogramCounter.h"

#include "AppModel.h"
#include "Baker.h"
#include "Filters/CIFilter.h"
#include "Pipeline.h"

#include <algorithm>
#include <array>

namespace orvane {

namespace {

constexpr int bins = 256;
constexpr int longEdge = 512;

/// The tallest bin of all becomes 1; the channels keep their proportions to each other.
void scaleToPeak(Histogram& histogram)
{
    double peak = 0.0001;
    for (const auto* channel : {&histogram.r, &histogram.g, &histogram.b})
        peak = std::max(peak, *std::max_element(channel->begin(), channel->end()));
    for (auto* channel : {&histogram.r, &histogram.g, &histogram.b}) {
        for (double& bin : *channel)
            bin /= peak;
    }
}

} // namespace

Histogram countedHistogram(const CIImage& framed, const Adjustments& grade,
                           const CancellationToken* cancellation)
{
    const CIImage graded = Pipeline::render(AppModel::resizedCI(framed, longEdge), grade);
    const CIImage counted = CIFilter::areaHistogram(graded, graded.extent(), bins);
    std::array<float, size_t(bins) * 4> rgba{};
    // The reduced copy is kept, so that the next count of this picture starts from it.
    const DrawOptions options{.cancellation = cancellation, .keepIntermediates = true};
    if (counted.isEmpty()
        || !Baker::context().render(counted, rgba.data(), sizeof rgba, {0, 0, bins, 1},
                                    PixelFormat::RGBAFloat, options))
        return {};
    Histogram result;
    for (size_t i = 0; i < rgba.size(); i += 4) {
        result.r.push_back(double(rgba[i]));
        result.g.push_back(double(rgba[i + 1]));
        result.b.push_back(double(rgba[i + 2]));
    }
    scaleToPeak(result);
    return result;
}

HistogramCounter::HistogramCounter(Done done)
    : m_done(std::move(done))
{
}

void HistogramCounter::refresh(const std::optional<CIImage>& framed, const Adjustments& grade)
{
    m_waiting.reset();
    if (!framed) {
        m_job.cancel();
        m_done({});
    } else if (m_job.isRunning()) {
        m_waiting = {*framed, grade};
    } else {
        start({*framed, grade});
    }
}

void HistogramCounter::start(const Request& request)
{
    m_job.start(
        [request](const CancellationToken& token) {
            return countedHistogram(request.framed, request.grade, &token);
        },
        [this](const Histogram* counted) {
            if (const auto next = std::exchange(m_waiting, {}))
                start(*next);
            m_done(counted ? *counted : Histogram());
        });
}

} // namespace orvane
