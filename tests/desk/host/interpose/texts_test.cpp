// The look-up of texts that the desk host exports in place of libc's, called as a plugin calls it.

#include "caller.h"
#include "support.h"
#include "texts.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

#include <cerrno>
#include <clocale>
#include <libintl.h>

using desk::PluginRuns;
using desk::Texts;
using support::TempFolder;

namespace texts_test
{

/// A folder of catalogues; the host offers only some of their languages.
class Shown : public ::testing::Test
{
protected:
	void add(const std::string &language, const std::string &domain, const std::string &messages) const
	{
		const std::string header = "msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=UTF-8\\n\"\n";
		const std::string to = language + "/LC_MESSAGES/" + domain + ".mo";
		place.write(to, "");
		const support::Outcome outcome =
			support::run({"msgfmt", "-o", place / to, place.write("in.po", header + messages)});
		EXPECT_EQ(outcome.status, 0) << outcome.err;
	}

	void show(const std::string &language) const { Texts::get().setLanguage(language, place.path(), "mine"); }

	TempFolder place;
};

TEST_F(Shown, the_texts_of_the_plugins_own_domain)
{
	add("de", "mine", "msgid \"text\"\nmsgstr \"Text\"\n");
	show("de_AT.UTF-8");
	EXPECT_STREQ(dcgettext(nullptr, "text", LC_MESSAGES), "Text");
	EXPECT_STREQ(dgettext(nullptr, "text"), "Text");
	EXPECT_STREQ(gettext("text"), "Text");
	const char *unknown = "unknown";
	EXPECT_EQ(gettext(unknown), unknown) << "the very same";
	EXPECT_STREQ(gettext(""), "Content-Type: text/plain; charset=UTF-8\n");
	EXPECT_EQ(gettext(nullptr), nullptr);
	EXPECT_STREQ(dcgettext(nullptr, "text", LC_TIME), "text") << "only messages are";
}

TEST_F(Shown, the_form_for_a_number)
{
	add("de", "mine", "msgid \"one\"\nmsgid_plural \"more\"\nmsgstr[0] \"eins\"\nmsgstr[1] \"mehr\"\n");
	show("de");
	EXPECT_STREQ(ngettext("one", "more", 1), "eins");
	EXPECT_STREQ(dngettext(nullptr, "one", "more", 2), "mehr");
	EXPECT_STREQ(dcngettext(nullptr, "one", "more", 0, LC_MESSAGES), "mehr");
	EXPECT_STREQ(ngettext("file", "files", 1), "file");
	EXPECT_STREQ(ngettext("file", "files", 0), "files");
}

TEST_F(Shown, the_most_exact_language_first)
{
	const auto message = [](const std::string &id, const std::string &text) {
		return "msgid \"" + id + "\"\nmsgstr \"" + text + "\"\n";
	};
	add("sr", "mine", message("a", "sr") + message("b", "sr") + message("c", "sr") + message("d", "sr"));
	add("sr_RS", "mine", message("a", "sr_RS") + message("b", "sr_RS") + message("c", "sr_RS"));
	add("sr@latin", "mine", message("a", "sr@latin") + message("b", "sr@latin"));
	add("sr_RS@latin", "mine", message("a", "sr_RS@latin"));
	show("sr_RS.UTF-8@latin");
	EXPECT_STREQ(gettext("a"), "sr_RS@latin");
	EXPECT_STREQ(gettext("b"), "sr@latin");
	EXPECT_STREQ(gettext("c"), "sr_RS");
	EXPECT_STREQ(gettext("d"), "sr");
	show("sr");
	EXPECT_STREQ(gettext("a"), "sr");
}

TEST_F(Shown, another_domain_to_the_plugin_only)
{
	add("de", "mine", "");
	add("de", "other", "msgid \"text\"\nmsgstr \"anderer Text\"\n");
	show("de");
	EXPECT_STREQ(dgettext("other", "text"), "text") << "of a library, which asks libc";
	const PluginRuns here;
	EXPECT_STREQ(dgettext("other", "text"), "anderer Text");
	EXPECT_STREQ(dngettext("other", "text", "texts", 1), "anderer Text");
	errno = 0;
	EXPECT_STREQ(dgettext("missing", "text"), "text");
	EXPECT_EQ(errno, 0);
}

TEST_F(Shown, what_a_plugin_makes_current_itself)
{
	add("de", "mine", "msgid \"text\"\nmsgstr \"mein Text\"\n");
	TempFolder its;
	its.write("de/LC_MESSAGES/theirs.mo", support::readFile(place / "de/LC_MESSAGES/mine.mo"));
	show("de");
	EXPECT_STREQ(textdomain("theirs"), "theirs") << "of a library: libc's own";
	EXPECT_STREQ(gettext("text"), "mein Text");
	{
		const PluginRuns here;
		EXPECT_STREQ(textdomain(nullptr), "mine");
		EXPECT_STREQ(textdomain("theirs"), "theirs");
		EXPECT_STREQ(gettext("text"), "text");
		EXPECT_EQ(bindtextdomain("theirs", nullptr), place.path());
		EXPECT_EQ(bindtextdomain("theirs", its.path().c_str()), its.path());
		EXPECT_EQ(bindtextdomain("", its.path().c_str()), nullptr);
		EXPECT_STREQ(gettext("text"), "mein Text");
		EXPECT_STREQ(textdomain(""), "messages");
	}
	EXPECT_STREQ(gettext("text"), "text");
}

TEST_F(Shown, nothing_of_a_domain_that_is_broken)
{
	add("de", "mine", "");
	place.write("de/LC_MESSAGES/broken.mo", "none");
	show("de");
	const PluginRuns here;
	testing::internal::CaptureStderr();
	for (int i = 0; i < 3; ++i)
		EXPECT_STREQ(dgettext("broken", "text"), "text");
	const std::string said = testing::internal::GetCapturedStderr();
	EXPECT_NE(said.find("broken.mo': it is none"), std::string::npos) << said;
	EXPECT_EQ(support::lines(said).size(), 1u) << said;
}

TEST(Texts, are_looked_up_by_all_names)
{
	for (const char *name : {"gettext", "dgettext", "dcgettext", "ngettext", "dngettext", "dcngettext",
	                         "textdomain", "bindtextdomain"})
		EXPECT_NE(dlsym(RTLD_DEFAULT, name), dlsym(RTLD_NEXT, name)) << name << " is not offered";
}

} // namespace texts_test
