#include "common/logging/log_archives.h"

#include <algorithm>
#include <optional>
#include <set>

#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/logging/gzip_file.h"
#include "common/platform/owned.h"
#include "common/platform/path.h"
#include "common/text/convert.h"

namespace logging {
namespace {

constexpr const wchar_t* log_extension = L".log";

std::wstring without_extension(const std::wstring& log_path) {
    return log_path.ends_with(log_extension) ? log_path.substr(0, log_path.size() - 4) : log_path;
}

// The archive that has been aged so many times.
std::wstring archive_path(const std::wstring& log_path, std::uint32_t age) {
    const std::wstring number = age == 0 ? std::wstring() : L"." + std::to_wstring(age);
    return without_extension(log_path) + number + archive_extension;
}

// The age in a name of the form "Name.log.gz" or "Name.12.log.gz", where stem is "Name".
std::optional<std::uint32_t> age_of(std::wstring_view name, std::wstring_view stem) {
    const std::wstring_view extension = archive_extension;
    const auto same = [](std::wstring_view a, std::wstring_view b) {
        return CompareStringOrdinal(a.data(), static_cast<int>(a.size()), b.data(), static_cast<int>(b.size()), TRUE) ==
               CSTR_EQUAL;
    };
    if (name.size() < stem.size() + extension.size() || !same(name.substr(0, stem.size()), stem) ||
        !same(name.substr(name.size() - extension.size()), extension)) {
        return std::nullopt;
    }
    const std::wstring_view number = name.substr(stem.size(), name.size() - stem.size() - extension.size());
    if (number.empty()) return 0;
    const std::wstring_view digits = number.substr(1);
    const bool plain = number[0] == L'.' && !digits.empty() && digits.size() <= 9 && digits[0] != L'0' &&
                       digits.find_first_not_of(L"0123456789") == std::wstring_view::npos;
    return plain ? std::optional(static_cast<std::uint32_t>(std::stoul(std::wstring(digits)))) : std::nullopt;
}

class ageing_t {
public:
    ageing_t(const std::wstring& log_path, std::uint32_t limit) : log_path_(log_path), limit_(limit) {}

    void run() const {
        std::set<std::uint32_t> ages = existing_ages();
        for (auto age = ages.lower_bound(limit_); age != ages.end(); ++age) remove(*age);
        if (limit_ == 0) return;
        std::uint32_t free = 0;
        while (ages.contains(free)) ++free;
        for (std::uint32_t age = std::min(free, limit_ - 1); age > 0; --age) move(age - 1, age);
    }

private:
    std::set<std::uint32_t> existing_ages() const {
        const std::wstring stem = without_extension(log_path_);
        const std::wstring stem_name = stem.substr(stem.find_last_of(L"\\/") + 1);
        std::set<std::uint32_t> ages;
        WIN32_FIND_DATAW found{};
        const platform::unique_find search(FindFirstFileW(platform::system_path(stem + L".*").c_str(), &found));
        if (!search) fail(0, GetLastError());  // at least the log itself is there
        do {
            const std::optional<std::uint32_t> age = age_of(found.cFileName, stem_name);
            if (!age) continue;
            // A directory would let itself be renamed like an archive.
            if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) fail(*age, ERROR_ALREADY_EXISTS);
            ages.insert(*age);
        } while (FindNextFileW(search.get(), &found));
        if (const DWORD code = GetLastError(); code != ERROR_NO_MORE_FILES) fail(0, code);
        return ages;
    }

    void remove(std::uint32_t age) const {
        if (!DeleteFileW(platform::system_path(archive_path(log_path_, age)).c_str())) fail(age, GetLastError());
    }

    void move(std::uint32_t age, std::uint32_t older) const {
        const std::wstring from = platform::system_path(archive_path(log_path_, age));
        const std::wstring to = platform::system_path(archive_path(log_path_, older));
        if (!MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING)) fail(age, GetLastError());
    }

    [[noreturn]] void fail(std::uint32_t age, DWORD code) const {
        exc::raise_win_error(code,
                             exc::format_message("Cannot age file. File path: [%1]. Extension: [%2]. Ages limit: [%3].",
                                                 {text::wide_to_utf8(archive_path(log_path_, age)),
                                                  text::wide_to_utf8(archive_extension), std::to_string(limit_)}));
    }

    const std::wstring& log_path_;
    std::uint32_t limit_;
};

// Removed when it was not renamed, so that no half of an archive stays.
class temporary_archive_t {
public:
    explicit temporary_archive_t(const std::wstring& archive) : archive_(archive), path_(archive + L".tmp") {
        DeleteFileW(platform::system_path(path_).c_str());
    }
    ~temporary_archive_t() { DeleteFileW(platform::system_path(path_).c_str()); }
    temporary_archive_t(const temporary_archive_t&) = delete;
    temporary_archive_t& operator=(const temporary_archive_t&) = delete;

    const std::wstring& path() const { return path_; }

    void publish() const {
        const std::wstring from = platform::system_path(path_);
        if (MoveFileExW(from.c_str(), platform::system_path(archive_).c_str(), MOVEFILE_REPLACE_EXISTING)) return;
        const DWORD code = GetLastError();
        exc::raise_win_error(code, exc::format_message("Cannot rename archive [%1].", text::wide_to_utf8(path_)));
    }

private:
    std::wstring archive_;
    std::wstring path_;
};

}  // namespace

void age_archives(const std::wstring& log_path, std::uint32_t limit) { ageing_t(log_path, limit).run(); }

void archive_log(const std::wstring& log_path, std::uint64_t size, std::uint32_t limit) {
    if (limit == 0) return age_archives(log_path, limit);
    const temporary_archive_t archive(archive_path(log_path, 0));
    gzip_file(log_path, archive.path(), size);
    age_archives(log_path, limit);
    archive.publish();
}

bool is_archived(const std::wstring& log_path, std::uint64_t size) noexcept try {
    return size > 0 && holds_content_of(archive_path(log_path, 0), log_path, size);
} catch (const std::exception&) {
    return false;
}

void withdraw_archive(const std::wstring& log_path) noexcept try {
    DeleteFileW(platform::system_path(archive_path(log_path, 0)).c_str());
} catch (const std::exception&) {
    // The log file still holds the same lines: they are kept twice.
}

}  // namespace logging
