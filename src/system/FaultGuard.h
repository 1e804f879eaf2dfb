#pragma once

namespace KELPKIT
{

// Calls action(argument) and returns true, or false where the processor faults in it: it reads where there is no memory,
// divides by zero, or meets an instruction that it does not know. The action is then given up where it stands, and
// nothing of it is destroyed; it must hold nothing, and call nothing that handles faults of its own. Faults of other
// threads, and exceptions of any other kind, take their usual way.
bool RunGuarded(void (*action)(void*), void* argument);

} // namespace KELPKIT
