#include "recorder.h"

#include "pixel_canvas.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

namespace desk
{

Recorder::~Recorder()
{
	for (FILE *file : {dump, trace})
		if (file)
			std::fclose(file);
}

bool Recorder::openPictures(const std::string &folder, std::string &error)
{
	std::error_code failed;
	std::filesystem::create_directories(folder, failed);
	const bool exists = std::filesystem::is_directory(folder, failed);
	if (!exists || access(folder.c_str(), W_OK | X_OK) != 0) {
		const char *why = exists ? std::strerror(errno) : "it is no folder and cannot be made one";
		error =
			"cannot write pictures to '" + folder + "': " + why + "; name a writable folder with --pictures";
		return false;
	}
	pictures = folder;
	return true;
}

bool Recorder::openDump(const std::string &file, std::string &error)
{
	dump = std::fopen(file.c_str(), "ae");
	dumpPath = file;
	if (!dump)
		error = "cannot write the dump to '" + file + "': " + std::strerror(errno) +
		        "; name another file with --dump";
	return dump != nullptr;
}

bool Recorder::openTrace(const std::string &file, std::string &error)
{
	trace = std::fopen(file.c_str(), "ae");
	tracePath = file;
	if (!trace)
		error = "cannot write the trace to '" + file + "': " + std::strerror(errno) +
		        "; name another file with --trace";
	return trace != nullptr;
}

void Recorder::begin()
{
	for (FILE *file : {dump, trace})
		if (file) [[maybe_unused]]
			const int cut = ftruncate(fileno(file), 0); // a pipe has nothing to lose
}

void Recorder::write(FILE *file, const std::string &line, const char *what, const std::string &path)
{
	if ((std::fputs((line + '\n').c_str(), file) == EOF || std::fflush(file) != 0) && failure.empty())
		failure = std::string("cannot write ") + what + " to '" + path + "': " + std::strerror(errno);
}

void Recorder::record(const std::string &after, const std::string &windows, const DisplayList &picture)
{
	if (dump) // names of keys need no escapes
		write(dump, "{\"after\":\"" + after + "\",\"windows\":" + (windows.empty() ? "null" : windows) + '}',
		      "the dump", dumpPath);
	if (!pictures.empty()) {
		std::string count = std::to_string(number);
		if (count.size() < 2)
			count.insert(0, 1, '0');
		const std::string path = pictures + '/' + count + '-' + after + ".png";
		std::error_code failed;
		std::filesystem::remove(path, failed); // it may be a link
		PixelCanvas canvas;
		picture.draw(canvas, wholeScreen);
		std::string error;
		if (!canvas.writePng(path, error) && failure.empty())
			failure = error;
	}
	++number;
}

void Recorder::call(const std::string &line)
{
	if (trace)
		write(trace, line, "all of the trace", tracePath);
}

bool Recorder::close(std::string &error)
{
	for (FILE *file : {dump, trace})
		if (file && std::fclose(file) != 0 && failure.empty())
			failure = std::string("cannot write ") + (file == dump ? "the dump" : "all of the trace") +
			          " to '" + (file == dump ? dumpPath : tracePath) + "': " + std::strerror(errno);
	dump = trace = nullptr;
	pictures.clear();
	error = failure;
	return failure.empty();
}

} // namespace desk
