// What is translated and what stays as it is, under a catalogue that has a translation for everything.

#include "support.h"

#include <gtest/gtest.h>

#include <filesystem>

using namespace support;

namespace
{

/// A desk host with a catalogue of its own.
class Translated : public ::testing::Test
{
protected:
	Translated()
	{
		std::string catalogue = "msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=UTF-8\\n\"\n";
		const auto add = [&](const std::string &id, const std::string &text) {
			catalogue += "\nmsgid " + Json(id).dump() + "\nmsgstr " + Json(text).dump() + "\n";
		};
		for (const char *id :
		     {"Vexlo service menu", "process info", "memory info", "scan log", "system info",
		      "show current processes in memory", "show current used and free memory", "show scan log",
		      "show system info", "Kill %s pid?", "kill pid", "delete log", "Delete /var/scaning.log ?",
		      "Warning", "OK", "  123 root telnetd\n",
		      // and what nobody may look up
		      "(%d) %s", "(1) show current processes in memory", "Info", "Memory info",
		      "  PID USER COMMAND\n", "Kill 123 pid?", "Delete %s ?", "/var/scaning.log", "0 a\n", "a\n",
		      "size of /var/scaning.log : 2 bytes", "size of %s : %ld bytes", "MTD blocks:", "dev:\n",
		      "dev:", "size\n", "size", "erasesize\n", "name\n", "Mounts:\n\n", "Mounts:", "Filesystem",
		      "Size", "Used", "Avail.", "Use%", "Mounted", "MemTotal:", "MemTotal:  \n"})
			add(id, marked(id));
		const std::string source = place.write("all.po", catalogue);
		std::filesystem::create_directories(place / "po/xx/LC_MESSAGES");
		const support::Outcome made =
			support::run({"msgfmt", "-o", place / "po/xx/LC_MESSAGES/vexlomenu.mo", source});
		EXPECT_EQ(made.status, 0) << made.err;

		receiver.ps("  PID USER COMMAND\n  123 root telnetd\n  124 root other\n");
		receiver.df("heading\n/dev/root 1 2 3 4% /\n");
		receiver.scanLog("a\n");
		receiver.meminfo(support::repeat("x 1\n", 8) + "MemTotal: 1 kB\n");
		receiver.mtd("dev: size erasesize name\nmtd0: 00020000 00004000 \"a\"\n");
	}

	/// In angle brackets; the line end stays last, as catalogues require.
	static std::string marked(const std::string &id)
	{
		const size_t end = id.find_last_not_of('\n') + 1;
		return "<" + id.substr(0, end) + ">" + id.substr(end);
	}

	/// The screen after these keys; its windows from bottom to top.
	Json after(const std::string &keys)
	{
		const DeskRun run =
			runDesk(receiver.path(), keys, {"--lang", "xx", "--catalogue", "vexlomenu:" + (place / "po")});
		EXPECT_EQ(run.outcome.status, 0) << run.outcome.err;
		return run.dump.back()["windows"];
	}

	static Lines texts(const Json &window, const std::string &type)
	{
		Lines result;
		for (const Json &widget : window["widgets"])
			if (widget["class"] == type)
				result.push_back(widget["text"]);
		return result;
	}

	support::TempFolder place;
	ReceiverFolder receiver;
};

TEST_F(Translated, the_menu_with_its_labels_and_help)
{
	const Json menu = after("").back();
	EXPECT_EQ(menu["title"], "<Vexlo service menu>");
	EXPECT_EQ(menu["widgets"][0]["rows"],
	          Json({"<process info>", "<memory info>", "<scan log>", "<system info>"}));
	EXPECT_EQ(menu["widgets"][0]["help"], "(1) <show current processes in memory>");
}

TEST_F(Translated, the_rows_of_the_processes_and_not_their_heading)
{
	const Json dialog = after("1").back();
	EXPECT_EQ(dialog["title"], "Info");
	EXPECT_EQ(texts(dialog, "eLabel"), (Lines{"  PID USER COMMAND\n"}));
	EXPECT_EQ(dialog["widgets"][0]["rows"], Json({"<  123 root telnetd>\n", "  124 root other\n"}));
}

TEST_F(Translated, the_format_of_the_question_about_a_process)
{
	const Json box = after("1 ok").back();
	EXPECT_EQ(box["title"], "<kill pid>");
	EXPECT_EQ(texts(box, "eLabel"), (Lines{"<Kill 123 pid?>"})) << "translated, then formatted";
}

TEST_F(Translated, nothing_of_the_memory)
{
	const Json dialog = after("2").back();
	EXPECT_EQ(dialog["title"], "Memory info");
	EXPECT_EQ(texts(dialog, "eLabel"), (Lines{"MemTotal:  \n", "1 KB\n"}));
}

TEST_F(Translated, the_button_of_the_log_and_not_its_lines)
{
	const Json dialog = after("3").back();
	EXPECT_EQ(dialog["title"], "Info");
	EXPECT_EQ(texts(dialog, "eButton"), (Lines{"<delete log>"}));
	EXPECT_EQ(texts(dialog, "eLabel"), (Lines{"size of /var/scaning.log : 2 bytes"}));
	EXPECT_EQ(dialog["widgets"][1]["rows"], Json({"0 a\n"}));
}

TEST_F(Translated, the_whole_question_about_the_log)
{
	const Json box = after("3 red").back();
	EXPECT_EQ(box["title"], "<Warning>");
	EXPECT_EQ(texts(box, "eLabel"), (Lines{"<Delete /var/scaning.log ?>"})) << "formatted, then translated";
}

TEST_F(Translated, nothing_of_the_system_but_the_button)
{
	const Json dialog = after("4").back();
	EXPECT_EQ(dialog["title"], "Info");
	EXPECT_EQ(texts(dialog, "eButton"), (Lines{"<OK>"}));
	for (const std::string &text : texts(dialog, "eLabel"))
		EXPECT_EQ(text.find('<'), std::string::npos) << text;
	EXPECT_EQ(texts(dialog, "eLabel").size(), 8u);
}

} // namespace
