#ifndef DESK_FRAMEBUFFER_FRAMEBUFFER_H
#define DESK_FRAMEBUFFER_FRAMEBUFFER_H

#include "canvas.h"
#include "pixel_layout.h"

#include <memory>
#include <string>
#include <vector>

namespace desk
{

/// A screen whose memory the kernel exposes (fbdev, /dev/fb0).
class Framebuffer
{
public:
	/// Opens the device without changing it. Throws an Error when it cannot be used.
	static std::unique_ptr<Framebuffer> open(const std::string &device);
	~Framebuffer();
	Framebuffer(const Framebuffer &) = delete;
	Framebuffer &operator=(const Framebuffer &) = delete;

	/// Makes the whole screen black, and switches it on if the console has switched it off.
	void blacken();

	/// Shows a frame of 720 x 576 pixels (see PixelCanvas::pixels()), centred, and scaled down on a smaller screen.
	/// Of an unscaled frame, reads and writes only the `changed` part.
	void show(const unsigned char *pixels, int stride, const Rect &changed);

	/// Has the next show() take `area` from what is shown `down` rows above it, and not from `pixels`. False: the
	/// frame is scaled.
	bool move(const Rect &area, int down);

private:
	explicit Framebuffer(int file) : device(file) {}

	unsigned char *frameAt(int x, int y);
	void convert(const unsigned char *pixels, int stride, const Rect &part);
	void write(const Rect &part);

	const int device;
	unsigned char *mapping = nullptr;
	size_t mappingSize = 0;
	unsigned char *visible = nullptr; ///< the first visible pixel
	int lineLength = 0;               ///< bytes between the starts of rows
	int width = 0, height = 0;
	PixelLayout layout;
	Rect place; ///< of the frame on the screen, scaled
	std::vector<unsigned char>
		frame;  ///< as the device has it, because small writes and all reads there are slow
	Rect moved; ///< the part of the frame that move() has changed
};

/// The first framebuffer in that folder. Throws an Error if there is none.
std::string findFramebuffer(const std::string &folder);

} // namespace desk

#endif
