#include "common/logging/log_archives.h"

#include <zlib.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <cwchar>
#include <map>
#include <string_view>
#include <vector>

#include "common/encoding/convert.h"
#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/platform/file_trust.h"
#include "common/platform/owned.h"
#include "common/platform/path.h"

namespace logging {
namespace {

constexpr unsigned portion = 64 * 1024;
constexpr const char* unopened = "Failed to open GZ archive [%1].";
constexpr const char* unfinished = "Cannot close GZ archive [%1].";

struct gzip_traits_t {
    using type = gzFile;
    static type invalid() noexcept { return nullptr; }
    static void close(type value) noexcept { gzclose(value); }
};
using unique_gzip = platform::unique_t<gzip_traits_t>;

[[noreturn]] void raise_zlib_error(int code, const char* sentence, const std::wstring& path) {
    exc::runtime_exc_t failure;
    if (code == Z_ERRNO) failure.add_text(std::strerror(errno));
    failure.add_text(exc::format_message(sentence, encoding::wide_to_utf8(path)));
    failure.add_trace_text(exc::format_message("Error code: %1", std::to_string(code)));
    throw failure;
}

platform::unique_file open_file(const std::wstring& path, DWORD access, DWORD sharing, DWORD creation, DWORD flags,
                                const char* sentence) {
    platform::unique_file file(CreateFileW(platform::system_path(path).c_str(), access, sharing, nullptr, creation,
                                           FILE_ATTRIBUTE_NORMAL | flags, nullptr));
    if (!file) exc::raise_path_error(GetLastError(), sentence, path);
    return file;
}

// zlib opens the file by its name. Keep a handle open meanwhile that does not share deletion: the name then belongs to
// the same file.
unique_gzip open_gzip(const std::wstring& path, const char* mode) {
    unique_gzip archive(gzopen_w(platform::system_path(path).c_str(), mode));
    if (!archive) raise_zlib_error(Z_ERRNO, unopened, path);
    gzbuffer(archive.get(), portion);
    return archive;
}

class log_reader_t {
public:
    log_reader_t(const std::wstring& path, std::uint64_t size)
        : path_(path),
          file_(open_file(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING,
                          FILE_FLAG_SEQUENTIAL_SCAN, unreadable)),
          left_(size),
          data_(portion) {}

    // Returns the next bytes, no more than a portion; empty at the end.
    std::string_view next() {
        if (left_ == 0) return {};
        DWORD count = 0;
        const auto wanted = static_cast<DWORD>(std::min<std::uint64_t>(left_, portion));
        if (!ReadFile(file_.get(), data_.data(), wanted, &count, nullptr))
            exc::raise_path_error(GetLastError(), unreadable, path_);
        if (count == 0) exc::raise_path_error(ERROR_HANDLE_EOF, unreadable, path_);
        left_ -= count;
        return {data_.data(), count};
    }

private:
    static constexpr const char* unreadable = "Cannot read log file [%1].";

    const std::wstring& path_;
    platform::unique_file file_;
    std::uint64_t left_;
    std::vector<char> data_;
};

// Compresses the first size bytes of the source into a new file and flushes that to the disk. On failure a part of the
// target may be left.
void gzip_file(const std::wstring& source, const std::wstring& target, std::uint64_t size) {
    const platform::unique_file created =
        open_file(target, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, CREATE_NEW, 0, unopened);
    unique_gzip archive = open_gzip(target, "wb");
    log_reader_t log(source, size);
    for (std::string_view data = log.next(); !data.empty(); data = log.next()) {
        const auto count = static_cast<unsigned>(data.size());
        if (gzwrite(archive.get(), data.data(), count) == static_cast<int>(count)) continue;
        int code = Z_OK;
        gzerror(archive.get(), &code);
        raise_zlib_error(code, "Cannot add data to the GZ archive [%1].", target);
    }
    if (const int code = gzclose(archive.release()); code != Z_OK) raise_zlib_error(code, unfinished, target);
    if (!FlushFileBuffers(created.get())) exc::raise_path_error(GetLastError(), unfinished, target);
}

// Whether the gzip file unpacks to exactly the first size bytes of the source.
bool unpacks_to(const std::wstring& archive, const std::wstring& source, std::uint64_t size) {
    const platform::unique_file held =
        open_file(archive, GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING, FILE_FLAG_OPEN_REPARSE_POINT, unopened);
    platform::require_trusted_file(held.get(), archive);
    unique_gzip packed = open_gzip(archive, "rb");
    if (gzdirect(packed.get())) return false;  // not packed at all
    log_reader_t log(source, size);
    std::vector<char> unpacked(portion);
    for (std::string_view data = log.next(); !data.empty(); data = log.next()) {
        const int count = gzread(packed.get(), unpacked.data(), static_cast<unsigned>(data.size()));
        if (count < 0 || std::string_view(unpacked.data(), static_cast<std::size_t>(count)) != data) return false;
    }
    // Reading on verifies the checksum.
    return gzread(packed.get(), unpacked.data(), 1) == 0 && gzclose(packed.release()) == Z_OK;
}

constexpr const wchar_t* archive_extension = L".log.gz";

std::wstring without_extension(const std::wstring& log_path) { return log_path.substr(0, log_path.rfind(L".log")); }

// The archive that has been aged this many times.
std::wstring archive_path(const std::wstring& log_path, std::uint32_t age) {
    const std::wstring number = age == 0 ? std::wstring() : L"." + std::to_wstring(age);
    return without_extension(log_path) + number + archive_extension;
}

bool delete_file(const std::wstring& path) { return DeleteFileW(platform::system_path(path).c_str()) != FALSE; }

// Fails when the target exists.
bool move_file(const std::wstring& from, const std::wstring& to) {
    return MoveFileExW(platform::system_path(from).c_str(), platform::system_path(to).c_str(), 0) != FALSE;
}

class ageing_t {
public:
    ageing_t(const std::wstring& log_path, std::uint32_t limit) : log_path_(log_path), limit_(limit) {}

    // Returns the place for the newest archive.
    new_archive_t run() const {
        found_t found = find_names();
        std::vector<std::uint32_t> places;
        std::string obstacle;
        for (std::uint32_t age = 0; places.size() < std::max(limit_, 1U); ++age) {
            const auto entry = found.find(age);
            if (entry == found.end() || entry->second.empty()) {
                places.push_back(age);
            } else if (obstacle.empty()) {
                obstacle = entry->second;
            }
        }
        std::erase_if(found, [](const auto& entry) { return !entry.second.empty(); });
        make_room(found, places);
        return {archive_path(log_path_, places.front()), obstacle};
    }

private:
    // By age, why what has the name of an archive is none; an empty text for archives.
    using found_t = std::map<std::uint32_t, std::string>;

    found_t find_names() const {
        const std::size_t folder_size = log_path_.find_last_of(L"\\/") + 1;
        const std::size_t stem_size = without_extension(log_path_).size() - folder_size;
        found_t found;
        WIN32_FIND_DATAW entry{};
        const std::wstring pattern = platform::system_path(without_extension(log_path_) + L".*");
        const platform::unique_find search(FindFirstFileW(pattern.c_str(), &entry));
        if (!search) raise_unaged(0, GetLastError());  // at least the log itself is there
        do {
            const std::wstring name = entry.cFileName;
            if (name.size() <= stem_size) continue;
            const auto age = static_cast<std::uint32_t>(std::wcstoul(name.c_str() + stem_size + 1, nullptr, 10));
            const std::wstring path = archive_path(log_path_, age);
            if (platform::same_path(name, path.substr(folder_size))) found.emplace(age, platform::obstacle_at(path));
        } while (FindNextFileW(search.get(), &entry));
        if (const DWORD code = GetLastError(); code != ERROR_NO_MORE_FILES) raise_unaged(0, code);
        return found;
    }

    // The archives before the first free place move up. When there is none, the oldest archive goes.
    void make_room(const found_t& archives, const std::vector<std::uint32_t>& places) const {
        const auto free = std::ranges::find_if_not(places, [&](auto age) { return archives.contains(age); });
        const bool full = free == places.end();
        auto surplus = full ? archives.find(places.back()) : archives.upper_bound(places.back());
        for (; surplus != archives.end(); ++surplus)
            if (!delete_file(archive_path(log_path_, surplus->first))) raise_unaged(surplus->first, GetLastError());
        for (auto to = full ? free - 1 : free; to != places.begin(); --to)
            if (!move_file(archive_path(log_path_, to[-1]), archive_path(log_path_, *to))) {
                raise_unaged(to[-1], GetLastError());
            }
    }

    [[noreturn]] void raise_unaged(std::uint32_t age, DWORD code) const {
        exc::raise_win_error(code,
                             exc::format_message("Cannot age file. File path: [%1]. Extension: [%2]. Ages limit: [%3].",
                                                 {encoding::wide_to_utf8(archive_path(log_path_, age)),
                                                  encoding::wide_to_utf8(archive_extension), std::to_string(limit_)}));
    }

    const std::wstring& log_path_;
    std::uint32_t limit_;
};

constexpr std::uint32_t max_obstacles = 1000;

std::wstring newest_archive(const std::wstring& log_path) {
    std::uint32_t age = 0;
    while (age < max_obstacles && !platform::obstacle_at(archive_path(log_path, age)).empty()) ++age;
    return archive_path(log_path, age);
}

// Returns the first of the temporary names under which there is nothing, or nothing any more.
std::wstring free_temporary_path(const std::wstring& log_path) {
    for (std::uint32_t number = 0;; ++number) {
        std::wstring path = archive_path(log_path, number) + L".tmp";
        if (number == max_obstacles || delete_file(path) || GetLastError() == ERROR_FILE_NOT_FOUND) return path;
    }
}

}  // namespace

new_archive_t archive_log(const std::wstring& log_path, std::uint64_t size, std::uint32_t limit) {
    const ageing_t ageing(log_path, limit);
    if (limit == 0) return ageing.run();
    const std::wstring temporary = free_temporary_path(log_path);
    try {
        gzip_file(log_path, temporary, size);
        new_archive_t archive = ageing.run();
        if (!move_file(temporary, archive.path))
            exc::raise_path_error(GetLastError(), "Cannot rename archive [%1].", temporary);
        return archive;
    } catch (...) {
        delete_file(temporary);
        throw;
    }
}

bool is_archived(const std::wstring& log_path, std::uint64_t size) noexcept try {
    return size > 0 && unpacks_to(newest_archive(log_path), log_path, size);
} catch (const std::exception&) {
    return false;
}

}  // namespace logging
