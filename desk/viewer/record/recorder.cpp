#include "recorder.h"

#include "desk_error.h"
#include "key.h"
#include "pixel_canvas.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <utility>
#include <vector>

namespace desk
{

namespace
{

namespace fs = std::filesystem;

/// Whether the file has a picture's name: "07-ok.png".
bool isPicture(const fs::path &path)
{
	const std::string name = path.stem();
	const size_t digits = name.find_first_not_of("0123456789");
	if (path.extension() != ".png" || digits == std::string::npos || digits < 2 || name[digits] != '-')
		return false;
	const std::string after = name.substr(digits + 1);
	return after == "start" || keyNamed(after);
}

} // namespace

Recorder::~Recorder()
{
	for (FILE *file : {dump.file, trace.file})
		if (file)
			std::fclose(file);
}

void Recorder::openPictures(const std::string &folder)
{
	std::error_code failed;
	fs::create_directories(folder, failed);
	const bool exists = fs::is_directory(folder, failed);
	if (!exists || access(folder.c_str(), W_OK | X_OK) != 0) {
		const char *why = exists ? std::strerror(errno) : "it is no folder and cannot be made one";
		throw Error("cannot write pictures to '" + folder + "': " + why +
		            "; name a writable folder with --pictures");
	}
	pictures = folder;
}

void Recorder::open(Output &output, const std::string &option, const std::string &file)
{
	output.path = file;
	output.file = std::fopen(file.c_str(), "ae");
	if (!output.file)
		throw Error("cannot write the " + option + " to '" + file + "': " + std::strerror(errno) +
		            "; name another file with --" + option);
}

void Recorder::begin()
{
	std::error_code failed;
	std::vector<fs::path> earlier;
	if (!pictures.empty())
		for (fs::directory_iterator entry(pictures, failed); !failed && entry != fs::end(entry);
		     entry.increment(failed))
			if (isPicture(entry->path()))
				earlier.push_back(entry->path());
	for (const fs::path &path : earlier) // else they would look like pictures of this run
		fs::remove(path, failed);
	for (FILE *file : {dump.file, trace.file})
		if (file) [[maybe_unused]]
			const int cut = ftruncate(fileno(file), 0); // fails for a pipe
}

void Recorder::keepError(const Output &output)
{
	if (failure.empty())
		failure =
			std::string("cannot write ") + output.what + " to '" + output.path + "': " + std::strerror(errno);
}

void Recorder::write(Output &output, const std::string &line)
{
	if (output.file &&
	    (std::fputs((line + '\n').c_str(), output.file) == EOF || std::fflush(output.file) != 0))
		keepError(output);
}

void Recorder::record(const std::string &after, const std::string &windows, const DisplayList &picture)
{
	// Keys' names need no escapes.
	write(dump, "{\"after\":\"" + after + "\",\"windows\":" + (windows.empty() ? "null" : windows) + '}');
	if (!pictures.empty()) {
		std::string count = std::to_string(number);
		if (count.size() < 2)
			count.insert(0, 1, '0');
		const std::string path = pictures + '/' + count + '-' + after + ".png";
		std::error_code failed;
		fs::remove(path, failed); // may be a link
		PixelCanvas canvas;
		picture.draw(canvas, wholeScreen);
		try {
			canvas.writePng(path);
		} catch (const Error &error) {
			if (failure.empty())
				failure = error.line;
		}
	}
	++number;
}

void Recorder::call(const std::string &line)
{
	write(trace, line);
}

std::string Recorder::close()
{
	for (Output *output : {&dump, &trace})
		if (output->file && std::fclose(std::exchange(output->file, nullptr)) != 0)
			keepError(*output);
	pictures.clear();
	return failure;
}

} // namespace desk
