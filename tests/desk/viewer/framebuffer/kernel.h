#ifndef TESTS_DESK_FRAMEBUFFER_KERNEL_H
#define TESTS_DESK_FRAMEBUFFER_KERNEL_H

#include "support.h"

#include <linux/fb.h>

#include <string>
#include <vector>

/// Devices that are not there. Their memory is a file, their events come through a FIFO; what a program
/// asks the kernel about them by ioctl() is answered by this test program. What is not one of them is
/// asked for real.
namespace kernel
{

/// A framebuffer of that size whose pixels have these fields; black pixels of 0xAB at first.
struct Screen
{
	Screen(const support::TempFolder &folder, int width, int height, int bits, fb_bitfield red,
	       fb_bitfield green, fb_bitfield blue, const std::string &name = "fb0");
	~Screen();
	Screen(const Screen &) = delete;
	Screen &operator=(const Screen &) = delete;

	/// The pixel's number, as a program on this computer reads it.
	uint32_t pixel(int x, int y) const;
	std::string memory() const;
	/// Gives the file its size, after `mode` or `fixed` were changed.
	void resize() const;

	std::string path;
	fb_var_screeninfo mode = {};
	fb_fix_screeninfo fixed = {};
	std::vector<uint16_t> table; ///< the red one that was set
};

/// An input device with these keys.
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
	int end; ///< of the FIFO, to write to
};

/// A console. Its modes are kept in its file, so that they are those of every process.
struct Console
{
	explicit Console(const support::TempFolder &folder);
	~Console();
	Console(const Console &) = delete;
	Console &operator=(const Console &) = delete;

	std::string display() const;  ///< "text" or "graphics"
	std::string keyboard() const; ///< "typing" or "off"
	/// Who has it open gets nothing more from it; who opens it then does.
	void hangUp() const;

	std::string path;
};

} // namespace kernel

#endif
