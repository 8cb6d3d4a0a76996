// A registry for one test: HKEY_LOCAL_MACHINE of this process is empty during the lifetime of this object.
#pragma once

#include <string>

#include "common/win32.h"

namespace test_support {

class CTestRegistry {
public:
    CTestRegistry() : name_(L"Software\\OrmaconTest" + std::to_wstring(GetCurrentProcessId())) {
        RegDeleteTreeW(HKEY_CURRENT_USER, name_.c_str());
        RegCreateKeyExW(HKEY_CURRENT_USER, name_.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &root_, nullptr);
        RegOverridePredefKey(HKEY_LOCAL_MACHINE, root_);
    }
    ~CTestRegistry() {
        RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
        RegCloseKey(root_);
        RegDeleteTreeW(HKEY_CURRENT_USER, name_.c_str());
    }
    CTestRegistry(const CTestRegistry&) = delete;
    CTestRegistry& operator=(const CTestRegistry&) = delete;

    void Set(const std::wstring& key, const std::wstring& name, DWORD type, const void* data, std::size_t size) {
        HKEY opened = nullptr;
        RegCreateKeyExW(HKEY_LOCAL_MACHINE, key.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &opened, nullptr);
        RegSetValueExW(opened, name.c_str(), 0, type, static_cast<const BYTE*>(data), static_cast<DWORD>(size));
        RegCloseKey(opened);
    }
    void SetText(const std::wstring& key, const std::wstring& name, const std::wstring& text, DWORD type = REG_SZ) {
        Set(key, name, type, text.c_str(), (text.size() + 1) * sizeof(wchar_t));
    }

private:
    std::wstring name_;
    HKEY root_ = nullptr;
};

}  // namespace test_support
