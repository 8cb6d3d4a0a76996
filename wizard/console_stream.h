#pragma once

namespace wizard {

// From here on what is printed to std::cout reaches a console as UTF-16, as it stands: on its way through the C runtime
// letters outside ASCII may be lost, and a long text may take seconds. A file or pipe still gets UTF-8. There is no way
// back; to be called once, before anything else is put in the stream's way.
void PrintToConsoleAsUtf16();

}  // namespace wizard
