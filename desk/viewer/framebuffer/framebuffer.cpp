#include "framebuffer.h"

#include "desk_error.h"
#include "device_folder.h"
#include "visible_text.h"

#include <cairo.h>

#include <fcntl.h>
#include <linux/fb.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <utility>

namespace desk
{
namespace
{

/// Sets linear colour tables on a direct colour screen. The console restores its own with its text.
void setStraightTables(int device, const fb_var_screeninfo &mode)
{
	std::array<uint16_t, 256> red{}, green{}, blue{};
	const auto fill = [](std::array<uint16_t, 256> &table, uint32_t bits) {
		const uint32_t most = (1u << std::min(bits, 8u)) - 1;
		for (uint32_t i = 0; i < table.size(); ++i)
			table[i] = static_cast<uint16_t>(std::min(i, most) * 65535 / most);
	};
	fill(red, mode.red.length);
	fill(green, mode.green.length);
	fill(blue, mode.blue.length);
	fb_cmap tables = {};
	tables.len = 1u << std::min(8u, std::max({mode.red.length, mode.green.length, mode.blue.length}));
	tables.red = red.data();
	tables.green = green.data();
	tables.blue = blue.data();
	ioctl(device, FBIOPUTCMAP, &tables);
}

} // namespace

std::unique_ptr<Framebuffer> Framebuffer::open(const std::string &path)
{
	const auto failure = [&](const std::string &why) {
		return Error(visibleText("cannot use the framebuffer '" + path + "': " + why));
	};
	const int file = ::open(path.c_str(), O_RDWR | O_CLOEXEC | O_NONBLOCK);
	if (file < 0)
		throw failure(errno == EACCES
		                  ? "Permission denied; join the group 'video', or run deskhost as root"
		                  : strerror(errno) + std::string("; name the screen's device with --framebuffer"));
	std::unique_ptr<Framebuffer> opened(new Framebuffer(file));
	fb_var_screeninfo mode = {};
	fb_fix_screeninfo memory = {};
	if (ioctl(file, FBIOGET_VSCREENINFO, &mode) != 0 || ioctl(file, FBIOGET_FSCREENINFO, &memory) != 0)
		throw failure("it is no framebuffer; name the screen's device with --framebuffer");
	std::string unusable = PixelLayout::whyNot(mode);
	if (unusable.empty() && memory.type != FB_TYPE_PACKED_PIXELS)
		unusable = "its pixels are kept in planes";
	if (!unusable.empty())
		throw failure(unusable +
		              "; set a mode of 16, 24 or 32 bits (fbset -depth 16, or video= for the kernel)");
	opened->layout = PixelLayout(mode);

	// The memory has an offset in its first page, and the visible part one in the memory.
	const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
	const size_t pixelBytes = static_cast<size_t>(opened->layout.bytes());
	const size_t line = memory.line_length ? memory.line_length : mode.xres_virtual * pixelBytes;
	const size_t first = memory.smem_start % page;
	const size_t start = mode.yoffset * line + mode.xoffset * pixelBytes;
	constexpr uint32_t most = 32768; // pixels; nothing below can overflow
	if (mode.xres < 1 || mode.yres < 1 || mode.xres > most || mode.yres > most ||
	    line < mode.xres * pixelBytes ||
	    start + (mode.yres - 1) * line + mode.xres * pixelBytes > memory.smem_len)
		throw failure("its mode of " + std::to_string(mode.xres) + " x " + std::to_string(mode.yres) +
		              " pixels does not fit into its memory; set another one");
	const size_t size = first + memory.smem_len;
	void *mapped = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
	if (mapped == MAP_FAILED)
		throw failure(std::string("its memory cannot be mapped: ") + strerror(errno));

	opened->mapping = static_cast<unsigned char *>(mapped);
	opened->mappingSize = size;
	opened->visible = opened->mapping + first + start;
	opened->lineLength = static_cast<int>(line);
	opened->width = static_cast<int>(mode.xres);
	opened->height = static_cast<int>(mode.yres);
	const double scale = std::min({1.0, double(mode.xres) / screenWidth, double(mode.yres) / screenHeight});
	Rect &place = opened->place;
	place.w = std::max(1, static_cast<int>(std::lround(screenWidth * scale)));
	place.h = std::max(1, static_cast<int>(std::lround(screenHeight * scale)));
	place.x = (opened->width - place.w) / 2;
	place.y = (opened->height - place.h) / 2;
	opened->frame.resize(size_t(place.w) * size_t(place.h) * pixelBytes);
	return opened;
}

Framebuffer::~Framebuffer()
{
	if (mapping)
		munmap(mapping, mappingSize);
	close(device);
}

void Framebuffer::blacken()
{
	ioctl(device, FBIOBLANK, FB_BLANK_UNBLANK);
	fb_var_screeninfo mode = {};
	fb_fix_screeninfo memory = {};
	if (ioctl(device, FBIOGET_FSCREENINFO, &memory) == 0 && memory.visual == FB_VISUAL_DIRECTCOLOR &&
	    ioctl(device, FBIOGET_VSCREENINFO, &mode) == 0)
		setStraightTables(device, mode);
	const std::vector<uint32_t> black(static_cast<size_t>(width));
	std::vector<unsigned char> row(black.size() * size_t(layout.bytes()));
	layout.convert(black.data(), width, row.data());
	for (int y = 0; y < height; ++y)
		memcpy(visible + size_t(y) * size_t(lineLength), row.data(), row.size());
}

bool Framebuffer::move(const Rect &area, int down)
{
	if (place.w < screenWidth)
		return false;
	for (int i = 0; i < area.h; ++i) {
		const int y = down < 0 ? area.y + i : area.bottom() - 1 - i; // reads each row before overwriting it
		memcpy(frameAt(area.x, y), frameAt(area.x, y - down), size_t(area.w * layout.bytes()));
	}
	moved = area;
	return true;
}

void Framebuffer::show(const unsigned char *pixels, int stride, const Rect &changed)
{
	if (place.w == screenWidth) {
		const Rect all = changed.intersected(wholeScreen);
		for (const Rect &part : all.around(std::exchange(moved, {})))
			convert(pixels, stride, part);
		return write(all);
	}
	// Cairo only reads these pixels.
	cairo_surface_t *whole = cairo_image_surface_create_for_data(
		const_cast<unsigned char *>(pixels), CAIRO_FORMAT_RGB24, screenWidth, screenHeight, stride);
	cairo_surface_t *scaled = cairo_image_surface_create(CAIRO_FORMAT_RGB24, place.w, place.h);
	cairo_t *to = cairo_create(scaled);
	cairo_scale(to, double(place.w) / screenWidth, double(place.h) / screenHeight);
	cairo_set_source_surface(to, whole, 0, 0);
	cairo_pattern_set_filter(cairo_get_source(to), CAIRO_FILTER_GOOD);
	cairo_pattern_set_extend(cairo_get_source(to), CAIRO_EXTEND_PAD); // keeps the edges from darkening
	cairo_paint(to);
	cairo_destroy(to);
	cairo_surface_flush(scaled);
	const Rect all = {0, 0, place.w, place.h};
	convert(cairo_image_surface_get_data(scaled), cairo_image_surface_get_stride(scaled), all);
	cairo_surface_destroy(scaled);
	cairo_surface_destroy(whole);
	write(all);
}

unsigned char *Framebuffer::frameAt(int x, int y)
{
	return frame.data() + (size_t(y) * size_t(place.w) + size_t(x)) * size_t(layout.bytes());
}

void Framebuffer::convert(const unsigned char *pixels, int stride, const Rect &part)
{
	for (int y = part.y; y < part.bottom(); ++y)
		layout.convert(reinterpret_cast<const uint32_t *>(pixels + y * stride) + part.x, part.w,
		               frameAt(part.x, y));
}

/// Copies a part of the frame to the device.
void Framebuffer::write(const Rect &part)
{
	for (int y = part.y; y < part.bottom(); ++y)
		memcpy(visible + size_t(place.y + y) * size_t(lineLength) +
		           size_t((place.x + part.x) * layout.bytes()),
		       frameAt(part.x, y), size_t(part.w * layout.bytes()));
}

std::string findFramebuffer(const std::string &folder)
{
	const std::vector<std::string> found = numberedDevices(folder, "fb");
	if (found.empty())
		throw Error("there is no framebuffer '" + folder +
		            "/fb0'; load the driver of the screen, or name its device with --framebuffer");
	return found.front();
}

} // namespace desk
