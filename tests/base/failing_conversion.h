#pragma once

namespace test_support {

// Lets the n-th conversion call of the system from now on fail, once, with ERROR_NO_UNICODE_TRANSLATION; the system
// itself refuses no text that a test could build.
void FailConversionCall(int n);

}  // namespace test_support
