#pragma once

namespace orvane {

/// How large drafts may be so that a picture follows a drag some twenty times a second: learnt from
/// how long the last ones took, whatever the machine and the edit. The size stays as it is while
/// the time is about right, since what is kept of one draft serves only others of its size.
class DraftPace {
public:
    /// The scale of the next draft, at most 1: in sixteenths, since the reduced source of one then
    /// often serves another. No more than is seen on screen, and not less than a longest edge of
    /// 640. Both edges in pixels.
    double scale(double pictureEdge, double screenEdge) const;
    /// A draft of that scale took so long.
    void drew(double scale, double milliseconds);

private:
    double m_inTime = 0.5; ///< the scale that time allows
    double m_last = 0;
};

} // namespace orvane
