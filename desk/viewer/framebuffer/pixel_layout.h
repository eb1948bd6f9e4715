#ifndef DESK_FRAMEBUFFER_PIXEL_LAYOUT_H
#define DESK_FRAMEBUFFER_PIXEL_LAYOUT_H

#include <array>
#include <cstdint>
#include <string>

struct fb_var_screeninfo;

namespace desk
{

/// A framebuffer's pixel format: 16, 24 or 32 bits with a bit field for each channel.
class PixelLayout
{
public:
	PixelLayout() = default;
	/// The layout of a mode that the kernel reports.
	explicit PixelLayout(const fb_var_screeninfo &mode);

	/// Why the mode's layout is not supported, for example a palette, in a few words; empty if it is.
	static std::string whyNot(const fb_var_screeninfo &mode);

	int bytes() const { return pixelBytes; }

	/// Converts `count` pixels of 0x00RRGGBB into `count * bytes()` bytes at `to`, which is aligned for pixels. Drops
	/// the low bits of narrow channels; sets the transparency field to opaque.
	void convert(const uint32_t *from, int count, unsigned char *to) const;

private:
	using Channel = std::array<uint32_t, 256>; ///< bits of the pixel for each value

	int pixelBytes = 0;
	Channel red{}, green{}, blue{};
};

} // namespace desk

#endif
