#include "recordings.h"

#include "desk_error.h"
#include "note_log.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace desk
{

namespace
{

namespace fs = std::filesystem;

/// Where a file of that name would be made; empty if it cannot be.
fs::path placeOf(const fs::path &name)
{
	constexpr int mostLinks = 40; // as for the kernel
	std::error_code failed;
	fs::path place = fs::absolute(name, failed);
	for (int links = 0; links < mostLinks && fs::is_symlink(place, failed); ++links)
		place = place.parent_path() / fs::read_symlink(place, failed);
	return fs::weakly_canonical(place, failed);
}

/// Whether two names mean the same regular file, which may not exist yet.
bool areOneFile(const fs::path &one, const fs::path &other)
{
	std::error_code failed;
	if (fs::exists(one, failed))
		return fs::is_regular_file(one, failed) && fs::equivalent(one, other, failed);
	const fs::path place = placeOf(one);
	return !place.empty() && place == placeOf(other);
}

/// Checks regular files only, because reading a device or a pipe may block.
bool isCatalogue(const fs::path &path)
{
	std::error_code failed;
	if (!fs::is_regular_file(path, failed))
		return false;
	char magic[4] = {};
	std::ifstream(path, std::ios::binary).read(magic, sizeof magic);
	const std::string bytes(magic, sizeof magic);
	return bytes == "\xde\x12\x04\x95" || bytes == "\x95\x04\x12\xde";
}

/// Whether the folder contains that file, under any name.
bool has(const fs::path &folder, const fs::path &file)
{
	std::error_code failed;
	if (folder.empty() || !fs::is_regular_file(file, failed))
		return false;
	const fs::path root = fs::canonical(folder, failed), path = fs::canonical(file, failed);
	if (root.empty()) // it was deleted
		return false;
	if (std::mismatch(root.begin(), root.end(), path.begin(), path.end()).first == root.end())
		return true;
	if (fs::hard_link_count(file, failed) < 2)
		return false;
	fs::recursive_directory_iterator entry(folder, fs::directory_options::skip_permission_denied, failed);
	while (!failed && entry != fs::end(entry) && !areOneFile(entry->path(), file))
		entry.increment(failed);
	return !failed && entry != fs::end(entry);
}

/// Throws an Error if a recording would overwrite any other output or input.
void refuseToOverwrite(const Options &options)
{
	struct File
	{
		const char *name;
		std::string path;
	};
	const File outputs[] = {{"standard output", "/proc/self/fd/1"},
	                        {"standard error", "/proc/self/fd/2"},
	                        {"--dump", options.dump},
	                        {"--trace", options.trace},
	                        {"--debug", options.debug}};
	const File inputs[] = {{"the plugin", options.plugin}, {"the skin", options.skin}};
	const fs::path root = options.through.empty() ? options.root : ""; // with --through the root is elsewhere
	for (size_t recorded = 2; recorded < std::size(outputs); ++recorded) {
		const File &output = outputs[recorded];
		if (output.path.empty())
			continue;
		for (size_t other = 0; other < recorded; ++other)
			if (!outputs[other].path.empty() && areOneFile(output.path, outputs[other].path))
				throw Error(std::string(outputs[other].name) + " and " + output.name +
				            " would overwrite each other in '" + output.path +
				            "'; give each a file of its own");
		const char *what = isCatalogue(output.path) ? "a message catalogue" : nullptr;
		for (const File &input : inputs)
			if (areOneFile(output.path, input.path))
				what = input.name;
		if (has(root, output.path))
			what = "a file of the --root folder";
		if (what)
			throw Error(std::string(output.name) + " would overwrite " + what + ", '" + output.path +
			            "'; name another file");
	}
}

} // namespace

void openRecordings(const Options &options, Recorder &recorder)
{
	refuseToOverwrite(options);
	if (!options.pictures.empty())
		recorder.openPictures(options.pictures);
	if (!options.dump.empty())
		recorder.openDump(options.dump);
	if (!options.trace.empty())
		recorder.openTrace(options.trace);
	if (!options.debug.empty())
		NoteLog::get().open(options.debug);
	recorder.begin();
}

} // namespace desk
