#ifndef DESK_RECORD_RECORDER_H
#define DESK_RECORD_RECORDER_H

#include "display_list.h"

#include <cstdio>
#include <string>

namespace desk
{

/// Records a run: the screen at the start and after each key, as pictures and as JSON lines, and the plugin's calls.
class Recorder
{
public:
	Recorder() = default;
	Recorder(const Recorder &) = delete;
	Recorder &operator=(const Recorder &) = delete;
	~Recorder();

	/// Records pictures in `folder`, which is created if missing, or descriptions or calls in `file`, unchanged until
	/// begin(). They throw an Error on failure.
	void openPictures(const std::string &folder);
	void openDump(const std::string &file) { open(dump, "dump", file); }
	void openTrace(const std::string &file) { open(trace, "trace", file); }

	/// Empties the files, after all are opened.
	void begin();

	/// Records the screen after `after` ("start" or a key's name); `windows` is its description in JSON.
	void record(const std::string &after, const std::string &windows, const DisplayList &picture);
	/// Writes a call immediately, because a trace is most needed after a crash.
	void call(const std::string &line);

	/// Ends the recording. Returns the first error in one line, or "".
	std::string close();

private:
	struct Output
	{
		const char *what; ///< for errors
		std::string path;
		FILE *file = nullptr; ///< null: not recorded
	};

	static void open(Output &output, const std::string &option, const std::string &file);
	void write(Output &output, const std::string &line);
	void keepError(const Output &output);

	std::string pictures;
	Output dump = {"the dump", {}}, trace = {"all of the trace", {}};
	int number = 0;
	std::string failure; ///< the first error
};

} // namespace desk

#endif
