#pragma once

#include "AtomicFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include <stdlib.h>

namespace orvane {

/// Tests with a folder of their own, which goes with them.
class TemporaryFolder : public testing::Test {
protected:
    TemporaryFolder()
    {
        std::string pattern = testing::TempDir() + "orvane-test-XXXXXX";
        folder = ::mkdtemp(pattern.data());
    }
    ~TemporaryFolder() override
    {
        std::error_code none;
        std::filesystem::remove_all(folder, none);
    }

    /// The bytes of a file of the folder, or why they cannot be read.
    std::string content(const std::string& name) const
    {
        const auto bytes = readTextFile(folder / name, 100'000'000);
        return bytes ? *bytes : bytes.error().message;
    }
    /// The names in the folder, or in one within it, sorted and joined with spaces.
    std::string names(const std::filesystem::path& within = {}) const
    {
        std::vector<std::string> all;
        for (const auto& entry : std::filesystem::directory_iterator(folder / within))
            all.push_back(entry.path().filename().string());
        std::sort(all.begin(), all.end());
        std::string text;
        for (const std::string& name : all)
            text += (text.empty() ? "" : " ") + name;
        return text;
    }
    void put(const std::string& name, std::string_view text) const
    {
        const Result<void> written = writeFile(folder / name, text);
        ASSERT_TRUE(written) << written.error().message;
    }

    std::filesystem::path folder;
};

} // namespace orvane
