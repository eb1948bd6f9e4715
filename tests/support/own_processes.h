#ifndef VEXLO_TESTS_OWN_PROCESSES_H
#define VEXLO_TESTS_OWN_PROCESSES_H

namespace support
{

/// For a program whose tests really kill: one object of this, outside of any function, and main() runs them in a
/// process namespace of their own, so that no mistake, theirs or the plugin's, reaches another process of
/// this computer.
struct OwnProcesses
{
	OwnProcesses();
};

} // namespace support

#endif
