#ifndef DESK_RECORD_RECORDER_H
#define DESK_RECORD_RECORDER_H

#include "display_list.h"

#include <cstdio>
#include <string>

namespace desk
{

/// What a run leaves behind: what is on the screen at the start and after every key, as pictures and as JSON lines,
/// and the plugin's calls.
class Recorder
{
public:
	Recorder() = default;
	Recorder(const Recorder &) = delete;
	Recorder &operator=(const Recorder &) = delete;
	~Recorder();

	/// Writes pictures into `folder`, which is made when it does not exist, or descriptions or calls to `file`, which keeps
	/// what it has until begin(). They throw an Error when they cannot.
	void openPictures(const std::string &folder);
	void openDump(const std::string &file);
	void openTrace(const std::string &file);

	/// Empties the files, once all is open.
	void begin();

	/// Records the screen after `after` ("start" or a key's name); `windows` is its description in JSON.
	void record(const std::string &after, const std::string &windows, const DisplayList &picture);
	/// Records a call, at once: a trace is read above all when the plugin has crashed.
	void call(const std::string &line);

	/// Ends the recording. Returns what could not be written first, in one line; empty: everything has been.
	std::string close();

private:
	void write(FILE *file, const std::string &line, const char *what, const std::string &path);

	std::string pictures;
	std::string dumpPath, tracePath;
	FILE *dump = nullptr, *trace = nullptr;
	int number = 0;
	std::string failure; ///< the first one
};

} // namespace desk

#endif
