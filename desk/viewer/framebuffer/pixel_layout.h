#ifndef DESK_FRAMEBUFFER_PIXEL_LAYOUT_H
#define DESK_FRAMEBUFFER_PIXEL_LAYOUT_H

#include <array>
#include <cstdint>
#include <string>

struct fb_var_screeninfo;

namespace desk
{

/// How a framebuffer keeps a pixel: in 16, 24 or 32 bits, with a field of bits for each channel.
class PixelLayout
{
public:
	PixelLayout() = default;
	/// The layout of a mode that the kernel reports.
	explicit PixelLayout(const fb_var_screeninfo &mode);

	/// In a few words, why a mode has a layout that cannot be drawn in, a palette for example; empty: it can.
	static std::string whyNot(const fb_var_screeninfo &mode);

	int bytes() const { return pixelBytes; }

	/// Converts `count` pixels of 0x00RRGGBB into `count * bytes()` bytes. A channel of fewer bits
	/// loses its lowest ones; what the kernel calls transparency is set to opaque.
	void convert(const uint32_t *from, int count, unsigned char *to) const;

private:
	using Channel = std::array<uint32_t, 256>; ///< the bits of a pixel for each value

	int pixelBytes = 0;
	Channel red{}, green{}, blue{};
};

} // namespace desk

#endif
