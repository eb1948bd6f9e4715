#ifndef BENCH_HOST_H
#define BENCH_HOST_H

#include "key.h"
#include "pixel_canvas.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace bench
{

/// Called whenever the host waits for a key, with the number of keys pressed so far. Returns the next key; nullopt:
/// exit.
using Watcher = std::function<std::optional<desk::Key>(int pressed)>;

struct Stage
{
	std::string skin; ///< a skin file
	std::string log;  ///< the scan log; empty: this computer's
	bool paints = false;
};

/// Configures the next runs. `watcher` must outlive them. Throws a desk::Error on failure.
void prepare(const Stage &stage, const Watcher &watcher);

/// Loads the plugin at `path`, runs it once and unloads it. Throws a desk::Error on failure.
void run(const std::string &path);

/// Seconds of a monotonic clock.
double now();

/// CPU seconds of this process.
double processorTime();

/// Bytes of this process: now, and the maximum since forgetPeak().
double memory();
double peakMemory();
void forgetPeak();

/// Runs `work` in a forked process and returns its result. Ends the program when that process fails.
std::vector<double> apart(const std::function<std::vector<double>()> &work);

/// A temporary folder, deleted when the program ends.
std::string temporaryFolder();

/// A scan log of `lines` lines of 100 bytes each, or of empty lines; made once.
std::string logOf(int lines, bool empty = false);

} // namespace bench

#endif
