#ifndef VEXLO_TESTS_PNG_H
#define VEXLO_TESTS_PNG_H

#include <cairo.h>

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

namespace support
{

/// The picture in a PNG file. Another file fails the test.
class Png
{
public:
	explicit Png(const std::string &path)
		: surface(cairo_image_surface_create_from_png(path.c_str()), cairo_surface_destroy)
	{
		if (const cairo_status_t status = cairo_surface_status(surface.get()))
			throw std::runtime_error(path + ": " + cairo_status_to_string(status));
	}

	int width() const { return cairo_image_surface_get_width(surface.get()); }
	int height() const { return cairo_image_surface_get_height(surface.get()); }

	/// Red, green and blue, as 0xRRGGBB.
	uint32_t pixel(int x, int y) const
	{
		const unsigned char *p = cairo_image_surface_get_data(surface.get()) +
		                         y * cairo_image_surface_get_stride(surface.get()) + 4 * x;
		return static_cast<uint32_t>(p[2] << 16 | p[1] << 8 | p[0]);
	}

private:
	std::unique_ptr<cairo_surface_t, void (*)(cairo_surface_t *)> surface;
};

} // namespace support

#endif
