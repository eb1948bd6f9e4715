#ifndef VEXLO_TESTS_INSIDE_H
#define VEXLO_TESTS_INSIDE_H

#include <string>

namespace support
{

/// One run of the plugin in the test's own program, which is then a desk host: see vexlo_host_test.
/// Presses `keys` and then those of the desk's screen; returns what plugin_exec returned.
int runInside(const std::string &keys = "");

} // namespace support

#endif
