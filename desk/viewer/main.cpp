#include "desk_error.h"
#include "framebuffer_screen.h"
#include "note_log.h"
#include "options.h"
#include "pixel_canvas.h"
#include "recorder.h"
#include "session.h"
#include "skin.h"
#include "terminal_screen.h"
#include "visible_text.h"
#include "window_screen.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <new>
#include <sstream>
#include <utility>

namespace desk
{

namespace
{

namespace fs = std::filesystem;

[[noreturn]] void endWithoutMemory()
{
	static const char message[] =
		"deskhost: there is not enough memory; give it more (ulimit -v), or look at less\n";
	[[maybe_unused]] const ssize_t written = write(STDERR_FILENO, message, sizeof message - 1);
	_exit(statusNotToItsEnd);
}

/// A standard stream that is closed must not become the first file that is opened: it is taken up in the
/// direction in which it cannot be used.
void occupyStandardStreams()
{
	for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
		if (fcntl(stream, F_GETFD) < 0)
			::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

/// Whether two names are of one regular file, or of one that is still to be made.
bool isSameFile(const fs::path &one, const fs::path &other)
{
	std::error_code failed;
	if (fs::exists(one, failed))
		return fs::is_regular_file(one, failed) && fs::equivalent(one, other, failed);
	return fs::weakly_canonical(one, failed) == fs::weakly_canonical(other, failed);
}

/// A device or a pipe is none, and reading one may wait for ever.
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

/// Whether a folder has that file already, by whatever name.
bool has(const fs::path &folder, const fs::path &file)
{
	std::error_code failed;
	if (folder.empty() || !fs::is_regular_file(file, failed))
		return false;
	const fs::path root = fs::canonical(folder, failed), path = fs::canonical(file, failed);
	if (std::mismatch(root.begin(), root.end(), path.begin(), path.end()).first == root.end())
		return true;
	if (fs::hard_link_count(file, failed) > 1)
		for (const fs::directory_entry &entry :
		     fs::recursive_directory_iterator(folder, fs::directory_options::skip_permission_denied, failed))
			if (isSameFile(entry.path(), file))
				return true;
	return false;
}

/// What is recorded overwrites nothing else that is written or read.
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
	const fs::path root = options.through.empty() ? options.root : ""; // else it is elsewhere
	for (size_t recorded = 2; recorded < std::size(outputs); ++recorded) {
		const File &output = outputs[recorded];
		if (output.path.empty())
			continue;
		for (size_t other = 0; other < recorded; ++other)
			if (!outputs[other].path.empty() && isSameFile(output.path, outputs[other].path))
				throw Error(std::string(outputs[other].name) + " and " + output.name +
				            " would overwrite each other in '" + output.path +
				            "'; give each a file of its own");
		const char *what = isCatalogue(output.path) ? "a message catalogue" : nullptr;
		for (const File &input : inputs)
			if (isSameFile(output.path, input.path))
				what = input.name;
		if (has(root, output.path))
			what = "a file of the --root folder";
		if (what)
			throw Error(std::string(output.name) + " would overwrite " + what + ", '" + output.path +
			            "'; name another file");
	}
}

/// Opens what is to be recorded, once there is something.
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

bool displayIsNamed()
{
	const auto given = [](const char *name) {
		const char *value = std::getenv(name);
		return value && *value;
	};
	return given("DISPLAY") || given("WAYLAND_DISPLAY");
}

/// What there is to show and press keys on: a display, else a terminal, else nothing. `note` says why a
/// display that is named is not it.
std::string likelyScreen(std::string &note)
{
	std::string otherwise = isatty(STDIN_FILENO) && isatty(STDOUT_FILENO) ? "terminal" : "none";
	if (!displayIsNamed())
		return otherwise;
	try {
		awaitDisplay();
		return "window";
	} catch (const Error &error) { // it was named long ago, as in a terminal that has outlived it
		note = "deskhost: " + error.line + "; this is --screen " + otherwise;
		return otherwise;
	}
}

/// What the plugin is called: "vexlomenu" for ".../vexlomenu.so.0".
std::string pluginName(const std::string &path)
{
	const std::string file = fs::path(path).filename();
	return file.substr(0, file.find(".so"));
}

/// The program that runs the plugin: beside this one, or, when it is started by a command, beside the plugin, which
/// may be on another computer or for another processor.
std::string halfFor(const Options &options)
{
	const std::string own = besideProgram({"deskhost-plugin", DESK_INSTALLED_HALF});
	const std::string beside = (fs::path(options.plugin).parent_path() / "deskhost-plugin").string();
	std::error_code failed;
	const bool isHere = fs::exists(options.plugin, failed) && !fs::exists(beside, failed);
	return options.through.empty() || isHere ? own : beside;
}

std::unique_ptr<Screen> openScreen(const Options &options)
{
	const std::string &name = options.screen;
	if (name == "window")
		return makeWindowScreen(pluginName(options.plugin));
	if (name == "terminal")
		return makeTerminalScreen();
	if (name == "framebuffer")
		return makeFramebufferScreen(options.devices);
	return std::make_unique<Screen>();
}

void run(int argc, char **argv)
{
	occupyStandardStreams();
	std::set_new_handler(endWithoutMemory);
	// Only what characters are is the desk's: numbers and messages are the same everywhere.
	std::setlocale(LC_CTYPE, "");

	std::optional<Options> options = readArguments(argc, argv);
	if (!options)
		return;
	if (options->catalogue.empty())
		options->catalogue = pluginName(options->plugin);
	Stage stage;
	stage.skin = Skin::load(options->skin);
	if (options->screen.empty())
		options->screen = likelyScreen(stage.note);
	const bool inTerminal = options->screen == "terminal";
	if (options->watch && options->screen == "none")
		throw Error("--watch needs a screen to press keys on: a window, a terminal or a framebuffer");
	Recorder recorder;
	stage.draws = options->screen != "none";
	if (((stage.draws && !inTerminal) || !options->pictures.empty()) && !PixelCanvas::canDrawText())
		throw Error("there is no font to draw with; install one, such as fonts-dejavu-core",
		            statusNotToItsEnd);
	if (!options->lang.empty() && inTerminal && !localeIsUtf8())
		stage.note +=
			"deskhost: letters that the locale's character set lacks are shown as question marks; set "
			"LC_ALL=C.UTF-8 to see them";

	std::ostringstream text;
	text << std::ifstream(options->skin, std::ios::binary).rdbuf();
	stage.skinText = text.str();
	stage.half = halfFor(*options);
	stage.rowHeight = inTerminal ? terminalRowHeight : 0;
	stage.holdsErrorsBack = inTerminal && isatty(STDERR_FILENO);
	stage.openScreen = [&] { return openScreen(*options); };
	stage.openRecordings = [&] { openRecordings(*options, recorder); };
	Session(*options, std::move(stage), recorder).run();
}

} // namespace

} // namespace desk

int main(int argc, char **argv)
try {
	desk::run(argc, argv);
	return 0;
} catch (const desk::Error &error) {
	if (!error.line.empty())
		std::fprintf(stderr, "deskhost: %s\n", desk::localText(error.line).c_str());
	return error.status;
}
