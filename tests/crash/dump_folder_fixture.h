// An empty folder of the test's own, with files of a chosen age.
#pragma once

#include <fstream>
#include <set>
#include <string>

#include <boost/filesystem.hpp>
#include <gmock/gmock.h>

#include "common/exc/exceptions.h"
#include "common/platform/owned.h"

class DumpFolder : public testing::Test {
protected:
    DumpFolder() : folder(boost::filesystem::current_path() / boost::filesystem::unique_path("dumps-%%%%%%%%")) {
        boost::filesystem::create_directories(folder);
    }
    ~DumpFolder() override { boost::filesystem::remove_all(folder); }

    void create(const std::wstring& name, int age_in_hours) const {
        std::ofstream((folder / name).c_str()) << "x";
        boost::filesystem::last_write_time(folder / name, 1'700'000'000 - age_in_hours * 3600);
    }

    // As another program holds a file that it reads.
    platform::unique_file hold(const std::wstring& name, DWORD also_shared = 0) const {
        return platform::unique_file(CreateFileW((folder / name).c_str(), GENERIC_READ, FILE_SHARE_READ | also_shared,
                                                 nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    }

    std::set<std::wstring> names() const {
        std::set<std::wstring> result;
        for (const auto& entry : boost::filesystem::directory_iterator(folder))
            result.insert(entry.path().filename().wstring());
        return result;
    }

    boost::filesystem::path folder;
};

// For an action.
template <class Matcher>
auto Fails(const Matcher& message) {
    return testing::ThrowsMessage<exc::exc_base_t>(message);
}
