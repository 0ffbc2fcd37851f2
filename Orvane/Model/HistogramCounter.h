#pragma once

#include "Adjustments.h"
#include "AppModelFields.h"
#include "LatestJob.h"

#include <functional>

namespace orvane {

/// How often each level of the graded picture occurs, in 256 bins of linear light a channel.
/// Counted on a copy of at most 512 pixels; the tallest bin of any channel is 1. Empty when there
/// is nothing to count or the draw was cancelled. From any thread.
Histogram countedHistogram(const CIImage& framed, const Adjustments& grade,
                           const CancellationToken* cancellation = nullptr);

/// Counts in the background. While one count runs, of further requests only the newest is kept, so
/// that the histogram follows a drag and never lags behind its end.
class HistogramCounter {
public:
    using Done = std::function<void(const Histogram&)>;
    /// `done` is told on the thread that this lives on.
    explicit HistogramCounter(Done done);

    /// Without a picture the histogram is empty at once.
    void refresh(const std::optional<CIImage>& framed, const Adjustments& grade);
    bool isCounting() const { return m_job.isRunning(); }

private:
    struct Request {
        CIImage framed;
        Adjustments grade;
    };
    void start(const Request& request);

    Done m_done;
    std::optional<Request> m_waiting;
    LatestJob m_job;
};

} // namespace orvane
