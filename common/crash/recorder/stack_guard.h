// The stack protector's part that a C runtime would bring.
#pragma once

namespace recorder {

// Chooses the value that guards the frames of this run; before the first function with such a frame. An overwritten
// frame ends the recorder as any other fault does.
void choose_stack_guard();

}  // namespace recorder
