// The desk host as a command: its arguments, exit status and output.

#include "support.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

using support::DeskRun;
using support::Json;
using support::Outcome;
using support::ReceiverFolder;
using support::runDesk;
using support::TempFolder;
using support::testPlugin;
using Lines = std::vector<std::string>;

namespace app_test
{

Outcome deskhost(Lines options, const std::map<std::string, std::string> &environment = {})
{
	options.insert(options.begin(), support::deskhostPath());
	return support::run(options, environment);
}

/// Expects one line on standard error that names `named`, and an empty standard output.
void expectRefused(const Outcome &outcome, int status, const std::string &named)
{
	EXPECT_EQ(outcome.status, status);
	EXPECT_EQ(outcome.out, "");
	EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
	EXPECT_EQ(outcome.err.rfind("deskhost: ", 0), 0u) << outcome.err;
	EXPECT_NE(outcome.err.find(named), std::string::npos) << outcome.err;
}

TEST(App, explains_itself)
{
	const Outcome help = deskhost({"--help"});
	EXPECT_EQ(help.status, 0);
	for (const char *option : {"--plugin", "--screen", "--framebuffer", "--remote", "--keys", "--pictures",
	                           "--dump", "--trace", "--root", "--skin", "--lang", "--plays", "--serve",
	                           "--as-is", "--catalogue", "--watch", "--strict"})
		EXPECT_NE(help.out.find(option), std::string::npos) << option;
	EXPECT_EQ(deskhost({"--version"}).out.rfind("deskhost ", 0), 0u);
}

TEST(App, refuses_arguments_that_it_does_not_know)
{
	expectRefused(deskhost({"--sceen", "none"}), 2, "--sceen");
	expectRefused(deskhost({"--screen", "hologram"}), 2, "hologram");
	expectRefused(deskhost({"--plays", "0"}), 2, "0");
	expectRefused(deskhost({"--watch", "--plays", "2"}), 2, "--watch");
	expectRefused(deskhost({"--watch", "--screen", "none"}), 2, "--watch");
	expectRefused(deskhost({"--plays", "many"}), 2, "many");
	expectRefused(deskhost({"--keys", "down sideways ok"}), 2, "sideways");
	expectRefused(deskhost({"--lang", "tlh"}), 2, "tlh");
	expectRefused(deskhost({"--lang", "../de"}), 2, "../de");
}

TEST(App, refuses_empty_names)
{
	for (const char *option :
	     {"--plugin", "--root", "--skin", "--pictures", "--dump", "--trace", "--lang", "--screen"})
		expectRefused(deskhost({option, ""}), 2, option);
}

TEST(App, refuses_files_that_it_cannot_use)
{
	TempFolder folder;
	const std::string file = folder.write("file", "text");
	const std::string missing = folder / "missing/deeper";
	expectRefused(deskhost({"--root", missing}), 2, missing);
	expectRefused(deskhost({"--root", file}), 2, file);
	expectRefused(deskhost({"--skin", missing}), 2, missing);
	expectRefused(deskhost({"--skin", folder.path()}), 2, folder.path());
	expectRefused(deskhost({"--skin", folder.write("bad.toml", "[values\n")}), 2, "bad.toml");
	expectRefused(deskhost({"--pictures", file}), 2, file);
	expectRefused(deskhost({"--pictures", file + "/below"}), 2, file);
	expectRefused(deskhost({"--dump", missing}), 2, missing);
	expectRefused(deskhost({"--trace", missing}), 2, missing);
}

TEST(App, refuses_to_record_twice_into_one_file)
{
	TempFolder folder;
	const std::string file = folder.write("file", ""), other = folder / "other";
	const Lines common = {"--screen", "none", "--plugin", testPlugin("result.so.0")};
	const auto recording = [&](const std::string &dump, const std::string &trace) {
		Lines options = common;
		options.insert(options.end(), {"--dump", dump, "--trace", trace});
		return deskhost(options);
	};
	expectRefused(recording(file, file), 2,
	              "--dump and --trace would overwrite each other in '" + file + "'");
	ASSERT_EQ(link(file.c_str(), other.c_str()), 0);
	expectRefused(recording(file, other), 2, other);
	EXPECT_EQ(recording("/dev/null", "/dev/null").status, 0);

	const Outcome shell =
		support::run({"/bin/sh", "-c",
	                  "exec '" + support::deskhostPath() + "' --screen none --keys exit --dump '" + file +
	                      "' >>'" + file + "'"});
	expectRefused(shell, 2, "standard output");
}

TEST(App, records_into_a_pipe)
{
	TempFolder folder;
	const std::string pipe = folder / "pipe";
	ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
	const Outcome shell =
		support::run({"/bin/sh", "-c",
	                  "timeout 60 '" + support::deskhostPath() + "' --screen none --keys exit --dump '" +
	                      pipe + "' >/dev/null 2>&1 & exec cat '" + pipe + "'"});
	EXPECT_EQ(shell.out.rfind("{\"after\":\"start\"", 0), 0u) << shell.out;
}

TEST(App, refuses_to_record_into_what_it_reads)
{
	TempFolder folder;
	support::ReceiverFolder receiver;
	receiver.scanLog("a log\n");
	const std::string plugin = folder / "plugin.so.0", skin = folder / "skin.toml", link = folder / "link";
	std::filesystem::copy_file(testPlugin("result.so.0"), plugin);
	std::filesystem::copy_file(support::sourcePath("desk/skins/default.toml"), skin);
	const std::string catalogue = folder / "one.mo", log = receiver / "var/scaning.log";
	std::filesystem::copy_file(support::buildPath("po/de/LC_MESSAGES/vexlomenu.mo"), catalogue);
	for (const char *output : {"--dump", "--trace", "--debug"})
		for (const std::string &input : {plugin, skin, catalogue, log})
			for (const bool isHard : {false, true}) {
				if (isHard)
					std::filesystem::create_hard_link(input, link);
				else
					std::filesystem::create_symlink(input, link);
				const std::string before = support::readFile(input);
				expectRefused(deskhost({"--screen", "none", "--plugin", plugin, "--skin", skin, "--root",
				                        receiver.path(), output, link}),
				              2, output + std::string(" would overwrite "));
				EXPECT_EQ(support::readFile(input), before) << output;
				std::filesystem::remove(link);
			}

	const std::string fresh = folder / "fresh";
	std::filesystem::create_symlink("fresh", folder / "to fresh");
	for (const std::string &same :
	     {folder / "./fresh", folder / "to fresh",
	      folder / "../" + std::filesystem::path(folder.path()).filename().string() + "/fresh"})
		for (const char *other : {"--trace", "--debug"})
			expectRefused(deskhost({"--screen", "none", "--keys", "exit", "--dump", fresh, other, same}), 2,
			              "would overwrite each other");
	EXPECT_FALSE(support::exists(fresh));
	const Outcome gone =
		support::run({"/bin/sh", "-c",
	                  "mkdir \"$1/gone\"; cd \"$1/gone\"; rmdir \"$1/gone\"; : >\"$1/old\"; exec \"$0\" "
	                  "--screen none --keys exit --root . --dump \"$1/old\"",
	                  support::deskhostPath(), folder.path()});
	EXPECT_EQ(gone.err.find("overwrite"), std::string::npos) << gone.err;

	std::filesystem::create_symlink(skin, folder / "00-start.png");
	const std::string before = support::readFile(skin);
	EXPECT_EQ(deskhost({"--screen", "none", "--skin", skin, "--pictures", folder.path()}).status, 0);
	EXPECT_EQ(support::readFile(skin), before);
	EXPECT_GT(std::filesystem::file_size(folder / "00-start.png"), 1000u);
}

TEST(App, leaves_what_was_recorded_when_there_is_no_plugin_or_screen)
{
	TempFolder folder;
	const std::string missing = folder / "missing/file";
	const std::string picture = folder.write("pictures/07-ok.png", "yesterday's");
	EXPECT_EQ(deskhost({"--screen", "none", "--pictures", folder / "pictures", "--dump", missing}).status, 2);
	EXPECT_TRUE(support::exists(picture));
	for (const char *output : {"--dump", "--trace", "--debug"}) {
		const std::string file = folder.write("yesterday", "yesterday's\n");
		EXPECT_EQ(deskhost({"--screen", "none", "--plugin", folder / "mistyped", output, file}).status, 1);
		EXPECT_EQ(
			deskhost({"--screen", "framebuffer", "--framebuffer", folder / "mistyped", output, file}).status,
			2);
		EXPECT_EQ(support::readFile(file), "yesterday's\n") << output;
		EXPECT_EQ(deskhost({"--screen", "none", "--keys", "exit", output, file, "--pictures", file}).status,
		          2);
		EXPECT_EQ(deskhost({"--screen", "none", "--keys", "exit", output, file,
		                    output == std::string("--debug") ? "--trace" : "--debug", missing})
		              .status,
		          2);
		EXPECT_EQ(support::readFile(file), "yesterday's\n") << output;
	}
}

TEST(App, reports_that_it_could_not_print)
{
	TempFolder folder;
	const std::string dump = folder / "dump";
	for (const char *closing : {">&-", ">/dev/full"}) {
		const Outcome outcome =
			support::run({"/bin/sh", "-c",
		                  "exec '" + support::deskhostPath() + "' --screen none --keys exit --dump '" + dump +
		                      "' " + closing});
		expectRefused(outcome, 2, "standard output");
		EXPECT_EQ(support::readFile(dump).find("plugin_exec"), std::string::npos) << closing;
	}
}

TEST(App, reports_that_its_help_could_not_be_printed)
{
	for (const char *option : {"--help", "--version"}) {
		const Outcome outcome = support::run(
			{"/bin/sh", "-c", "exec '" + support::deskhostPath() + "' " + option + " >/dev/full"});
		expectRefused(outcome, 2, "standard output");
	}
}

TEST(App, never_hands_controls_on_to_a_terminal)
{
	TempFolder folder;
	const std::string csi = "\xc2\x9b", name = "no\x1b[2J" + csi + "31m\xff.so";
	const auto isClean = [](const std::string &text) {
		return std::all_of(text.begin(), text.end(),
		                   [](char c) { return c == '\n' || (c >= ' ' && c < 0x7f); });
	};
	for (const char *option :
	     {"--plugin", "--root", "--skin", "--dump", "--trace", "--lang", "--keys", "--screen", "--plays"}) {
		const Outcome outcome =
			deskhost({"--screen", "none", option, folder / "none/" + name}, {{"LC_ALL", "C"}});
		EXPECT_NE(outcome.status, 0) << option;
		EXPECT_TRUE(isClean(outcome.err)) << outcome.err;
	}
	ReceiverFolder receiver;
	receiver.scanLog(name + "\n");
	const Outcome outcome = deskhost({"--screen", "none", "--root", receiver.path(), "--keys", "3", "--dump",
	                                  folder / "dump", "--trace", folder / "trace"});
	EXPECT_EQ(outcome.status, 0);
	EXPECT_TRUE(isClean(support::readFile(folder / "dump")));
	EXPECT_TRUE(isClean(support::readFile(folder / "trace")));
}

TEST(App, says_that_there_is_no_font)
{
	TempFolder folder;
	const std::string none = folder.write("fonts.conf", "<fontconfig></fontconfig>");
	const auto drawing = [&](const Lines &options) {
		Lines all = {"--screen", "none", "--keys", "exit"};
		all.insert(all.end(), options.begin(), options.end());
		return deskhost(all, {{"FONTCONFIG_FILE", none}});
	};
	expectRefused(drawing({"--pictures", folder / "pictures"}), 1, "font");
	EXPECT_EQ(drawing({}).status, 0) << "nothing is drawn";
}

TEST(App, refuses_a_screen_that_it_cannot_open)
{
	expectRefused(deskhost({"--screen", "window"}, {{"DISPLAY", ":987"},
	                                                {"WAYLAND_DISPLAY", ""},
	                                                {"XDG_RUNTIME_DIR", "/nowhere"},
	                                                {"SDL_VIDEODRIVER", "x11"}}),
	              2, "window");
	expectRefused(deskhost({"--screen", "terminal"}), 2, "terminal");
	expectRefused(
		deskhost({"--screen", "framebuffer", "--remote", "/dev/null", "--framebuffer", "/dev/null"}), 2,
		"/dev/null");
}

TEST(App, tells_why_a_plugin_cannot_be_loaded)
{
	TempFolder folder;
	expectRefused(deskhost({"--plugin", folder / "missing.so.0"}), 1, folder / "missing.so.0");
	expectRefused(deskhost({"--plugin", folder.path()}), 1, folder.path());
	const std::string text = folder.write("text.so.0", "no plugin at all");
	expectRefused(deskhost({"--plugin", text}), 1, text);
	const std::string empty = folder.write("empty.so.0", "");
	expectRefused(deskhost({"--plugin", empty}), 1, empty);
	expectRefused(deskhost({"--plugin", testPlugin("no_entry.so.0")}), 1, "plugin_exec");
	expectRefused(deskhost({"--plugin", testPlugin("no_function.so.0")}), 1,
	              "its plugin_exec is no function");
	expectRefused(deskhost({"--plugin", testPlugin("unresolved.so.0")}), 1,
	              "undefined symbol: eSomethingElse");
	expectRefused(deskhost({"--plugin", "missing.so.0"}), 1, "missing.so.0");
}

TEST(App, waits_for_no_pipe)
{
	ReceiverFolder receiver;
	const std::string pipe = receiver / "pipe";
	ASSERT_EQ(mkfifo(pipe.c_str(), 0666), 0);
	expectRefused(deskhost({"--skin", pipe}), 2, "it is a pipe");
	expectRefused(deskhost({"--plugin", pipe}), 1, pipe);
	for (const char *through : {"", "env"})
		for (const auto &[name, key] :
		     {std::pair("proc/meminfo", "2"), {"var/scaning.log", "3"}, {"proc/mtd", "4"}}) {
			receiver.write(name, "");
			std::filesystem::remove(receiver / name);
			ASSERT_EQ(mkfifo((receiver / name).c_str(), 0666), 0);
			Lines options = {"--screen", "none", "--root", receiver.path(), "--keys", key};
			if (*through)
				options.insert(options.end(), {"--through", through});
			const Outcome outcome = deskhost(options);
			EXPECT_EQ(outcome.status, 0) << outcome.err;
			EXPECT_NE(outcome.err.find("which cannot be read: it is a pipe\n"), std::string::npos)
				<< outcome.err;
			std::filesystem::remove(receiver / name);
		}
}

TEST(App, finds_relative_names_again_when_the_plugin_leaves_its_folder)
{
	TempFolder folder;
	std::filesystem::copy_file(testPlugin("misbehaves.so.0"), folder / "plugin.so.0");
	const Outcome outcome = support::run(
		{"/bin/sh", "-c",
	     "cd '" + folder.path() + "'; exec '" + support::deskhostPath() +
	         "' --screen none --plays 2 --plugin plugin.so.0 --pictures pictures --keys '8 exit'"});
	EXPECT_EQ(outcome.status, 0) << outcome.err;
	EXPECT_TRUE(support::exists(folder / "pictures/05-exit.png"));
}

TEST(App, says_that_it_ran_what_a_plugin_returned)
{
	const Outcome outcome = deskhost({"--screen", "none", "--plugin", testPlugin("result.so.0")});
	EXPECT_EQ(outcome.out, "plugin_exec returned 4711\n");
	EXPECT_EQ(outcome.status, 0);
}

TEST(App, gives_up_on_a_plugin_that_never_returns)
{
	const Outcome outcome = deskhost({"--screen", "none", "--plugin", testPlugin("stuck.so.0")});
	EXPECT_EQ(outcome.status, 1);
	EXPECT_NE(outcome.err.find("does not return"), std::string::npos) << outcome.err;
}

TEST(App, chooses_no_screen_without_display_and_terminal)
{
	const Outcome outcome = deskhost({"--keys", "exit"}, {{"DISPLAY", ""}, {"WAYLAND_DISPLAY", ""}});
	EXPECT_EQ(outcome.out, "plugin_exec returned -1: the viewer left the menu\n");
}

TEST(App, presses_exit_until_the_plugin_returns)
{
	ReceiverFolder receiver;
	receiver.ps("PID\n1 init\n");
	for (const char *keys : {"", "ok", "ok ok", "down ok"}) {
		const DeskRun run = runDesk(receiver.path(), keys);
		EXPECT_EQ(run.outcome.out, "plugin_exec returned -1: the viewer left the menu\n") << keys;
		EXPECT_EQ(run.outcome.status, 0);
	}
}

TEST(App, tells_which_keys_were_never_pressed)
{
	ReceiverFolder receiver;
	const DeskRun run = runDesk(receiver.path(), "exit ok down");
	EXPECT_EQ(run.outcome.status, 0);
	EXPECT_NE(run.outcome.err.find("ok down"), std::string::npos) << run.outcome.err;
}

TEST(App, plays_as_often_as_told)
{
	ReceiverFolder receiver;
	const DeskRun run = runDesk(receiver.path(), "down exit", {"--plays", "3"});
	EXPECT_EQ(run.outcome.out, support::repeat("plugin_exec returned -1: the viewer left the menu\n", 3));
	ASSERT_EQ(run.dump.size(), 9u);
	for (size_t i = 0; i < 9; i += 3) {
		EXPECT_EQ(run.dump[i]["after"], "start");
		EXPECT_EQ(run.widget(i, "eListBox<eListBoxEntryMenu>")["current"], 0) << "nothing survives a run";
		EXPECT_EQ(run.dump[i + 2]["after"], "exit");
	}
}

TEST(App, knows_english_and_lists_the_languages_in_order)
{
	ReceiverFolder receiver;
	for (const char *english : {"en", "en_GB.UTF-8"})
		EXPECT_EQ(runDesk(receiver.path(), "", {"--lang", english}).window(0)["title"], "Vexlo service menu");
	expectRefused(deskhost({"--lang", "tlh"}), 2, "--lang knows: ar de el en es fr it pl ru tr");
}

TEST(App, takes_the_texts_from_the_named_catalogue)
{
	ReceiverFolder receiver;
	receiver.write("texts/xx/LC_MESSAGES/other.mo",
	               support::readFile(support::buildPath("po/de/LC_MESSAGES/vexlomenu.mo")));
	const std::string german = runDesk(receiver.path(), "", {"--lang", "de_AT.UTF-8"}).window(0)["title"];
	const DeskRun run =
		runDesk(receiver.path(), "", {"--lang", "xx", "--catalogue", "other:" + (receiver / "texts")});
	EXPECT_EQ(run.window(0)["title"], german);
	expectRefused(deskhost({"--lang", "de", "--catalogue", "other"}), 2, "'other'");
	expectRefused(deskhost({"--lang", "de", "--catalogue", "vexlomenu:" + (receiver / "texts")}), 2,
	              "--lang knows: en");
}

TEST(App, answers_in_its_own_words_and_never_in_the_plugins)
{
	ReceiverFolder receiver;
	receiver.scanLog("a\n");
	const std::string text = "msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=UTF-8\\n\"\n"
							 "msgid \"Yes\"\nmsgstr \"not this\"\nmsgid \"No\"\nmsgstr \"nor this\"\n";
	const std::string po = receiver.write("texts/mine.po", text);
	const auto answers = [&](const std::string &language) {
		const std::string to = "texts/" + language + "/LC_MESSAGES/vexlomenu.mo";
		receiver.write(to, "");
		const support::Outcome made = support::run({"msgfmt", "-o", receiver / to, po});
		EXPECT_EQ(made.status, 0) << made.err;
		const DeskRun run = runDesk(receiver.path(), "3 red",
		                            {"--lang", language, "--catalogue", "vexlomenu:" + (receiver / "texts")});
		return Json({run.widget(2, "eButton", 0)["text"], run.widget(2, "eButton", 1)["text"]});
	};
	EXPECT_EQ(answers("de"), Json({"Ja", "Nein"}));
	EXPECT_EQ(answers("xx"), Json({"Yes", "No"})) << "a language that the host does not have";
}

TEST(App, numbers_the_help_in_every_language)
{
	ReceiverFolder receiver;
	const DeskRun english = runDesk(receiver.path(), "down down down");
	for (const std::string &language : support::lines(support::readFile(support::sourcePath("po/LINGUAS")))) {
		const DeskRun run = runDesk(receiver.path(), "down down down", {"--lang", language});
		const char *type = "eListBox<eListBoxEntryMenu>";
		EXPECT_NE(run.window(0)["title"], english.window(0)["title"]) << language;
		EXPECT_NE(run.widget(0, type)["rows"], english.widget(0, type)["rows"]) << language;
		for (size_t i = 0; i < 4; ++i) {
			const std::string help = run.widget(i, type)["help"];
			EXPECT_EQ(help.rfind("(" + std::to_string(i + 1) + ") ", 0), 0u) << language << ": " << help;
			EXPECT_NE(help, english.widget(i, type)["help"]) << language;
		}
	}
}

TEST(App, needs_no_locale_for_any_language)
{
	ReceiverFolder receiver;
	receiver.write("locales/.keep", "");
	const support::Environment noLocale = {
		{"LOCPATH", receiver / "locales"}, {"LC_ALL", ""}, {"LANG", ""}, {"LANGUAGE", ""}};
	for (const std::string &language : support::lines(support::readFile(support::sourcePath("po/LINGUAS")))) {
		const auto shown = [&](const support::Environment &environment) {
			const DeskRun run = runDesk(receiver.path(), "3 red", {"--lang", language}, environment);
			return run.window(0).dump() + run.window(1).dump() + run.window(2).dump();
		};
		const std::string texts = shown({{"LC_ALL", "C.UTF-8"}});
		EXPECT_EQ(texts.find("Vexlo service menu"), std::string::npos) << language;
		EXPECT_EQ(texts.find("delete log"), std::string::npos) << language;
		EXPECT_EQ(shown(noLocale), texts) << language;
	}
}

TEST(App, says_why_it_cannot_show_a_language)
{
	ReceiverFolder receiver;
	const std::string german = support::readFile(support::buildPath("po/de/LC_MESSAGES/vexlomenu.mo"));
	const auto expectRefusedFor = [&](const std::string &reason) {
		expectRefused(
			deskhost({"--screen", "none", "--lang", "xx", "--catalogue", "vexlomenu:" + receiver.path()}), 2,
			reason);
	};
	const std::string path =
		receiver.write("xx/LC_MESSAGES/vexlomenu.mo", german.substr(0, german.size() / 2));
	expectRefusedFor("cannot use the message catalogue '" + path + "': its text number ");
	unlink(path.c_str());
	ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
	expectRefusedFor("cannot read the message catalogue '" + path + "': it is no file");
}

TEST(App, does_not_take_the_language_of_the_desk)
{
	ReceiverFolder receiver;
	const DeskRun run = runDesk(receiver.path(), "", {},
	                            {{"LANG", "de_DE.UTF-8"}, {"LANGUAGE", "de"}, {"LC_ALL", "C.UTF-8"}});
	EXPECT_EQ(run.window(0)["title"], "Vexlo service menu") << "the same keys, the same screens";
}

TEST(App, spends_nothing_on_lines_that_are_not_on_the_screen)
{
	// Laying out all 100,000 mounts would take minutes.
	ReceiverFolder receiver;
	receiver.df(support::repeat("/dev/x 1 2 3 4% /\n", 100000));
	TempFolder pictures;
	support::Command command = support::deskhost();
	command.insert(command.end(), {"--screen", "none", "--root", receiver.path(), "--keys",
	                               "4 up down left right exit exit", "--pictures", pictures.path()});
	const Outcome outcome = support::run(command); // no dump: it would hold all lines after each key
	EXPECT_EQ(outcome.status, 0) << outcome.err;
	const std::filesystem::directory_iterator drawn(pictures.path());
	EXPECT_EQ(std::distance(begin(drawn), end(drawn)), 8);
}

} // namespace app_test
