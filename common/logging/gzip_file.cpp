#include "common/logging/gzip_file.h"

#include <fcntl.h>
#include <io.h>
#include <zlib.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <optional>
#include <utility>
#include <vector>

#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/platform/owned.h"
#include "common/platform/path.h"
#include "common/text/convert.h"

namespace logging {
namespace {

constexpr unsigned portion = 64 * 1024;

std::string with_path(const char* sentence, const std::wstring& path) {
    return exc::format_message(sentence, text::wide_to_utf8(path));
}

platform::unique_file open_file(const std::wstring& path, DWORD access, DWORD sharing, DWORD creation,
                                const char* sentence) {
    platform::unique_file file(CreateFileW(platform::system_path(path).c_str(), access, sharing, nullptr, creation,
                                           FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    if (!file) {
        const DWORD code = GetLastError();
        exc::raise_win_error(code, with_path(sentence, path));
    }
    return file;
}

class gzip_writer_t {
public:
    explicit gzip_writer_t(const std::wstring& path) : path_(path), file_(open(path)) { gzbuffer(file_, portion); }
    ~gzip_writer_t() {
        if (file_ != nullptr) gzclose(file_);
    }
    gzip_writer_t(const gzip_writer_t&) = delete;
    gzip_writer_t& operator=(const gzip_writer_t&) = delete;

    void add(const std::vector<char>& data, unsigned size) {
        if (gzwrite(file_, data.data(), size) == static_cast<int>(size)) return;
        int code = Z_OK;
        gzerror(file_, &code);
        raise_zlib(code, "Cannot add data to the GZ archive [%1].");
    }

    void close() {
        const int code = gzclose(std::exchange(file_, nullptr));
        if (code != Z_OK) raise_zlib(code, "Cannot close GZ archive [%1].");
    }

private:
    // The run-time library's descriptor takes the handle over, and zlib the descriptor.
    static gzFile open(const std::wstring& path) {
        constexpr const char* sentence = "Failed to open GZ archive [%1].";
        platform::unique_file file = open_file(path, GENERIC_WRITE, 0, CREATE_ALWAYS, sentence);
        const int descriptor = _open_osfhandle(reinterpret_cast<intptr_t>(file.get()), _O_BINARY);
        if (descriptor < 0) exc::raise_win_error(ERROR_TOO_MANY_OPEN_FILES, with_path(sentence, path));
        file.release();
        const gzFile archive = gzdopen(descriptor, "wb");
        if (archive == nullptr) {
            _close(descriptor);
            exc::raise_win_error(ERROR_NOT_ENOUGH_MEMORY, with_path(sentence, path));
        }
        return archive;
    }

    [[noreturn]] void raise_zlib(int code, const char* sentence) const {
        exc::runtime_exc_t failure;
        if (code == Z_ERRNO) failure.add_text(std::strerror(errno));
        failure.add_text(with_path(sentence, path_));
        failure.add_trace_text(exc::format_message("Error code: %1", std::to_string(code)));
        throw failure;
    }

    const std::wstring& path_;
    gzFile file_;
};

// The log may be open for writing; exactly size bytes are taken.
template <class Consumer>
void read_portions(const std::wstring& path, std::uint64_t size, Consumer consume) {
    constexpr const char* unreadable = "Cannot read log file [%1].";
    const platform::unique_file input =
        open_file(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING, unreadable);
    std::vector<char> data(portion);
    for (std::uint64_t left = size; left > 0;) {
        DWORD count = 0;
        const bool read = ReadFile(input.get(), data.data(), static_cast<DWORD>(std::min<std::uint64_t>(left, portion)),
                                   &count, nullptr) != FALSE;
        const DWORD code = read ? ERROR_HANDLE_EOF : GetLastError();
        if (!read || count == 0) exc::raise_win_error(code, with_path(unreadable, path));
        consume(data, count);
        left -= count;
    }
}

struct gzip_trailer_t {
    std::uint32_t checksum;
    std::uint32_t size;  // of the content, modulo 2^32
};

std::optional<gzip_trailer_t> read_trailer(const std::wstring& archive) {
    const platform::unique_file file(CreateFileW(platform::system_path(archive).c_str(), GENERIC_READ, FILE_SHARE_READ,
                                                 nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) return std::nullopt;
    LARGE_INTEGER place{};
    place.QuadPart = -static_cast<LONGLONG>(sizeof(gzip_trailer_t));
    gzip_trailer_t trailer{};
    DWORD count = 0;
    const bool read = SetFilePointerEx(file.get(), place, nullptr, FILE_END) &&
                      ReadFile(file.get(), &trailer, sizeof trailer, &count, nullptr) && count == sizeof trailer;
    return read ? std::optional(trailer) : std::nullopt;
}

}  // namespace

void gzip_file(const std::wstring& source, const std::wstring& target, std::uint64_t size) {
    gzip_writer_t archive(target);
    read_portions(source, size, [&](const std::vector<char>& data, unsigned count) { archive.add(data, count); });
    archive.close();
}

bool holds_content_of(const std::wstring& archive, const std::wstring& source, std::uint64_t size) {
    const std::optional<gzip_trailer_t> trailer = read_trailer(archive);
    if (!trailer || trailer->size != static_cast<std::uint32_t>(size)) return false;
    uLong checksum = crc32(0, nullptr, 0);
    read_portions(source, size, [&](const std::vector<char>& data, unsigned count) {
        checksum = crc32(checksum, reinterpret_cast<const Bytef*>(data.data()), count);
    });
    return checksum == trailer->checksum;
}

}  // namespace logging
