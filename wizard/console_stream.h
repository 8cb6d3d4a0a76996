#pragma once

namespace wizard {

// Makes std::cout reach a console as UTF-16, with CR LF as its line end: the C runtime may lose letters outside ASCII,
// and may take seconds for a long text. Files and pipes get UTF-8 when the stream is flushed. Call it once, before
// anything else replaces the stream's buffer; it cannot be undone.
void PrepareStandardOutput();

}  // namespace wizard
