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
    /// Memory for what a draw makes: of previews from those before it, for those after it; of
    /// others from the system, and back to it.
    const std::shared_ptr<SpareMemory>& memory(bool preview) const
    {
        return preview ? m_spares : m_passing;
    }

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
    std::shared_ptr<SpareMemory> m_passing = std::make_shared<SpareMemory>(0);
    std::list<Entry> m_entries; ///< most recently used first
    size_t m_bytes = 0;
    size_t m_budget;
};

} // namespace orvane
