#ifndef TESTS_RECEIVER_BOX_H
#define TESTS_RECEIVER_BOX_H

#include "support.h"

#include <cstdint>
#include <string>
#include <vector>

/// 720 x 576 pixels of 16 bits: 5 red, 6 green, 5 blue.
struct Picture
{
	std::vector<uint16_t> pixels;
	bool operator==(const Picture &other) const { return pixels == other.pixels; }
};

/// The same picture in 16-bit pixels.
Picture inSixteenBits(const std::string &png);

/// The virtual receiver without a display; the destructor ends it.
class Box
{
public:
	Box();
	~Box();
	Box(const Box &) = delete;
	Box &operator=(const Box &) = delete;

	/// Waits for the menu, and returns the screen's description.
	support::Json started() { return nextScreen(); }

	/// Presses a key of the remote control, and returns the next description of the screen.
	support::Json press(const std::string &key);

	/// Presses a key by QEMU's name, without waiting.
	void type(const std::string &key);

	/// Runs a command as root, and returns its output.
	std::string shell(const std::string &words);

	/// The middle of QEMU's screen, which has the picture.
	Picture screen();

	/// Presses the power key; returns whether the box switches itself off.
	bool switchesOff();

private:
	support::Json nextScreen();
	void command(const std::string &name, const support::Json &arguments);
	void send(int pipe, const std::string &line);
	/// The next line of a pipe without its line end; fails the test when none comes.
	std::string line(int pipe, std::string &buffer);

	support::TempFolder folder;
	support::Child qemu;
	int monitor = -1, monitorOut = -1, console = -1, consoleOut = -1, dump = -1;
	std::string monitorText, consoleText, dumpText;
	int commands = 0, pictures = 0;
	bool asks = false; ///< the screen shows a question
};

#endif
