#pragma once

#include "Digest.h"
#include "PlacedBitmap.h"

#include <cstddef>
#include <functional>
#include <list>
#include <mutex>

namespace orvane {

/// The drawings made last, each under a digest of all that it was made from. An edit's recipe is
/// built anew on every change, and a drawing is known to the engine by its bitmap: handing out the
/// same bitmap again saves the drawing and lets the engine find what it has made with it before.
/// Invisible in results. Safe to use from several threads.
class RecentDrawings {
public:
    /// The bitmaps held never exceed byteBudget; one of more than half of it is not held, so that a
    /// full-size export does not push out what the screen needs.
    explicit RecentDrawings(size_t byteBudget);

    /// What the key stands for: an earlier drawing, or else what draw() gives.
    PlacedBitmap drawing(const Digest& key, const std::function<PlacedBitmap()>& draw);

private:
    struct Entry {
        Digest key;
        PlacedBitmap drawing;
    };
    const PlacedBitmap* found(const Digest& key);

    size_t m_byteBudget;
    std::mutex m_mutex;
    std::list<Entry> m_entries; // the one used last in front
    size_t m_bytes = 0;
};

} // namespace orvane
