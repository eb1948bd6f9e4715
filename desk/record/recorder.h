#ifndef DESK_RECORD_RECORDER_H
#define DESK_RECORD_RECORDER_H

#include "canvas.h"

#include <nlohmann/json.hpp>

#include <cstdio>
#include <functional>
#include <string>

namespace desk
{

/// What is on the screen at the start and after every key: as pictures, as JSON lines, or both.
class Recorder
{
public:
	Recorder() = default;
	Recorder(const Recorder &) = delete;
	Recorder &operator=(const Recorder &) = delete;
	~Recorder();

	/// Writes pictures into `folder`, which is made when it does not exist, or descriptions to `file`.
	/// On failure they return false and leave one line in `error`.
	bool openPictures(const std::string &folder, std::string &error);
	bool openDump(const std::string &file, std::string &error);

	bool on() const { return dump || !pictures.empty(); }

	/// Records the screen after `after` ("start" or a key's name), as `describe` and `paint` give it.
	/// They are called only for what is recorded.
	void record(const std::string &after, const std::function<nlohmann::ordered_json()> &describe,
	            const std::function<void(Canvas &)> &paint);

	/// Ends the recording. False when not everything could be written; `error` then says what.
	bool close(std::string &error);

private:
	std::string pictures;
	std::string dumpPath;
	FILE *dump = nullptr;
	int number = 0;
	std::string failure; ///< the first one
};

} // namespace desk

#endif
