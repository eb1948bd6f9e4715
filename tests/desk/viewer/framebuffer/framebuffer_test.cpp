// The picture in frame buffers of every pixel layout and size.

#include "display_list.h"
#include "error_of.h"
#include "framebuffer.h"
#include "framebuffer_screen.h"
#include "kernel.h"
#include "pixel_canvas.h"

#include <gtest/gtest.h>
#include <linux/input.h>
#include <sys/stat.h>
#include <unistd.h>

using desk::Framebuffer;
using desk::screenHeight;
using desk::screenWidth;
using support::TempFolder;

namespace framebuffer_test
{

constexpr desk::Rect whole{0, 0, screenWidth, screenHeight};

struct Layout
{
	const char *name;
	int bits;
	fb_bitfield red, green, blue;
	uint32_t marked; ///< the pixel value of red 0xFF, green 0x80, blue 0x40
};

constexpr Layout layouts[] = {
	{"16 bits, 5 6 5", 16, {11, 5, 0}, {5, 6, 0}, {0, 5, 0}, 0xFC08},
	{"16 bits, blue first", 16, {0, 5, 0}, {5, 6, 0}, {11, 5, 0}, 0x441F},
	{"16 bits, 5 5 5", 16, {10, 5, 0}, {5, 5, 0}, {0, 5, 0}, 0x7E08},
	{"24 bits", 24, {16, 8, 0}, {8, 8, 0}, {0, 8, 0}, 0xFF8040},
	{"24 bits, blue first", 24, {0, 8, 0}, {8, 8, 0}, {16, 8, 0}, 0x4080FF},
	{"32 bits", 32, {16, 8, 0}, {8, 8, 0}, {0, 8, 0}, 0xFF8040},
	{"32 bits, blue first", 32, {0, 8, 0}, {8, 8, 0}, {16, 8, 0}, 0x4080FF},
	{"32 bits, red in front", 32, {24, 8, 0}, {16, 8, 0}, {8, 8, 0}, 0xFF804000},
	{"32 bits, 10 each", 32, {20, 10, 0}, {10, 10, 0}, {0, 10, 0}, 0x3FF80901},
};

/// Shows a frame of one colour with a corner in another.
void show(Framebuffer &framebuffer, const desk::Rect &changed = whole)
{
	desk::PixelCanvas canvas;
	canvas.fill(whole, desk::Fill::plain({255, 128, 64}));
	canvas.fill({0, 0, 10, 10}, desk::Fill::plain({255, 255, 255}));
	framebuffer.show(canvas.pixels(), canvas.stride(), changed);
}

std::unique_ptr<Framebuffer> opened(const kernel::FramebufferDevice &device)
{
	auto framebuffer = Framebuffer::open(device.path);
	framebuffer->blacken();
	return framebuffer;
}

std::string refusal(const std::string &device)
{
	const std::string error = support::errorOf([&] { Framebuffer::open(device); });
	EXPECT_NE(error.find(device), error.npos) << error;
	return error;
}

TEST(Framebuffer, draws_in_whatever_way_the_pixels_are_kept)
{
	for (const Layout &layout : layouts) {
		TempFolder folder;
		const kernel::FramebufferDevice device(folder, 720, 576, layout.bits, layout.red, layout.green,
		                                       layout.blue);
		SCOPED_TRACE(layout.name);
		const auto framebuffer = opened(device);
		show(*framebuffer);
		EXPECT_EQ(device.pixel(100, 100), layout.marked) << layout.name;
		EXPECT_EQ(device.pixel(719, 575), layout.marked) << layout.name;
		uint32_t white = 0;
		for (const fb_bitfield &field : {layout.red, layout.green, layout.blue})
			white |= ((1u << field.length) - 1) << field.offset;
		EXPECT_EQ(device.pixel(0, 0), white) << layout.name;
		EXPECT_EQ(device.pixel(9, 9), white) << layout.name;
		EXPECT_EQ(device.pixel(10, 10), layout.marked) << layout.name;
	}
}

TEST(Framebuffer, is_opaque)
{
	TempFolder folder;
	kernel::FramebufferDevice device(folder, 720, 576, 32, {16, 8, 0}, {8, 8, 0}, {0, 8, 0});
	device.mode.transp = {24, 8, 0};
	const auto framebuffer = opened(device);
	EXPECT_EQ(device.pixel(5, 5), 0xFF000000u);
	show(*framebuffer);
	EXPECT_EQ(device.pixel(100, 100), 0xFFFF8040u);
}

TEST(Framebuffer, stands_in_the_middle_of_a_larger_screen)
{
	TempFolder folder;
	const kernel::FramebufferDevice device(folder, 800, 600, 16, {11, 5, 0}, {5, 6, 0}, {0, 5, 0});
	const auto framebuffer = opened(device);
	show(*framebuffer);
	EXPECT_EQ(device.pixel(40, 12), 0xFFFFu);
	EXPECT_EQ(device.pixel(759, 587), 0xFC08u);
	EXPECT_EQ(device.pixel(39, 12), 0u) << "what the console had there is gone";
	EXPECT_EQ(device.pixel(40, 11), 0u);
	EXPECT_EQ(device.pixel(760, 587), 0u);
	EXPECT_EQ(device.pixel(759, 588), 0u);
}

TEST(Framebuffer, becomes_smaller_on_a_smaller_screen)
{
	struct Size
	{
		int width, height, left, top, right, bottom; ///< the picture's rectangle
	};
	for (const Size &size : {Size{640, 480, 20, 0, 619, 479}, Size{320, 400, 0, 72, 319, 327},
	                         Size{800, 480, 100, 0, 699, 479}, Size{1, 1, 0, 0, 0, 0}}) {
		TempFolder folder;
		const kernel::FramebufferDevice device(folder, size.width, size.height, 32, {16, 8, 0}, {8, 8, 0},
		                                       {0, 8, 0});
		const auto framebuffer = opened(device);
		show(*framebuffer);
		const std::string shown = std::to_string(size.width) + " x " + std::to_string(size.height);
		EXPECT_EQ(device.pixel(size.right, size.bottom), 0xFF8040u) << shown;
		if (size.width > 1) {
			EXPECT_EQ(device.pixel(size.left + 1, size.top + 1), 0xFFFFFFu) << shown;
			EXPECT_EQ(device.pixel(size.left + 20, size.top), 0xFF8040u) << shown;
		}
		if (size.left > 0) {
			EXPECT_EQ(device.pixel(size.left - 1, size.top), 0u) << shown;
			EXPECT_EQ(device.pixel(size.right + 1, size.bottom), 0u) << shown;
		}
		if (size.top > 0) {
			EXPECT_EQ(device.pixel(size.left, size.top - 1), 0u) << shown;
			EXPECT_EQ(device.pixel(size.left, size.bottom + 1), 0u) << shown;
		}
	}
}

TEST(Framebuffer, heeds_the_length_of_a_line_and_where_the_screen_starts)
{
	TempFolder folder;
	kernel::FramebufferDevice device(folder, 720, 576, 16, {11, 5, 0}, {5, 6, 0}, {0, 5, 0});
	device.fixed.line_length = 2048;
	device.mode.xres_virtual = 1024;
	device.mode.yres_virtual = 1200;
	device.mode.yoffset = 600;
	device.mode.xoffset = 8;
	device.resize();
	const auto framebuffer = opened(device);
	show(*framebuffer);
	EXPECT_EQ(device.pixel(0, 0), 0xFFFFu);
	EXPECT_EQ(device.pixel(719, 575), 0xFC08u);
	const std::string memory = device.memory();
	EXPECT_EQ(memory.find_first_not_of('\xAB'), 600u * 2048 + 16)
		<< "what is not on the screen is left alone";
	EXPECT_EQ(memory.find_last_not_of('\xAB'), (600u + 575) * 2048 + 16 + 720 * 2 - 1);
	EXPECT_EQ(memory.substr(600 * 2048 + 16 + 720 * 2, 4), "\xAB\xAB\xAB\xAB");
}

TEST(Framebuffer, writes_only_what_has_changed)
{
	TempFolder folder;
	const kernel::FramebufferDevice device(folder, 800, 600, 16, {11, 5, 0}, {5, 6, 0}, {0, 5, 0});
	const auto framebuffer = opened(device);
	show(*framebuffer, {100, 50, 20, 10});
	EXPECT_EQ(device.pixel(40 + 100, 12 + 50), 0xFC08u);
	EXPECT_EQ(device.pixel(40 + 119, 12 + 59), 0xFC08u);
	EXPECT_EQ(device.pixel(40 + 120, 12 + 59), 0u);
	EXPECT_EQ(device.pixel(40 + 119, 12 + 60), 0u);
	EXPECT_EQ(device.pixel(40 + 99, 12 + 50), 0u);
	EXPECT_EQ(device.pixel(40 + 100, 12 + 49), 0u);
	show(*framebuffer, {-10, -10, 2000, 2000});
	EXPECT_EQ(device.pixel(39, 12), 0u) << "never beyond the frame";
	EXPECT_EQ(device.pixel(40, 12), 0xFFFFu);
}

TEST(Framebuffer, straightens_the_tables_of_a_screen_that_has_them)
{
	TempFolder folder;
	kernel::FramebufferDevice device(folder, 720, 576, 16, {11, 5, 0}, {5, 6, 0}, {0, 5, 0});
	opened(device);
	EXPECT_TRUE(device.table.empty());
	device.fixed.visual = FB_VISUAL_DIRECTCOLOR;
	opened(device);
	ASSERT_EQ(device.table.size(), 64u) << "green has 6 bits";
	EXPECT_EQ(device.table[0], 0);
	EXPECT_EQ(device.table[31], 65535) << "red has 5";
}

TEST(Framebuffer, refuses_what_it_cannot_draw_on)
{
	TempFolder folder;
	kernel::FramebufferDevice device(folder, 720, 576, 8, {0, 8, 0}, {0, 8, 0}, {0, 8, 0});
	EXPECT_NE(refusal(device.path).find("palette of 8 bits"), std::string::npos);
	EXPECT_NE(refusal(device.path).find("16, 24 or 32"), std::string::npos);
	EXPECT_EQ(device.memory().find_first_not_of('\xAB'), std::string::npos) << "it is left alone";

	kernel::FramebufferDevice other(folder, 720, 576, 16, {11, 5, 0}, {5, 6, 0}, {0, 5, 0}, "fb1");
	other.mode.grayscale = 1;
	refusal(other.path);
	other.mode.grayscale = 0;
	other.mode.red.offset = 12; // beyond the pixel
	refusal(other.path);
	other.mode.red.offset = 11;
	other.fixed.type = FB_TYPE_PLANES;
	refusal(other.path);
	other.fixed.type = FB_TYPE_PACKED_PIXELS;
	other.fixed.smem_len -= 1;
	EXPECT_NE(refusal(other.path).find("does not fit"), std::string::npos);
	other.fixed.smem_len += 1;
	opened(other);
}

TEST(Framebuffer, says_what_is_wrong_with_a_device)
{
	TempFolder folder;
	EXPECT_NE(refusal(folder / "fb7").find("--framebuffer"), std::string::npos);
	EXPECT_NE(refusal(folder.write("file", "text")).find("no framebuffer"), std::string::npos);
	if (geteuid() != 0) {
		const std::string locked = folder.write("locked", "");
		chmod(locked.c_str(), 0);
		EXPECT_NE(refusal(locked).find("video"), std::string::npos);
	}
}

TEST(Framebuffer, is_found)
{
	TempFolder folder;
	const auto find = [&] { return desk::findFramebuffer(folder.path()); };
	EXPECT_NE(support::errorOf(find).find("there is no framebuffer"), std::string::npos);
	for (const char *name : {"fb10", "fb2", "fbx", "fb", "tty0"})
		folder.write(name, "");
	EXPECT_EQ(find(), folder / "fb2");
}

TEST(FramebufferScreen, shows_a_frame_when_it_is_presented)
{
	TempFolder folder;
	const kernel::FramebufferDevice device(folder, 720, 576, 32, {16, 8, 0}, {8, 8, 0}, {0, 8, 0});
	kernel::Remote remote(folder, {KEY_UP, KEY_DOWN, KEY_OK, KEY_EXIT});
	const kernel::Console console(folder);
	const auto made = desk::makeFramebufferScreen({device.path, remote.path, console.path});
	EXPECT_EQ(console.display(), "graphics");
	EXPECT_EQ(device.pixel(100, 100), 0u);
	made->canvas()->fill(whole, desk::Fill::plain({1, 2, 3}));
	EXPECT_EQ(device.pixel(100, 100), 0u);
	made->present({100, 100, 1, 1});
	EXPECT_EQ(device.pixel(100, 100), 0x010203u);
	EXPECT_EQ(device.pixel(101, 100), 0u) << "only what has changed";
	EXPECT_FALSE(made->take());
	remote.press(KEY_OK);
	const std::optional<desk::Input> pressed = made->take();
	ASSERT_TRUE(pressed);
	EXPECT_EQ(std::get<desk::Key>(pressed->what), desk::Key::ok);
	EXPECT_TRUE(made->hasKeys());

	testing::internal::CaptureStderr();
	remote.unplug();
	made->readInput();
	made->readInput();
	EXPECT_FALSE(made->hasKeys());
	EXPECT_EQ(made->descriptor(), -1);
	EXPECT_EQ(testing::internal::GetCapturedStderr(),
	          "deskhost: the remote control '" + remote.path + "' is gone; was it unplugged?\n");
}

/// A window with ten lines of a long list, and perhaps something above them.
desk::DisplayList tenLines(int first, bool covered)
{
	desk::DisplayList list;
	list.fill(whole, desk::Fill::plain({0, 40, 80}));
	desk::WindowStyle style;
	style.client = {200, 210, 220};
	list.window({50, 60, 500, 400}, {60, 90, 480, 360}, "a list", style);
	for (int i = 0; i < 10; ++i)
		list.text({71, 101 + 21 * i, 401, 21}, "line " + std::to_string(first + i), {});
	list.fill({480, 101 + first, 10, 50}, desk::Fill::plain({90, 0, 0}));
	if (covered)
		list.fill({200, 150, 20, 100}, desk::Fill::plain({0, 90, 0}, 9));
	return list;
}

TEST(FramebufferScreen, shows_lines_that_scroll_as_if_it_painted_them)
{
	for (const Layout &layout : {layouts[0], layouts[3], layouts[5]})
		for (const int width : {640, 800}) {
			SCOPED_TRACE(layout.name + (" " + std::to_string(width)));
			TempFolder folder;
			const kernel::FramebufferDevice device(folder, width, 600, layout.bits, layout.red, layout.green,
			                                       layout.blue);
			const kernel::FramebufferDevice other(folder, width, 600, layout.bits, layout.red, layout.green,
			                                      layout.blue, "fb1");
			kernel::Remote remote(folder, {KEY_UP, KEY_DOWN, KEY_OK, KEY_EXIT});
			const kernel::Console console(folder);
			const auto made = desk::makeFramebufferScreen({device.path, remote.path, console.path});
			desk::DisplayList list;
			for (const auto &[first, covered] : {std::pair(1, false),
			                                     {2, false},
			                                     {3, false},
			                                     {3, true},
			                                     {2, true},
			                                     {2, false},
			                                     {1, false},
			                                     {4, false},
			                                     {0, false}}) {
				const auto changes = list.apply(tenLines(first, covered).editOf(list));
				ASSERT_TRUE(changes);
				list.drawChanges(*made->canvas());
				made->present(*changes);
				desk::PixelCanvas canvas;
				list.draw(canvas, whole);
				opened(other)->show(canvas.pixels(), canvas.stride(), whole);
				EXPECT_TRUE(device.memory() == other.memory()) << first << covered;
			}
		}
}

TEST(FramebufferScreen, leaves_everything_alone_when_something_is_missing)
{
	TempFolder folder;
	const kernel::FramebufferDevice device(folder, 720, 576, 32, {16, 8, 0}, {8, 8, 0}, {0, 8, 0});
	const kernel::Console console(folder);
	const auto refusal = [](const desk::FramebufferDevices &devices) {
		return support::errorOf([&] { desk::makeFramebufferScreen(devices); });
	};
	EXPECT_NE(refusal({device.path, folder / "event0", console.path}).find("event0"), std::string::npos);
	EXPECT_EQ(console.display(), "text");
	EXPECT_EQ(device.memory().find_first_not_of('\xAB'), std::string::npos);

	const kernel::Remote remote(folder, {KEY_UP, KEY_DOWN, KEY_OK, KEY_EXIT});
	EXPECT_NE(refusal({folder / "fb9", remote.path, console.path}).find("fb9"), std::string::npos);
	EXPECT_EQ(console.display(), "text");
}

} // namespace framebuffer_test
