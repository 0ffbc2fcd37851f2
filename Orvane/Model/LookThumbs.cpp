#include "LookThumbs.h"

#include "Baker.h"
#include "Pipeline.h"

namespace orvane {

namespace {

/// Long edge of what is measured at most; the copy is smaller already.
constexpr double sampleEdge = 256;

std::vector<Looks::Look> fittedTo(const CIImage& copy)
{
    return Looks::all(Looks::analyze(copy, sampleEdge));
}

} // namespace

std::vector<Looks::Look> LookThumbs::fitted(const CIImage& framed)
{
    return fittedTo(reducedCopy(framed, edge));
}

LookThumbs LookThumbs::drawn(const CIImage& framed, const CancellationToken& token)
{
    // Drawn once: eleven readings of a large source would be ten too many.
    const CIImage copy = reducedCopy(framed, edge);
    if (token.isCancelled())
        return {};
    LookThumbs thumbs{fittedTo(copy), {}};
    for (const Looks::Look& look : thumbs.recipes) {
        if (token.isCancelled())
            break;
        const CIImage graded = Pipeline::render(copy, Adjustments(look.adjustments));
        if (auto image = Baker::cgImage(graded, {.cancellation = &token}))
            thumbs.previews[look.id] = std::make_shared<const CGImage>(std::move(*image));
    }
    return thumbs;
}

} // namespace orvane
