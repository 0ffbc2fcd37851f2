#pragma once

#include "Digest.h"
#include "StoredImage.h"

#include <list>
#include <memory>
#include <mutex>

namespace orvane {

/// Drawn intermediates of earlier draws, least recently used first to go. Safe to use from several
/// threads. Invisible in results: an image is the same whether it was found here or drawn again.
class IntermediateCache {
public:
    explicit IntermediateCache(size_t budgetBytes)
        : m_budget(budgetBytes)
    {
    }

    /// What was kept under the key, if it covers the region.
    std::shared_ptr<StoredImage> find(const Digest& key, const PixelRect& region);
    void keep(const Digest& key, std::shared_ptr<StoredImage> image);

private:
    struct Entry {
        Digest key;
        std::shared_ptr<StoredImage> image;
    };

    std::mutex m_mutex;
    std::list<Entry> m_entries; ///< most recently used first
    size_t m_bytes = 0;
    size_t m_budget;
};

} // namespace orvane
