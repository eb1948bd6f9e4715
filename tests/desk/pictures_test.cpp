// The desk host draws exactly the documentation's pictures: a person sees every change of either.

#include "png.h"
#include "support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>

namespace
{

namespace fs = std::filesystem;

/// The largest mean difference of a channel, 0 to 255, in any block of 16 x 16 pixels. A changed letter exceeds the
/// limit, rounding in antialiased edges does not.
double difference(const support::Png &a, const support::Png &b)
{
	constexpr int block = 16;
	double worst = 0;
	for (int top = 0; top < a.height(); top += block)
		for (int left = 0; left < a.width(); left += block) {
			long sum = 0;
			int count = 0;
			for (int y = top; y < std::min(top + block, a.height()); ++y)
				for (int x = left; x < std::min(left + block, a.width()); ++x) {
					const uint32_t one = a.pixel(x, y), other = b.pixel(x, y);
					for (int shift = 0; shift < 24; shift += 8, ++count)
						sum += std::abs(static_cast<int>(one >> shift & 0xFF) -
						                static_cast<int>(other >> shift & 0xFF));
				}
			worst = std::max(worst, static_cast<double>(sum) / count);
		}
	return worst;
}

TEST(Pictures, are_those_of_the_documentation)
{
	support::TempFolder drawn, tools;
	const auto script = [&](const char *name, const support::Command &command) {
		std::string words = "#!/bin/sh\nexec";
		for (const std::string &word : support::runnable(command))
			words += " '" + word + "'";
		return tools.write(name, words + " \"$@\"\n", true);
	};
	const support::Outcome outcome = support::run(
		{support::sourcePath("tools/pictures"), drawn.path()},
		{{"DESKHOST", script("deskhost", support::deskhost())},
	     {"WINDOW_PICTURE", *WINDOW_PICTURE ? script("window_picture", {WINDOW_PICTURE}) : "none"}});
	ASSERT_EQ(outcome.status, 0) << outcome.err;

	int compared = 0;
	for (const fs::directory_entry &entry : fs::directory_iterator(drawn.path())) {
		const std::string name = entry.path().filename();
		const std::string reference = support::sourcePath("docs/pictures/" + name);
		// Never make a missing reference: a person must look at it first.
		ASSERT_TRUE(support::exists(reference)) << name << " is not in docs/pictures; see tools/pictures";
		const support::Png now(entry.path()), then(reference);
		ASSERT_EQ(now.width(), then.width());
		ASSERT_EQ(now.height(), then.height());
		const double worst = difference(now, then);
		if (worst > 6) {
			const std::string kept = support::buildPath("wrong-" + name);
			fs::copy_file(entry.path(), kept, fs::copy_options::overwrite_existing);
			ADD_FAILURE() << name << " differs by " << worst << "; it is kept as " << kept << ", beside "
						  << reference;
		}
#ifdef __arm__
		EXPECT_TRUE(support::readFile(entry.path()) == support::readFile(reference))
			<< name << ", byte for byte";
#endif
		++compared;
	}
	EXPECT_GE(compared, 10);

	// The comparison notices another current entry and another letter.
	EXPECT_GT(difference(support::Png(support::sourcePath("docs/pictures/menu.png")),
	                     support::Png(support::sourcePath("docs/pictures/menu-de.png"))),
	          6);
}

} // namespace
