// The desk host draws exactly the documentation's pictures: a person sees every change of either.

#include "support.h"

#include <cairo.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <memory>

namespace
{

namespace fs = std::filesystem;

struct Pixels
{
	int width = 0, height = 0, stride = 0;
	std::vector<unsigned char> bytes; ///< four a pixel
};

Pixels readPng(const std::string &path)
{
	const std::unique_ptr<cairo_surface_t, void (*)(cairo_surface_t *)> surface(
		cairo_image_surface_create_from_png(path.c_str()), cairo_surface_destroy);
	EXPECT_EQ(cairo_surface_status(surface.get()), CAIRO_STATUS_SUCCESS) << path;
	Pixels pixels;
	pixels.width = cairo_image_surface_get_width(surface.get());
	pixels.height = cairo_image_surface_get_height(surface.get());
	pixels.stride = cairo_image_surface_get_stride(surface.get());
	const unsigned char *data = cairo_image_surface_get_data(surface.get());
	if (data)
		pixels.bytes.assign(data, data + pixels.stride * pixels.height);
	return pixels;
}

/// The largest mean difference of a channel, 0 to 255, in any block of 16 x 16 pixels. A changed letter exceeds the
/// limit, rounding in antialiased edges does not.
double difference(const Pixels &a, const Pixels &b)
{
	constexpr int block = 16;
	double worst = 0;
	for (int top = 0; top < a.height; top += block)
		for (int left = 0; left < a.width; left += block) {
			long sum = 0;
			int count = 0;
			for (int y = top; y < std::min(top + block, a.height); ++y)
				for (int x = left; x < std::min(left + block, a.width); ++x)
					for (int channel = 0; channel < 3; ++channel, ++count) {
						const size_t at = static_cast<size_t>(y * a.stride + x * 4 + channel);
						sum += std::abs(a.bytes[at] - b.bytes[at]);
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
		const Pixels now = readPng(entry.path()), then = readPng(reference);
		ASSERT_EQ(now.width, then.width);
		ASSERT_EQ(now.height, then.height);
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
	EXPECT_GT(difference(readPng(support::sourcePath("docs/pictures/menu.png")),
	                     readPng(support::sourcePath("docs/pictures/menu-de.png"))),
	          6);
}

} // namespace
