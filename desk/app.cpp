#include "app.h"

#include "desk.h"
#include "files.h"
#include "framebuffer_screen.h"
#include "key.h"
#include "note_log.h"
#include "pixel_canvas.h"
#include "plugin.h"
#include "recorder.h"
#include "screen.h"
#include "skin.h"
#include "supervisor.h"
#include "terminal_screen.h"
#include "texts.h"
#include "trace.h"
#include "visible_text.h"
#include "watched_run.h"
#include "window_screen.h"

#include <CLI/CLI.hpp>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <new>
#include <utility>
#include <vector>

namespace desk
{

namespace
{

namespace fs = std::filesystem;

constexpr int statusNotStarted = 1;
constexpr int statusBadArguments = 2;

struct Options
{
	std::string plugin;
	std::string screen;
	FramebufferDevices devices;
	std::string keys;
	std::string pictures;
	std::string dump;
	std::string trace;
	std::string debug;
	std::string root;
	std::string skin;
	std::string lang;
	std::string catalogue;
	std::vector<std::string> served;
	bool asIs = false;
	bool watch = false;
	int runs = 1;
};

int fail(int status, const std::string &message)
{
	std::fprintf(stderr, "deskhost: %s\n", localText(message).c_str());
	return status;
}

/// The plugin is compiled without exceptions: none may pass it.
[[noreturn]] void endWithoutMemory()
{
	static const char message[] =
		"deskhost: there is not enough memory; give it more (ulimit -v), or look at less\n";
	[[maybe_unused]] const ssize_t written = write(STDERR_FILENO, message, sizeof message - 1);
	_exit(statusNotStarted);
}

/// A standard stream that is closed must not become the first file that is opened: it is taken up in the
/// direction in which it cannot be used.
void occupyStandardStreams()
{
	for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
		if (fcntl(stream, F_GETFD) < 0)
			::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

/// Whether what is recorded would overwrite something else that is written, by whatever name.
bool overwrites(const Options &options, std::string &error)
{
	const struct
	{
		const char *name;
		std::string path;
	} outputs[] = {{"standard output", "/proc/self/fd/1"},
	               {"standard error", "/proc/self/fd/2"},
	               {"--dump", options.dump},
	               {"--trace", options.trace},
	               {"--debug", options.debug}};
	std::error_code failed;
	for (size_t recorded = 2; recorded < std::size(outputs); ++recorded)
		for (size_t other = 0; other < recorded; ++other)
			if (fs::is_regular_file(outputs[recorded].path, failed) &&
			    fs::equivalent(outputs[recorded].path, outputs[other].path, failed)) {
				error = std::string(outputs[other].name) + " and " + outputs[recorded].name +
				        " would overwrite each other in '" + outputs[recorded].path +
				        "'; give each a file of its own";
				return true;
			}
	return false;
}

fs::path programFolder()
{
	std::error_code failed;
	return fs::read_symlink("/proc/self/exe", failed).parent_path();
}

/// The first of these places, relative to the program, that exists; the first one when none does.
fs::path find(std::initializer_list<const char *> places)
{
	std::error_code failed;
	for (const char *place : places)
		if (const fs::path path = programFolder() / place; fs::exists(path, failed))
			return path.lexically_normal();
	return (programFolder() / *places.begin()).lexically_normal();
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
	std::string why;
	if (!displayIsNamed())
		return otherwise;
	if (displayAnswers(why))
		return "window";
	// It was named long ago, as in a terminal that has outlived it.
	note = "deskhost: " + why + "; this is --screen " + otherwise;
	return otherwise;
}

/// Shows the plugin's texts in `lang`. `catalogue` is DOMAIN[:FOLDER], the folder being by default the one that
/// comes with this program.
bool setLanguage(const std::string &lang, const std::string &catalogue, std::string &error)
{
	const size_t colon = std::min(catalogue.find(':'), catalogue.size());
	const std::string folder =
		colon < catalogue.size() ? catalogue.substr(colon + 1) : find({"../po", "../share/locale"}).string();
	return Texts::get().setLanguage(lang, folder, catalogue.substr(0, colon), error);
}

/// What the plugin is called: "vexlomenu" for ".../vexlomenu.so.0".
std::string pluginName(const std::string &path)
{
	const std::string file = fs::path(path).filename();
	return file.substr(0, file.find(".so"));
}

std::unique_ptr<Screen> openScreen(const Options &options, std::string &error)
{
	const std::string &name = options.screen;
	if (name == "window")
		return makeWindowScreen(pluginName(options.plugin), error);
	if (name == "terminal")
		return makeTerminalScreen(error);
	if (name == "framebuffer")
		return makeFramebufferScreen(options.devices, error);
	return makeNoScreen();
}

std::string lineFor(int result)
{
	// -1 would read like a failure.
	return "plugin_exec returned " + std::to_string(result) +
	       (result == -1 ? ": the viewer left the menu\n" : "\n");
}

std::string runOnce(Plugin &plugin, const std::vector<Key> &keys)
{
	Desk &desk = Desk::get();
	desk.press(keys);
	desk.beginRun();
	const int result = plugin.exec();
	desk.endRun();
	return lineFor(result);
}

} // namespace

int runApp(int argc, char **argv)
{
	occupyStandardStreams();
	std::set_new_handler(endWithoutMemory);
	// Only what characters are is the desk's: numbers and messages are the same everywhere.
	std::setlocale(LC_CTYPE, "");

	Options options;
	options.plugin = find({"vexlomenu.so.0", DESK_INSTALLED_PLUGIN});
	options.skin = find({"skins/default.toml", "../share/deskhost/skins/default.toml"});

	CLI::App cli(
		"Runs a receiver's service plugin on a desk computer: draws its screens and takes the keyboard\n"
		"(or a script) as the remote control.",
		"deskhost");
	cli.set_version_flag("--version", "deskhost " DESK_VERSION);
	cli.add_option("--plugin", options.plugin, "The plugin to load; by default the one built beside deskhost")
		->type_name("PATH");
	cli.add_option("--screen", options.screen,
	               "window, terminal, framebuffer or none; by default a window where a display is, else the "
	               "terminal,\n"
	               "else none")
		->type_name("WHERE")
		->check(CLI::IsMember({"window", "terminal", "framebuffer", "none"}));
	cli.add_option("--framebuffer", options.devices.framebuffer,
	               "The device that --screen framebuffer draws on; by default the first there is")
		->type_name("DEVICE");
	cli.add_option("--remote", options.devices.remote,
	               "The input device of its remote control; by default one with an OK key, else a keyboard")
		->type_name("DEVICE");
	cli.add_option(
		   "--keys", options.keys,
		   "Press these keys first, one after another: up down left right pageup pagedown home end ok exit\n"
		   "red green yellow blue 0-9. With --screen none, exit follows until the plugin returns")
		->type_name("KEYS");
	cli.add_option("--pictures", options.pictures,
	               "Write a PNG of the screen at the start and after every key: 00-start.png, 01-ok.png, ...")
		->type_name("DIR");
	cli.add_option("--dump", options.dump, "Write what is on the screen at the same times, as JSON lines")
		->type_name("FILE");
	cli.add_option("--trace", options.trace,
	               "Write every call that the plugin makes to its host, a line each")
		->type_name("FILE");
	cli.add_option("--debug", options.debug, "Write debug lines and other notes to this file as well")
		->type_name("FILE");
	cli.add_option(
		   "--root", options.root,
		   "Serve the receiver's files from this folder and run the commands in its bin, none else. Kills\n"
		   "are only reported, and commands can signal nobody where the kernel has process namespaces")
		->type_name("DIR");
	cli.add_option("--serve", options.served,
	               "Serve one more file from the --root folder, by its whole path; may be given again")
		->type_name("PATH")
		->allow_extra_args(false)
		->needs("--root");
	cli.add_flag(
		   "--as-is", options.asIs,
		   "Without --root: this computer's own ps, df, kill and memory summary, not those of a receiver")
		->excludes("--root");
	cli.add_option("--skin", options.skin, "The look: a skin file")->type_name("FILE");
	cli.add_option("--lang", options.lang, "The language of the plugin's texts, such as de")
		->type_name("LANG");
	cli.add_option(
		   "--catalogue", options.catalogue,
		   "Where those texts are: the domain of the catalogue, by default the plugin's name, and the\n"
		   "folder that holds LANG/LC_MESSAGES/DOMAIN.mo")
		->type_name("DOMAIN[:FOLDER]");
	cli.add_option("--plays", options.runs, "Load, run and unload the plugin N times in one process")
		->type_name("N")
		->check(CLI::Range(1, 1000000000));
	cli.add_flag(
		   "--watch", options.watch,
		   "Whenever the plugin's file changes, load it anew and press the same keys again, but none that\n"
		   "killed or deleted")
		->excludes("--plays");
	// An empty name is a variable that was not set, not a wish.
	for (CLI::Option *option : cli.get_options())
		if (option->get_items_expected_max() > 0 && option->get_name() != "--keys")
			option->check([](const std::string &value) { return value.empty() ? "a name is missing" : ""; },
			              "");
	cli.footer(
		"On the keyboard: arrows, Page Up/Down, Home, End, Enter (ok), Esc (exit), F1-F4 (red green yellow\n"
		"blue), digits; in the window and the terminal also h j k l, q (exit), r g y b, F9 (the last debug "
		"lines).\n\n"
		"Exit status: 0 the plugin ran to its end; 1 it cannot be loaded or did not end by itself, or there "
		"is no\n"
		"font or memory; 2 bad arguments, or something could not be written.");
	try {
		cli.parse(argc, argv);
	} catch (const CLI::ParseError &problem) {
		if (problem.get_exit_code() == 0) {
			cli.exit(problem);
			return std::cout.flush() ? 0 : fail(statusBadArguments, "cannot write to standard output");
		}
		return fail(statusBadArguments, std::string(problem.what()) + "; see deskhost --help");
	}

	std::string error;
	const std::optional<std::vector<Key>> keys = parseKeyScript(options.keys, error);
	if (!keys)
		return fail(statusBadArguments, error);
	std::optional<Skin> skin = Skin::load(options.skin, error);
	if (!skin)
		return fail(statusBadArguments, error);
	if (!options.lang.empty() &&
	    !setLanguage(options.lang, options.catalogue.empty() ? pluginName(options.plugin) : options.catalogue,
	                 error))
		return fail(statusBadArguments, error);
	if (!options.root.empty() && !Files::get().setRoot(options.root, error))
		return fail(statusBadArguments, error);
	for (const std::string &path : options.served)
		if (!Files::get().serve(path, error))
			return fail(statusBadArguments, error);
	std::string note;
	if (options.screen.empty())
		options.screen = likelyScreen(note);
	if (options.screen == "terminal")
		takeTerminal(); // before anything is opened: a trace to /dev/stderr is kept with the rest
	Recorder recorder;
	if (!options.pictures.empty() && !recorder.openPictures(options.pictures, error))
		return fail(statusBadArguments, error);
	if (!options.dump.empty() && !recorder.openDump(options.dump, error))
		return fail(statusBadArguments, error);
	if (!options.trace.empty() && !Trace::get().open(options.trace, error))
		return fail(statusBadArguments, error);
	if (!options.debug.empty() && !NoteLog::get().open(options.debug, error))
		return fail(statusBadArguments, error);
	if (overwrites(options, error))
		return fail(statusBadArguments, error);
	const bool drawsPixels = options.screen != "terminal" && options.screen != "none";
	if ((drawsPixels || !options.pictures.empty()) && !PixelCanvas::canDrawText())
		return fail(statusNotStarted,
		            "there is no font to draw with; install one, such as fonts-dejavu-core");

	// Loading comes before the screen, so that a plugin that cannot be loaded flashes nothing up.
	std::unique_ptr<Plugin> plugin = Plugin::load(options.plugin, error);
	if (!plugin)
		return fail(statusNotStarted, error);
	if (options.root.empty() && !options.asIs)
		Files::get().makeReceiver();
	if (options.watch && options.screen == "none")
		return fail(statusBadArguments,
		            "--watch needs a screen to press keys on: a window, a terminal or a framebuffer");
	std::unique_ptr<Screen> screen = openScreen(options, error);
	if (!screen)
		return fail(statusBadArguments, error);

	if (const int height = screen->rowHeight())
		skin->setValue("fontsize", height);

	Desk &desk = Desk::get();
	desk.setSkin(std::move(*skin));
	desk.setRecorder(&recorder);
	desk.setScreen(std::move(screen));
	if (!note.empty())
		desk.screen().note(note);
	if (!options.lang.empty() && options.screen == "terminal" && !localeIsUtf8())
		desk.screen().note("deskhost: letters that the locale's character set lacks are shown as question "
		                   "marks; set LC_ALL=C.UTF-8 to see them");

	std::string returned;
	if (options.watch) {
		plugin.reset();
		int result = 0;
		if (runWatched(options.plugin, *keys, result, error))
			returned = lineFor(result);
	} else {
		returned = runOnce(*plugin, *keys);
		plugin.reset();
	}
	for (int i = 1; i < options.runs && !desk.screen().closed(); ++i) {
		plugin = Plugin::load(options.plugin, error);
		if (!plugin)
			break;
		returned += runOnce(*plugin, *keys);
		plugin.reset();
	}
	const std::string lost = desk.screen().lost();
	desk.setScreen(nullptr);
	desk.setRecorder(nullptr);
	errno = 0;
	const bool printed = std::fputs(returned.c_str(), stdout) != EOF && std::fflush(stdout) == 0;
	const std::string whyNot = std::strerror(errno);

	if (!error.empty()) // the plugin has gone between two runs
		return fail(statusNotStarted, error);
	if (!lost.empty())
		return fail(statusNotStarted, lost);
	if (!recorder.close(error))
		return fail(statusBadArguments, error);
	if (!Trace::get().close())
		return fail(statusBadArguments,
		            "cannot write all of the trace to '" + options.trace + "'; is the disk full?");
	if (!NoteLog::get().close())
		return fail(statusBadArguments,
		            "cannot write all debug lines to '" + options.debug + "'; is the disk full?");
	if (!printed)
		return fail(statusBadArguments, "cannot write to standard output: " + whyNot);
	return 0;
}

} // namespace desk
