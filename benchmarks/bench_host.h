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

/// What a run is watched through. It is called whenever the host waits for a key, with the number
/// of keys pressed so far, and gives the next one; nothing: the viewer leaves, by exit.
using Watcher = std::function<std::optional<desk::Key>(int pressed)>;

struct Stage
{
	std::string skin; ///< a skin file
	std::string log;  ///< the scan log; empty: this computer's
	bool paints = false;
};

/// Sets the stage for the runs that follow. `watcher` must outlive them. Throws a desk::Error on failure.
void prepare(const Stage &stage, const Watcher &watcher);

/// Loads the plugin at `path`, runs it once and unloads it. Throws a desk::Error on failure.
void run(const std::string &path);

/// The seconds since some point in time, by a clock that never goes back.
double now();

/// The seconds that this process has had of the processor.
double processorTime();

/// Memory of this process in use, and the most that was since forgetPeak(); in bytes.
double memory();
double peakMemory();
void forgetPeak();

/// Runs `work` in a process of its own, which starts from the memory of this one, and returns what it
/// returns. Ends the program when that process fails.
std::vector<double> apart(const std::function<std::vector<double>()> &work);

/// A folder that goes with everything in it when the program ends.
std::string temporaryFolder();

/// A scan log of that many lines of 100 bytes each, or without anything in them; made once.
std::string logOf(int lines, bool empty = false);

} // namespace bench

#endif
