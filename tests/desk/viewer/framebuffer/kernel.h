#ifndef TESTS_DESK_FRAMEBUFFER_KERNEL_H
#define TESTS_DESK_FRAMEBUFFER_KERNEL_H

#include "support.h"

#include <linux/fb.h>

#include <string>
#include <vector>

/// Simulated devices. A file stands for a frame buffer's memory, a FIFO for a device's events. The test program's
/// ioctl() answers for them, and calls the kernel for any other file.
namespace kernel
{

/// A framebuffer of this size and pixel layout. Each byte is 0xAB at first.
struct FramebufferDevice
{
	FramebufferDevice(const support::TempFolder &folder, int width, int height, int bits, fb_bitfield red,
	                  fb_bitfield green, fb_bitfield blue, const std::string &name = "fb0");
	~FramebufferDevice();
	FramebufferDevice(const FramebufferDevice &) = delete;
	FramebufferDevice &operator=(const FramebufferDevice &) = delete;

	/// The pixel in this computer's byte order.
	uint32_t pixel(int x, int y) const;
	std::string memory() const;
	/// Resizes the file after a change of `mode` or `fixed`.
	void resize() const;

	std::string path;
	fb_var_screeninfo mode = {};
	fb_fix_screeninfo fixed = {};
	std::vector<uint16_t> table; ///< the red colour map that was set
};

struct Remote
{
	Remote(const support::TempFolder &folder, std::vector<unsigned int> codes,
	       const std::string &name = "event0");
	~Remote();
	Remote(const Remote &) = delete;
	Remote &operator=(const Remote &) = delete;

	void send(unsigned int type, unsigned int code, int value) const;
	/// `value`: 0 released, 1 pressed, 2 repeated
	void key(unsigned int code, int value) const;
	void press(unsigned int code) const;
	void unplug();

	std::string path;
	std::vector<unsigned int> codes;
	int end; ///< writing end of the FIFO
};

/// A console. Its file holds its modes, which all processes share.
struct Console
{
	explicit Console(const support::TempFolder &folder);
	~Console();
	Console(const Console &) = delete;
	Console &operator=(const Console &) = delete;

	std::string display() const;  ///< "text" or "graphics"
	std::string keyboard() const; ///< "typing" or "off"
	/// Hangs up: open descriptors fail from now on, and opening again works.
	void hangUp() const;

	std::string path;
};

} // namespace kernel

#endif
