#ifndef VEXLO_TESTS_OWN_PROCESSES_H
#define VEXLO_TESTS_OWN_PROCESSES_H

namespace support
{

/// One global object makes main() run the program's tests in their own process namespace. For tests that really kill:
/// no mistake reaches another process of this computer.
struct OwnProcesses
{
	OwnProcesses();
};

} // namespace support

#endif
