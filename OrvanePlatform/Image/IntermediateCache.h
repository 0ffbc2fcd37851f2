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
    /// Of the images with the same role, the same step of draws that differ in their settings, only
    /// the last few stay: what a slider has left behind is not asked for again.
    void keep(const Digest& key, const Digest& role, std::shared_ptr<StoredImage> image);
    /// Memory of images that went, for new ones.
    const std::shared_ptr<SpareMemory>& spares() const { return m_spares; }

private:
    struct Entry {
        Digest key;
        Digest role;
        std::shared_ptr<StoredImage> image;
    };

    template <class Condition> void drop(Condition&& condition);

    static constexpr size_t spareBytes = size_t(192) << 20;

    std::mutex m_mutex;
    std::shared_ptr<SpareMemory> m_spares = std::make_shared<SpareMemory>(spareBytes);
    std::list<Entry> m_entries; ///< most recently used first
    size_t m_bytes = 0;
    size_t m_budget;
};

} // namespace orvane
