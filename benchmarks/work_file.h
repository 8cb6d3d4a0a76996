// Where the benchmarks put their files.
#pragma once

#include <filesystem>
#include <string>

#include "common/platform/module.h"

namespace benchmarks {

// A path in the folder "benchmark_files" beside the program, where no file of this name is left.
inline std::wstring fresh_work_file(const std::wstring& name) {
    const auto folder = std::filesystem::path(platform::program_path()).parent_path() / "benchmark_files";
    std::filesystem::create_directories(folder);
    std::filesystem::remove(folder / name);
    return (folder / name).wstring();
}

}  // namespace benchmarks
