#pragma once

namespace wizard {

// From here on what is printed to std::cout reaches a console as UTF-16, with CR LF as its line end: on its way through
// the C runtime letters outside ASCII may be lost, and a long text may take seconds. Anything else gets UTF-8, when the
// stream is flushed. There is no way back; to be called once, before anything else is put in the stream's way.
void PrepareStandardOutput();

}  // namespace wizard
