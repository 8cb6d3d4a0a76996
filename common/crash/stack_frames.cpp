#include "common/crash/stack_frames.h"

#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/platform/guarded_call.h"

namespace crash {
namespace {

constexpr std::size_t max_frames = 256;

// A walk through a damaged stack must not crash once more.
bool read_word(std::uint64_t address, std::uint64_t& value) {
    SIZE_T size = 0;
    return ReadProcessMemory(GetCurrentProcess(), reinterpret_cast<const void*>(address), &value, sizeof value,
                             &size) &&
           size == sizeof value;
}

bool leave_leaf_function(CONTEXT& context) {
    std::uint64_t return_address = 0;
    if (!read_word(context.Rsp, return_address)) return false;
    context.Rip = return_address;
    context.Rsp += sizeof return_address;
    return true;
}

bool leave_function(CONTEXT& context) {
    ULONG64 image = 0;
    RUNTIME_FUNCTION* const function = RtlLookupFunctionEntry(context.Rip, &image, nullptr);
    if (function == nullptr) return leave_leaf_function(context);
    std::uint64_t top = 0;
    if (!read_word(context.Rsp, top)) return false;
    void* handler_data = nullptr;
    ULONG64 frame = 0;
    // The unwinder trusts the frame register.
    return platform::call_guarded([&] {
        RtlVirtualUnwind(UNW_FLAG_NHANDLER, image, context.Rip, function, &context, &handler_data, &frame, nullptr);
        return true;
    });
}

}  // namespace

void check_architecture(WORD architecture) {
    if (architecture == PROCESSOR_ARCHITECTURE_AMD64) return;
    exc::raise(exc::format_message("Unexpected processor architecture: '%1'.", std::to_string(architecture)));
}

void walk_stack(const CONTEXT& thread, const std::function<void(std::uint64_t)>& visit) {
    SYSTEM_INFO system;
    GetSystemInfo(&system);
    check_architecture(system.wProcessorArchitecture);
    CONTEXT context = thread;
    for (std::size_t frame = 0; frame < max_frames; ++frame) {
        visit(context.Rip);
        const DWORD64 stack_pointer = context.Rsp;
        if (!leave_function(context) || context.Rip == 0 || context.Rsp <= stack_pointer) return;
    }
}

}  // namespace crash
