#ifndef TESTS_RECEIVER_BOX_H
#define TESTS_RECEIVER_BOX_H

#include "support.h"

#include <cstdint>
#include <string>
#include <vector>

/// A picture of 720 x 576 pixels in 16 bits each: 5 red, 6 green, 5 blue.
struct Picture
{
	std::vector<uint16_t> pixels;
	bool operator==(const Picture &other) const { return pixels == other.pixels; }
};

/// What a PNG looks like in 16 bits.
Picture inSixteenBits(const std::string &png);

/// The virtual receiver, booted without a display and ended with the object.
class Box
{
public:
	Box();
	~Box();
	Box(const Box &) = delete;
	Box &operator=(const Box &) = delete;

	/// Waits for the menu; what is on the screen.
	support::Json started() { return nextScreen(); }

	/// Presses a key of the remote control and waits for what is on the screen then.
	support::Json press(const std::string &key);

	/// Presses a key that nobody may be waiting for, by QEMU's name of it.
	void type(const std::string &key);

	/// What a command prints there, run by root.
	std::string shell(const std::string &words);

	/// The middle of the screen, as QEMU sees it.
	Picture screen();

	/// Presses the power key; true when the box has switched itself off.
	bool switchesOff();

private:
	support::Json nextScreen();
	void command(const std::string &name, const support::Json &arguments);
	void send(int pipe, const std::string &line);
	/// The next line of a pipe without its end; fails the test when none comes.
	std::string line(int pipe, std::string &buffer);

	support::TempFolder folder;
	support::Child qemu;
	int monitor = -1, monitorOut = -1, console = -1, consoleOut = -1, dump = -1;
	std::string monitorText, consoleText, dumpText;
	int commands = 0, pictures = 0;
	bool asks = false; ///< the screen shows a question
};

#endif
