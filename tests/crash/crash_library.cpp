// Stands for a configuration library that crashes while it is being loaded. (Wine takes a fault for a failure to load.)
#include <cstdlib>

#include "common/win32.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD, void*) { std::abort(); }
