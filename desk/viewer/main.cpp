#include "desk_error.h"
#include "framebuffer_screen.h"
#include "options.h"
#include "pixel_canvas.h"
#include "session.h"
#include "skin.h"
#include "terminal_screen.h"
#include "visible_text.h"
#include "window_screen.h"

#include <fcntl.h>
#include <unistd.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <new>
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

/// Opens missing standard streams, so that no other file gets their descriptors. In the wrong direction, so that
/// using one still fails.
void occupyStandardStreams()
{
	for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
		if (fcntl(stream, F_GETFD) < 0)
			::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

bool displayIsNamed()
{
	const auto given = [](const char *name) {
		const char *value = std::getenv(name);
		return value && *value;
	};
	return given("DISPLAY") || given("WAYLAND_DISPLAY");
}

/// The default screen: a display, else a terminal, else none. `note` says why a named display does not work.
std::string likelyScreen(std::string &note)
{
	std::string otherwise = isatty(STDIN_FILENO) && isatty(STDOUT_FILENO) ? "terminal" : "none";
	if (!displayIsNamed())
		return otherwise;
	try {
		awaitDisplay();
		return "window";
	} catch (const Error &error) { // DISPLAY is outdated, as in a terminal that survived the display
		note = "deskhost: " + error.line + "; this is --screen " + otherwise;
		return otherwise;
	}
}

/// The plugin's name: "vexlomenu" for ".../vexlomenu.so.0".
std::string pluginName(const std::string &path)
{
	const std::string file = fs::path(path).filename();
	return file.substr(0, file.find(".so"));
}

/// The program that runs the plugin: beside this one, or with --through beside the plugin, which may be on another
/// computer or for another processor.
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
	// Only the character set follows the locale; numbers and messages do not.
	std::setlocale(LC_CTYPE, "");

	std::optional<Options> options = readArguments(argc, argv);
	if (!options)
		return;
	if (options->catalogue.empty())
		options->catalogue = pluginName(options->plugin);
	Stage stage;
	stage.skinText = Skin::read(options->skin);
	stage.skin = Skin::parse(stage.skinText, options->skin);
	if (options->screen.empty())
		options->screen = likelyScreen(stage.note);
	const bool inTerminal = options->screen == "terminal";
	if (options->watch && options->screen == "none")
		throw Error("--watch needs a screen to press keys on: a window, a terminal or a framebuffer");
	stage.draws = options->screen != "none";
	if (((stage.draws && !inTerminal) || !options->pictures.empty()) && !PixelCanvas::canDrawText())
		throw Error("there is no font to draw with; install one, such as fonts-dejavu-core",
		            statusNotToItsEnd);
	if (!options->lang.empty() && inTerminal && !localeIsUtf8())
		stage.note +=
			"deskhost: letters that the locale's character set lacks are shown as question marks; set "
			"LC_ALL=C.UTF-8 to see them";

	stage.half = halfFor(*options);
	stage.rowHeight = inTerminal ? terminalRowHeight : 0;
	stage.holdsErrorsBack = inTerminal && isatty(STDERR_FILENO);
	stage.openScreen = [&] { return openScreen(*options); };
	Session(*options, std::move(stage)).run();
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
