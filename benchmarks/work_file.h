// The folder for the benchmarks' files.
#pragma once

#include <filesystem>
#include <string>

#include "common/platform/module.h"

namespace benchmarks {

// Returns a path in the folder "benchmark_files" beside the program. Deletes an earlier file of this name.
inline std::wstring fresh_work_file(const std::wstring& name) {
    const auto folder = std::filesystem::path(platform::program_path()).parent_path() / "benchmark_files";
    std::filesystem::create_directories(folder);
    std::filesystem::remove(folder / name);
    return (folder / name).wstring();
}

}  // namespace benchmarks
