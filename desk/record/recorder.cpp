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
	if (dump)
		std::fclose(dump);
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
	dump = std::fopen(file.c_str(), "w");
	dumpPath = file;
	if (!dump)
		error = "cannot write the dump to '" + file + "': " + std::strerror(errno) +
		        "; name another file with --dump";
	return dump != nullptr;
}

void Recorder::record(const std::string &after, const std::function<nlohmann::ordered_json()> &describe,
                      const std::function<void(Canvas &)> &paint)
{
	if (dump) {
		nlohmann::ordered_json object;
		object["after"] = after;
		object["windows"] = describe();
		const std::string line = object.dump(-1, ' ', true, nlohmann::ordered_json::error_handler_t::replace);
		if (std::fprintf(dump, "%s\n", line.c_str()) < 0 || std::fflush(dump) != 0)
			if (failure.empty())
				failure = "cannot write the dump to '" + dumpPath + "': " + std::strerror(errno);
	}
	if (!pictures.empty()) {
		std::string count = std::to_string(number);
		if (count.size() < 2)
			count.insert(0, 1, '0');
		PixelCanvas canvas;
		paint(canvas);
		std::string error;
		if (!canvas.writePng(pictures + '/' + count + '-' + after + ".png", error) && failure.empty())
			failure = error;
	}
	++number;
}

bool Recorder::close(std::string &error)
{
	if (dump && std::fclose(dump) != 0 && failure.empty())
		failure = "cannot write the dump to '" + dumpPath + "': " + std::strerror(errno);
	dump = nullptr;
	pictures.clear();
	error = failure;
	return failure.empty();
}

} // namespace desk
