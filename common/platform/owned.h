// Owners of system resources: one type for each closing function and invalid value.
#pragma once

#include <utility>

#include "common/win32.h"

namespace platform {

// Traits has type, invalid() and close(type).
template <class Traits>
class unique_t {
public:
    using type = typename Traits::type;

    unique_t() = default;
    explicit unique_t(type value) noexcept : value_(value) {}
    unique_t(unique_t&& other) noexcept : value_(other.release()) {}
    unique_t& operator=(unique_t&& other) noexcept {
        if (this != &other) reset(other.release());
        return *this;
    }
    ~unique_t() { reset(); }

    type get() const noexcept { return value_; }
    explicit operator bool() const noexcept { return value_ != Traits::invalid(); }
    type release() noexcept { return std::exchange(value_, Traits::invalid()); }

    // Closes the resource. Keeps the thread's last error.
    void reset(type value = Traits::invalid()) noexcept {
        const type old = std::exchange(value_, value);
        if (old == Traits::invalid()) return;
        const DWORD last_error = GetLastError();
        Traits::close(old);
        SetLastError(last_error);
    }

    // Closes the resource and returns the place for a new one, for calls with an out-parameter.
    type* put() noexcept {
        reset();
        return &value_;
    }

private:
    type value_ = Traits::invalid();
};

template <class Type>
struct null_traits_t {
    using type = Type;
    static type invalid() noexcept { return nullptr; }
};

struct handle_traits_t : null_traits_t<HANDLE> {
    static void close(type value) noexcept { CloseHandle(value); }
};

struct module_traits_t : null_traits_t<HMODULE> {
    static void close(type value) noexcept { FreeLibrary(value); }
};

struct local_traits_t : null_traits_t<void*> {
    static void close(type value) noexcept { LocalFree(value); }
};

struct registry_key_traits_t : null_traits_t<HKEY> {
    static void close(type value) noexcept { RegCloseKey(value); }
};

struct file_traits_t {
    using type = HANDLE;
    static type invalid() noexcept { return INVALID_HANDLE_VALUE; }
    static void close(type value) noexcept { CloseHandle(value); }
};

struct find_traits_t : file_traits_t {
    static void close(type value) noexcept { FindClose(value); }
};

using unique_handle = unique_t<handle_traits_t>;              // null is invalid: processes, threads, events
using unique_file = unique_t<file_traits_t>;                  // minus one is invalid: CreateFileW
using unique_find = unique_t<find_traits_t>;                  // FindFirstFileW
using unique_module = unique_t<module_traits_t>;              // LoadLibraryW
using unique_local = unique_t<local_traits_t>;                // what LocalFree releases
using unique_registry_key = unique_t<registry_key_traits_t>;  // RegOpenKeyExW

}  // namespace platform
