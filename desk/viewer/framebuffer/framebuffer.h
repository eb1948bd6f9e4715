#ifndef DESK_FRAMEBUFFER_FRAMEBUFFER_H
#define DESK_FRAMEBUFFER_FRAMEBUFFER_H

#include "canvas.h"
#include "pixel_layout.h"

#include <memory>
#include <string>
#include <vector>

namespace desk
{

/// A screen that the kernel offers as memory (the fbdev interface, /dev/fb0).
class Framebuffer
{
public:
	/// Opens the device, and changes nothing yet. Throws an Error when it cannot be used.
	static std::unique_ptr<Framebuffer> open(const std::string &device);
	~Framebuffer();
	Framebuffer(const Framebuffer &) = delete;
	Framebuffer &operator=(const Framebuffer &) = delete;

	/// Makes the whole screen black, and switches it on should the console have switched it off.
	void blacken();

	/// Shows a frame of 720 x 576 pixels (see PixelCanvas::pixels()): in the middle, made smaller
	/// where the screen is smaller. Of a frame that is shown in its own size only the `changed` part
	/// is written.
	void show(const unsigned char *pixels, int stride, const Rect &changed);

private:
	explicit Framebuffer(int file) : device(file) {}

	void write(const unsigned char *pixels, int stride, const Rect &part, int left, int top);

	const int device;
	unsigned char *mapping = nullptr;
	size_t mappingSize = 0;
	unsigned char *visible = nullptr; ///< the screen's first pixel
	int lineLength = 0;               ///< bytes from one row to the next
	int width = 0, height = 0;
	PixelLayout layout;
	std::vector<unsigned char> row; ///< converted; the device's memory is slow to write in small pieces
};

/// The first framebuffer in that folder. Throws an Error when there is none.
std::string findFramebuffer(const std::string &folder);

} // namespace desk

#endif
