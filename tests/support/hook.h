// Functions of the system that a test replaces for all that its program calls. HOOK(kernel32, CreateFileW), outside of
// every namespace, makes the type CreateFileW_hook.
#pragma once

#include <functional>

#include "common/win32.h"

namespace test_support {

template <class Hook, class Function>
struct hook_t;

template <class Hook, class Result, class... Args>
struct hook_t<Hook, Result(Args...)> {
    static inline std::function<Result(Args...)> replacement;  // empty: the system's own function

    static Result System(Args... args) { return (found_ != nullptr ? found_ : Find())(args...); }
    static Result Call(Args... args) { return replacement ? replacement(args...) : System(args...); }

    template <class Value = Result>
    static void Fail(DWORD code, Value result = {}) {
        replacement = [=](Args...) {
            SetLastError(code);
            return result;
        };
    }

private:
    using function_t = Result(Args...);

    static function_t* Find() {
        const auto address = reinterpret_cast<void (*)()>(GetProcAddress(LoadLibraryA(Hook::library), Hook::name));
        return reinterpret_cast<function_t*>(address);
    }
    // Before main: finding needs the loader's lock, which a test may hold.
    static inline function_t* const found_ = Find();
};

}  // namespace test_support

#pragma GCC diagnostic ignored "-Wignored-attributes"  // of a function that takes a format

// The linker looks for an imported function by its name with this prefix.
#define HOOK(module, function)                                                           \
    struct function##_hook : test_support::hook_t<function##_hook, decltype(function)> { \
        static constexpr const char* library = #module ".dll";                           \
        static constexpr const char* name = #function;                                   \
    };                                                                                   \
    extern "C" {                                                                         \
    [[gnu::used]] inline decltype(&function) __imp_##function = &function##_hook::Call;  \
    }
