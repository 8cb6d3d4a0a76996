// Stands for a configuration library that crashes.
extern "C" __declspec(dllexport) int SetHostDirect(const wchar_t* host) {
    volatile wchar_t* const copy = nullptr;
    copy[0] = host[0];
    return 0;
}
