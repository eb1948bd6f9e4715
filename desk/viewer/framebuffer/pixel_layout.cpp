#include "pixel_layout.h"

#include <linux/fb.h>

#include <algorithm>
#include <cstring>

namespace desk
{
namespace
{

uint32_t ones(uint32_t length)
{
	return length >= 32 ? ~0u : (1u << length) - 1;
}

/// Scales an 8-bit value to the field; wider fields repeat the upper bits, so that white stays white.
uint32_t placed(uint32_t value, const fb_bitfield &field)
{
	const uint32_t wide = value << 8 | value;
	return wide >> (16 - field.length) << field.offset;
}

bool fits(const fb_bitfield &field, uint32_t bits)
{
	return field.length >= 1 && field.length <= 16 && field.offset <= bits - field.length && !field.msb_right;
}

} // namespace

std::string PixelLayout::whyNot(const fb_var_screeninfo &mode)
{
	const uint32_t bits = mode.bits_per_pixel;
	if (bits <= 8)
		return "it has a palette of " + std::to_string(bits) + " bits a pixel";
	if (mode.grayscale != 0)
		return "it has no red, green and blue channels";
	if ((bits != 16 && bits != 24 && bits != 32) || mode.nonstd != 0 || !fits(mode.red, bits) ||
	    !fits(mode.green, bits) || !fits(mode.blue, bits))
		return "its pixels of " + std::to_string(bits) + " bits are laid out in an unknown way";
	return "";
}

PixelLayout::PixelLayout(const fb_var_screeninfo &mode)
	: pixelBytes(static_cast<int>(mode.bits_per_pixel / 8))
{
	const bool transparency = mode.transp.length > 0 && fits(mode.transp, mode.bits_per_pixel);
	const uint32_t opaque = transparency ? ones(mode.transp.length) << mode.transp.offset : 0;
	for (uint32_t value = 0; value < 256; ++value) {
		red[value] = placed(value, mode.red) | opaque;
		green[value] = placed(value, mode.green);
		blue[value] = placed(value, mode.blue);
	}
}

void PixelLayout::convert(const uint32_t *from, int count, unsigned char *to) const
{
	// Most pixels have the previous one's colour.
	for (const uint32_t *const end = from + count; from < end;) {
		const uint32_t colour = *from;
		const auto isOther = [colour](uint32_t other) { return other != colour; };
		const auto same = std::find_if(from, end, isOther) - from;
		const uint32_t value = red[colour >> 16 & 255] | green[colour >> 8 & 255] | blue[colour & 255];
		if (pixelBytes == 2)
			std::fill_n(reinterpret_cast<uint16_t *>(to), same, static_cast<uint16_t>(value));
		else if (pixelBytes == 4)
			std::fill_n(reinterpret_cast<uint32_t *>(to), same, value);
		else
			for (int i = 0; i < same; ++i) {
				// The three used bytes, in this computer's byte order.
				constexpr bool bigEndian = __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__;
				memcpy(to + 3 * i, reinterpret_cast<const unsigned char *>(&value) + (bigEndian ? 1 : 0), 3);
			}
		from += same;
		to += same * pixelBytes;
	}
}

} // namespace desk
