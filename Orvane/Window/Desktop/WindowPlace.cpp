#include "WindowPlace.h"

#include <QStringList>

#include <algorithm>
#include <array>

namespace orvane {

namespace {

constexpr const char* maximized = "maximized";
/// Beyond what any arrangement of screens spans; sums of these stay far from overflow.
constexpr int farthest = 1'000'000;

/// `from` and `length` held between `low` and `high`.
void hold(int& from, int& length, int low, int high)
{
    length = std::min(length, high - low);
    from = std::clamp(from, low, high - length);
}

int commonArea(const QRect& a, const QRect& b)
{
    const QRect common = a & b;
    return common.width() * common.height();
}

} // namespace

QString textOfPlace(const WindowPlace& place)
{
    QStringList parts;
    for (const int number :
         {place.geometry.x(), place.geometry.y(), place.geometry.width(), place.geometry.height(),
          place.frame.left(), place.frame.top(), place.frame.right(), place.frame.bottom()})
        parts << QString::number(number);
    if (place.isMaximized)
        parts << maximized;
    return parts.join(' ');
}

std::optional<WindowPlace> placeOfText(const QString& text)
{
    QStringList parts = text.split(' ');
    WindowPlace place;
    place.isMaximized = parts.constLast() == maximized;
    if (place.isMaximized)
        parts.removeLast();
    std::array<int, 8> numbers{};
    if (parts.size() != qsizetype(numbers.size()))
        return std::nullopt;
    for (size_t i = 0; i < numbers.size(); ++i) {
        bool isNumber = false;
        numbers[i] = parts[qsizetype(i)].toInt(&isNumber);
        // All but the position are sizes.
        if (!isNumber || numbers[i] > farthest || numbers[i] < (i < 2 ? -farthest : 0))
            return std::nullopt;
    }
    place.geometry = QRect(numbers[0], numbers[1], numbers[2], numbers[3]);
    place.frame = QMargins(numbers[4], numbers[5], numbers[6], numbers[7]);
    return place.geometry.isEmpty() ? std::nullopt : std::optional(place);
}

QRect inSight(const WindowPlace& place, const QList<QRect>& screens)
{
    if (screens.isEmpty())
        return place.geometry;
    const QRect whole = place.geometry.marginsAdded(place.frame);
    const QRect screen =
        *std::max_element(screens.begin(), screens.end(), [&](const QRect& a, const QRect& b) {
            return commonArea(a, whole) < commonArea(b, whole);
        });
    int x = whole.x();
    int y = whole.y();
    int width = whole.width();
    int height = whole.height();
    hold(x, width, screen.left(), screen.left() + screen.width());
    hold(y, height, screen.top(), screen.top() + screen.height());
    return QRect(x, y, width, height).marginsRemoved(place.frame);
}

} // namespace orvane
