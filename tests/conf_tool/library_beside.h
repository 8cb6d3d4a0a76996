// What lies under the name OrmaconLib.dll beside the test program.
#pragma once

#include <cstring>
#include <string>

#include "common/platform/owned.h"
#include "tests/support/demo_host.h"

namespace test_support {

class CLibraryBeside {
public:
    CLibraryBeside() { Place(DemoLibrary()); }
    ~CLibraryBeside() { Remove(); }
    CLibraryBeside(const CLibraryBeside&) = delete;
    CLibraryBeside& operator=(const CLibraryBeside&) = delete;

    void Place(const std::string& content) {
        Remove();
        WriteFileText(path_, content);
    }

    // A failed constructor leaves the library loaded for good, which a test undoes.
    void Remove() {
        while (IsLoaded()) FreeLibrary(GetModuleHandleW(L"OrmaconLib.dll"));
        std::filesystem::remove(path_);
    }

    // The demonstration library with one export under a name that sorts where the right one did.
    void PlaceWithout(const std::string& name) {
        std::string content = DemoLibrary();
        const std::string stored = '\0' + name + '\0';
        for (std::size_t at = content.find(stored); at != std::string::npos; at = content.find(stored, at + 1)) {
            --content[at + name.size()];
        }
        Place(content);
    }

    // From here to its unloading a call of the loaded library's export jumps to the function.
    template <class Function>
    static void Replace(const char* name, Function function) {
        void* const at = reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"OrmaconLib.dll"), name));
        unsigned char load_and_jump[] = {0x48, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xe0};
        std::memcpy(load_and_jump + 2, &function, sizeof function);
        DWORD previous = 0;
        VirtualProtect(at, sizeof load_and_jump, PAGE_EXECUTE_READWRITE, &previous);
        std::memcpy(at, load_and_jump, sizeof load_and_jump);
    }

    static bool IsLoaded() { return GetModuleHandleW(L"OrmaconLib.dll") != nullptr; }

private:
    static std::string DemoLibrary() { return FileText(BesideProgram(L"..\\OrmaconLib.dll")); }

    std::filesystem::path path_ = BesideProgram(L"OrmaconLib.dll");
};

}  // namespace test_support
