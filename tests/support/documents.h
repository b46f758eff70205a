// The documents that the sweeps go over.
#ifndef MIFREADER_TESTS_DOCUMENTS_H
#define MIFREADER_TESTS_DOCUMENTS_H

#include <algorithm>
#include <filesystem>
#include <vector>

#include <gtest/gtest.h>

#include "support/test_host.h"

namespace miftest
{

// All documents of the given folder, in the order of their names.
inline std::vector<std::filesystem::path> documentsIn(const std::filesystem::path &folder)
{
    std::vector<std::filesystem::path> paths;
    for (const auto &entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() == ".mif") {
            paths.push_back(entry.path());
        }
    }
    std::sort(paths.begin(), paths.end());
    EXPECT_FALSE(paths.empty()) << folder;
    return paths;
}

inline std::vector<std::filesystem::path> testDocuments()
{
    return documentsIn(MIFREADER_TEST_DOCUMENTS);
}

// Those and the examples.
inline std::vector<std::filesystem::path> allDocuments()
{
    std::vector<std::filesystem::path> paths = testDocuments();
    for (const std::filesystem::path &path : documentsIn(MIFREADER_EXAMPLES)) {
        paths.push_back(path);
    }
    return paths;
}

inline const std::filesystem::path extendedFolder = MIFREADER_TEST_DOCUMENTS "/extended";

// Those that show what only the extended stream tells.
inline std::vector<std::filesystem::path> extendedDocuments()
{
    return documentsIn(extendedFolder);
}

inline std::vector<std::filesystem::path> documentsOfBothStreams()
{
    std::vector<std::filesystem::path> paths = allDocuments();
    for (const std::filesystem::path &path : extendedDocuments()) {
        paths.push_back(path);
    }
    return paths;
}

// Tests of either stream: the parameter says whether it is the extended one.
class OfEachStream : public testing::TestWithParam<bool>
{
protected:
    bool isExtended() const
    {
        return GetParam();
    }

    // The conditions for this stream.
    Conditions with(Conditions conditions) const
    {
        conditions.isExtended = isExtended();
        return conditions;
    }
};

} // namespace miftest

#endif
