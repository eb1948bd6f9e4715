#include "options.h"

#include "desk_error.h"

#include <CLI/CLI.hpp>

#include <filesystem>
#include <iostream>

#include <sys/auxv.h>

namespace desk
{

namespace fs = std::filesystem;

std::string besideProgram(std::initializer_list<const char *> places)
{
	std::error_code failed;
	fs::path program = fs::read_symlink("/proc/self/exe", failed);
	if (failed) // without /proc: argv[0]
		program = fs::absolute(reinterpret_cast<const char *>(getauxval(AT_EXECFN)), failed);
	const fs::path folder = program.parent_path();
	for (const char *place : places)
		if (fs::exists(folder / place, failed))
			return (folder / place).lexically_normal();
	return (folder / *places.begin()).lexically_normal();
}

std::optional<Options> readArguments(int argc, char **argv)
{
	Options options;
	std::string script;
	options.plugin = besideProgram({"vexlomenu.so.0", DESK_INSTALLED_PLUGIN});
	options.skin = besideProgram({"skins/default.toml", "../share/deskhost/skins/default.toml"});

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
	cli.add_option("--keys", script,
	               "Press these keys first, one after another:\n" + keyNames() +
	                   "\n"
	                   "With --screen none, exit follows until the plugin returns")
		->type_name("KEYS");
	cli.add_option(
		   "--pictures", options.pictures,
		   "Write a PNG of the screen at the start and after every key: 00-start.png, 01-ok.png, ...\n"
		   "Those of an earlier run are removed")
		->type_name("DIR");
	cli.add_option("--dump", options.dump, "Write what is on the screen at the same times, as JSON lines")
		->type_name("FILE");
	cli.add_option("--trace", options.trace,
	               "Write every call that the plugin makes to its host, a line each")
		->type_name("FILE");
	cli.add_option("--debug", options.debug,
	               "Write debug lines and other notes to this file as well, with keys and calls")
		->type_name("FILE");
	cli.add_option("--root", options.root,
	               "Use this folder as the receiver's files and commands. The plugin can change nothing else "
	               "where the\n"
	               "kernel permits a sandbox; kills are only reported")
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
	cli.add_option(
		   "--through", options.through,
		   "Start the half that runs the plugin by this command, which passes standard input and output on:\n"
		   "valgrind, an emulator, gdbserver, ssh to a box. It is the one beside the plugin, if there is one")
		->type_name("COMMAND");
	cli.add_option("--plays", options.plays, "Load, run and unload the plugin N times in one process")
		->type_name("N")
		->check(CLI::Range(1, 1000000000));
	cli.add_flag(
		   "--watch", options.watch,
		   "Whenever the plugin's file changes, load it anew and press the same keys again, but none that\n"
		   "killed or deleted")
		->excludes("--plays");
	cli.add_flag(
		"--strict", options.strict,
		"Fail, with status 1, when the desk host notices a mistake in the plugin, such as a text that is "
		"cut off");
	// An empty name comes from an unset variable.
	for (CLI::Option *option : cli.get_options())
		if (option->get_items_expected_max() > 0 && option->get_name() != "--keys")
			option->check([](const std::string &value) { return value.empty() ? "a name is missing" : ""; },
			              "");
	cli.footer(
		"On the keyboard: arrows, Page Up/Down, Home, End, Enter (ok), Esc (exit), F1-F4 (red green yellow\n"
		"blue), digits; in the window and the terminal also h j k l, q (exit), r g y b, F9 (the last debug "
		"lines).\n\n"
		"Exit status: 0 the plugin ran to its end; 1 it cannot be loaded or did not run to its end, "
		"--strict\n"
		"noticed something, or there is no font or memory; 2 bad arguments, or something could not be\n"
		"written.");
	try {
		cli.parse(argc, argv);
	} catch (const CLI::ParseError &problem) {
		if (problem.get_exit_code() != 0)
			throw Error(std::string(problem.what()) + "; see deskhost --help");
		cli.exit(problem);
		if (!std::cout.flush())
			throw Error("cannot write to standard output");
		return std::nullopt;
	}

	for (const std::string &path : options.served) {
		const fs::path whole(path);
		if (!whole.is_absolute() || !whole.has_filename() || whole != whole.lexically_normal())
			throw Error("cannot serve '" + path + "': name a file by its whole path, such as /etc/hostname");
	}
	options.keys = parseKeyScript(script);
	return options;
}

} // namespace desk
