#include "CaptionFrame.h"

#include "Bitmap.h"
#include "HexColor.h"
#include "TextBlock.h"

#include <algorithm>

namespace orvane {

namespace {

/// So many captions are measured once each while nothing changes.
constexpr size_t keptMeasures = 64;

/// As the render does it: TextLayers.
TextStyle styleOf(const EditState::TextLayer& layer, const CGSize& frame)
{
    const double longEdge = std::max(frame.width, frame.height);
    return {layer.font, std::max(layer.size * longEdge, 1.0), frame.width * 0.96, frame.height};
}

} // namespace

CGRect CaptionFrame::rect(const EditState::TextLayer& layer, const CGSize& frame)
{
    const Measured wanted{layer.text, layer.font, layer.size, frame};
    auto found = std::find_if(m_measured.begin(), m_measured.end(),
                              [&](const auto& each) { return each.first == wanted; });
    if (found == m_measured.end()) {
        if (m_measured.size() == keptMeasures)
            m_measured.erase(m_measured.begin());
        m_measured.emplace_back(wanted, TextBlock(layer.text, styleOf(layer, frame)).size());
        found = m_measured.end() - 1;
    }
    const double width = found->second.width / frame.width;
    const double height = found->second.height / frame.height;
    return {layer.x - width / 2, layer.y - height / 2, width, height};
}

CaptionWords CaptionFrame::words(const EditState::TextLayer& layer, const CGSize& frame)
{
    const TextBlock block(layer.text, styleOf(layer, frame));
    const CGPoint centre{frame.width / 2, frame.height / 2};
    const PlacedBitmap drawn =
        block.drawn(centre, int(frame.width), int(frame.height), colorFromHex(layer.colorHex), {});
    if (!drawn.bitmap)
        return {};
    const Bitmap& bitmap = *drawn.bitmap;
    const QImage shared(bitmap.row(0), bitmap.width(), bitmap.height(),
                        qsizetype(bitmap.rowBytes()), QImage::Format_RGBA8888_Premultiplied);
    return {
        shared.convertToFormat(QImage::Format_ARGB32_Premultiplied),
        {centre.x - drawn.x - bitmap.width() / 2.0, centre.y - drawn.y - bitmap.height() / 2.0}};
}

} // namespace orvane
