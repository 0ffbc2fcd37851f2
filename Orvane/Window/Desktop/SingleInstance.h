#pragma once

#include "InstanceChannel.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace orvane {

/// Keeps one program running for each user and key, so that two never write the same stores. Made
/// at the very start, before the toolkit:
///
///     SingleInstance instance(dataFolder);
///     if (!instance.isFirst() && instance.handOver(files))
///         return 0;
///     ...                        // the application object
///     instance.listen(onFiles);
///
/// The first holds a lock that the system takes back from a program that dies, so what a crash
/// leaves behind is in nobody's way.
class SingleInstance {
public:
    /// The key is the folder of the stores.
    explicit SingleInstance(const std::filesystem::path& key);
    ~SingleInstance();
    SingleInstance(const SingleInstance&) = delete;
    SingleInstance& operator=(const SingleInstance&) = delete;

    /// Also where no lock can be had at all: then each start stands alone.
    bool isFirst() const { return m_isFirst; }

    /// Hands the files, byte for byte and made absolute, to the first one; no files ask it only to
    /// come forward. False when it gave no answer within two seconds: then it does not take them
    /// any more, and whoever asked opens them itself.
    bool handOver(const std::vector<std::filesystem::path>& files) const;

    using OnFiles = std::function<void(const std::vector<std::filesystem::path>&)>;
    /// The first one's part, with an event loop: called for each start after it, also with no
    /// files. Does nothing in any other.
    void listen(OnFiles onFiles);

private:
    std::filesystem::path m_socket; ///< empty when there is no safe place for one
    int m_lock = -1;
    bool m_isFirst = true;
    std::unique_ptr<InstanceListener> m_listener;
};

} // namespace orvane
