#include "box.h"

#include "png.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <map>
#include <stdexcept>
#include <thread>

namespace
{

constexpr std::chrono::seconds patience(150); // a busy machine is no failure
constexpr int width = 720, height = 576;
constexpr int screenLeft = 40, screenTop = 12; // of the picture on a screen of 800 x 600

/// QEMU's name of the keyboard key that stands for a key of the remote control.
std::string keyOnBoard(const std::string &key)
{
	static const std::map<std::string, std::string> names = {
		{"ok", "ret"}, {"exit", "esc"}, {"pageup", "pgup"}, {"pagedown", "pgdn"},
		{"red", "f1"}, {"green", "f2"}, {"yellow", "f3"},   {"blue", "f4"},
	};
	const auto found = names.find(key);
	return found == names.end() ? key : found->second;
}

Picture cut(const std::string &path, int left, int top)
{
	const support::Png png(path);
	Picture picture;
	if (png.width() < left + width || png.height() < top + height) {
		ADD_FAILURE() << path << " is no picture of the screen";
		return picture;
	}
	for (int y = 0; y < height; ++y)
		for (int x = 0; x < width; ++x) {
			const uint32_t pixel = png.pixel(left + x, top + y);
			picture.pixels.push_back(
				static_cast<uint16_t>((pixel >> 8 & 0xF800) | (pixel >> 5 & 0x07E0) | (pixel >> 3 & 0x001F)));
		}
	return picture;
}

} // namespace

Picture inSixteenBits(const std::string &png)
{
	return cut(png, 0, 0);
}

Box::Box()
{
	for (const char *name : {"monitor.in", "monitor.out", "console.in", "console.out", "dump.in", "dump.out"})
		mkfifo((folder / name).c_str(), 0600);
	const auto end = [&](const char *name) { return open((folder / name).c_str(), O_RDWR | O_CLOEXEC); };
	monitor = end("monitor.in");
	monitorOut = end("monitor.out");
	console = end("console.in");
	consoleOut = end("console.out");
	dump = end("dump.out");
	qemu.start({support::sourcePath("receiver/qemu"), folder.path(), "-display", "none"}, {}, STDERR_FILENO);
	command("qmp_capabilities", support::Json::object());
}

Box::~Box()
{
	qemu.end();
	for (const int pipe : {monitor, monitorOut, console, consoleOut, dump})
		close(pipe);
}

void Box::send(int pipe, const std::string &line)
{
	const std::string text = line + '\n';
	if (write(pipe, text.data(), text.size()) != static_cast<ssize_t>(text.size()))
		throw std::runtime_error("cannot write to the box");
}

std::string Box::line(int pipe, std::string &buffer)
{
	const auto end = std::chrono::steady_clock::now() + patience;
	for (;;) {
		if (const size_t newline = buffer.find('\n'); newline != buffer.npos) {
			std::string next = buffer.substr(0, newline);
			buffer.erase(0, newline + 1);
			if (!next.empty() && next.back() == '\r')
				next.pop_back();
			return next;
		}
		if (!qemu.lives())
			throw std::runtime_error("the box has ended: " + qemu.line());
		if (std::chrono::steady_clock::now() > end)
			throw std::runtime_error("the box does not answer");
		pollfd ready = {pipe, POLLIN, 0};
		char piece[4096];
		if (poll(&ready, 1, 500) > 0)
			if (const ssize_t length = read(pipe, piece, sizeof piece); length > 0)
				buffer.append(piece, static_cast<size_t>(length));
	}
}

support::Json Box::nextScreen()
{
	return support::Json::parse(line(dump, dumpText));
}

/// Runs a QMP command to its end.
void Box::command(const std::string &name, const support::Json &arguments)
{
	send(monitor, support::Json({{"execute", name}, {"arguments", arguments}, {"id", ++commands}}).dump());
	support::Json answer;
	do
		answer = support::Json::parse(line(monitorOut, monitorText));
	while (answer.value("id", 0) != commands);
	EXPECT_FALSE(answer.contains("error")) << answer;
}

void Box::type(const std::string &key)
{
	command("send-key", {{"keys", {{{"type", "qcode"}, {"data", key}}}}, {"hold-time", 20}});
}

support::Json Box::press(const std::string &key)
{
	if (asks) // sooner, the box takes it for a repeat of the previous key
		std::this_thread::sleep_for(std::chrono::seconds(1));
	type(keyOnBoard(key));
	support::Json screen = nextScreen();
	EXPECT_EQ(screen["after"], key);
	asks = screen.dump().find("eMessageBox") != std::string::npos;
	return screen;
}

std::string Box::shell(const std::string &words)
{
	// The shell joins the end mark, so an echo of the command does not contain it.
	send(console, words + "; echo; echo END-O''F-IT");
	std::string output;
	for (std::string next = line(consoleOut, consoleText); next != "END-OF-IT";
	     next = line(consoleOut, consoleText))
		output += next + '\n';
	return output.empty() ? output : output.substr(0, output.size() - 1);
}

Picture Box::screen()
{
	const std::string png = folder / ("screen-" + std::to_string(++pictures) + ".png");
	command("screendump", {{"filename", png}, {"format", "png"}});
	return cut(png, screenLeft, screenTop);
}

bool Box::switchesOff()
{
	type("power");
	return qemu.exitStatus() == 0;
}
