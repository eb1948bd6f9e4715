#include "kernel.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/input.h>
#include <linux/kd.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstring>
#include <map>
#include <set>

namespace kernel
{
namespace
{

/// The test's devices, by the inode of the file that stands for each.
std::map<ino_t, FramebufferDevice *> framebuffers;
std::map<ino_t, Remote *> remotes;
std::set<std::string> consoles; // their paths

ino_t inode(const std::string &path)
{
	struct stat status = {};
	stat(path.c_str(), &status);
	return status.st_ino;
}

template <class Device> Device *deviceOf(const std::map<ino_t, Device *> &devices, int file)
{
	struct stat status;
	if (fstat(file, &status) != 0)
		return nullptr;
	const auto found = devices.find(status.st_ino);
	return found == devices.end() ? nullptr : found->second;
}

/// hangUp() replaces the file, so a descriptor of the old file is no console.
bool isConsole(int file)
{
	char path[PATH_MAX];
	const ssize_t length = readlink(("/proc/self/fd/" + std::to_string(file)).c_str(), path, sizeof path);
	return length > 0 && consoles.count(std::string(path, static_cast<size_t>(length))) > 0;
}

int answer(FramebufferDevice &device, unsigned long request, void *argument)
{
	switch (request) {
	case FBIOGET_VSCREENINFO:
		memcpy(argument, &device.mode, sizeof device.mode);
		return 0;
	case FBIOGET_FSCREENINFO:
		memcpy(argument, &device.fixed, sizeof device.fixed);
		return 0;
	case FBIOPUTCMAP: {
		const fb_cmap &tables = *static_cast<fb_cmap *>(argument);
		device.table.assign(tables.red, tables.red + tables.len);
		return 0;
	}
	case FBIOBLANK:
		return 0;
	default:
		errno = ENOTTY;
		return -1;
	}
}

int answer(const Remote &remote, unsigned long request, void *argument)
{
	const size_t size = _IOC_SIZE(request);
	const unsigned int number = _IOC_NR(request);
	const auto set = [&](unsigned int bit) {
		if (bit / 8 < size)
			static_cast<unsigned char *>(argument)[bit / 8] |= static_cast<unsigned char>(1u << bit % 8);
	};
	if (_IOC_TYPE(request) != 'E') {
		errno = ENOTTY;
		return -1;
	}
	if (number == _IOC_NR(EVIOCGPHYS(0)) || number == _IOC_NR(EVIOCGUNIQ(0))) {
		errno = ENOENT;
		return -1;
	}
	if (_IOC_DIR(request) == _IOC_READ)
		memset(argument, 0, size);
	if (number == _IOC_NR(EVIOCGBIT(0, 0)))
		for (const int type : {EV_SYN, EV_KEY, EV_REP})
			set(static_cast<unsigned int>(type));
	if (number == _IOC_NR(EVIOCGBIT(EV_KEY, 0)))
		for (const unsigned int code : remote.codes)
			set(code);
	return 0;
}

int answer(int file, unsigned long request, unsigned long argument)
{
	long modes[2];
	if (pread(file, modes, sizeof modes, 0) != sizeof modes)
		return -1;
	if (request == KDGETMODE || request == KDGKBMODE) {
		*reinterpret_cast<int *>(argument) = static_cast<int>(modes[request == KDGKBMODE]);
		return 0;
	}
	if (request != KDSETMODE && request != KDSKBMODE)
		return -1;
	const long mode = static_cast<long>(argument);
	const off_t place = request == KDSKBMODE ? sizeof mode : 0;
	return pwrite(file, &mode, sizeof mode, place) == sizeof mode ? 0 : -1;
}

long consoleMode(const std::string &path, size_t which)
{
	long modes[2] = {};
	memcpy(modes, support::readFile(path).data(), sizeof modes);
	return modes[which];
}

} // namespace

FramebufferDevice::FramebufferDevice(const support::TempFolder &folder, int width, int height, int bits,
                                     fb_bitfield red, fb_bitfield green, fb_bitfield blue,
                                     const std::string &name)
	: path(folder.write(name, ""))
{
	mode.xres = mode.xres_virtual = static_cast<uint32_t>(width);
	mode.yres = mode.yres_virtual = static_cast<uint32_t>(height);
	mode.bits_per_pixel = static_cast<uint32_t>(bits);
	mode.red = red;
	mode.green = green;
	mode.blue = blue;
	fixed.type = FB_TYPE_PACKED_PIXELS;
	fixed.visual = FB_VISUAL_TRUECOLOR;
	fixed.line_length = mode.xres * mode.bits_per_pixel / 8;
	resize();
	framebuffers[inode(path)] = this;
}

FramebufferDevice::~FramebufferDevice()
{
	framebuffers.erase(inode(path));
}

void FramebufferDevice::resize() const
{
	const_cast<FramebufferDevice *>(this)->fixed.smem_len = fixed.line_length * mode.yres_virtual;
	const std::string before(fixed.smem_len, '\xAB');
	FILE *file = fopen(path.c_str(), "wb");
	ASSERT_TRUE(file);
	fwrite(before.data(), 1, before.size(), file);
	fclose(file);
}

std::string FramebufferDevice::memory() const
{
	return support::readFile(path);
}

uint32_t FramebufferDevice::pixel(int x, int y) const
{
	const size_t bytes = mode.bits_per_pixel / 8;
	const size_t at = (static_cast<size_t>(y) + mode.yoffset) * fixed.line_length +
	                  (static_cast<size_t>(x) + mode.xoffset) * bytes;
	uint32_t value = 0;
	memcpy(&value, memory().data() + at, bytes); // the tests run on little-endian computers
	return value;
}

Remote::Remote(const support::TempFolder &folder, std::vector<unsigned int> keys, const std::string &name)
	: path(folder / name), codes(std::move(keys))
{
	mkfifo(path.c_str(), 0600);
	end = open(path.c_str(), O_RDWR | O_CLOEXEC); // does not wait for a reader
	remotes[inode(path)] = this;
}

Remote::~Remote()
{
	remotes.erase(inode(path));
	unplug();
}

void Remote::unplug()
{
	if (end >= 0)
		close(end);
	end = -1;
}

void Remote::send(unsigned int type, unsigned int code, int value) const
{
	input_event event = {};
	event.type = static_cast<uint16_t>(type);
	event.code = static_cast<uint16_t>(code);
	event.value = value;
	ASSERT_EQ(write(end, &event, sizeof event), static_cast<ssize_t>(sizeof event));
}

void Remote::key(unsigned int code, int value) const
{
	send(EV_KEY, code, value);
	send(EV_SYN, SYN_REPORT, 0);
}

void Remote::press(unsigned int code) const
{
	key(code, 1);
	key(code, 0);
}

Console::Console(const support::TempFolder &folder)
{
	const long modes[2] = {KD_TEXT, K_UNICODE};
	path = folder.write("console", std::string(reinterpret_cast<const char *>(modes), sizeof modes));
	consoles.insert(path);
}

Console::~Console()
{
	consoles.erase(path);
}

void Console::hangUp() const
{
	const std::string modes = support::readFile(path), next = path + ".next";
	support::writeFile(next, modes);
	EXPECT_EQ(rename(next.c_str(), path.c_str()), 0);
}

std::string Console::display() const
{
	return consoleMode(path, 0) == KD_GRAPHICS ? "graphics" : "text";
}

std::string Console::keyboard() const
{
	return consoleMode(path, 1) == K_OFF ? "off" : "typing";
}

} // namespace kernel

/// Replaces libc's for the desk host's code and for libevdev.
extern "C" int ioctl(int file, unsigned long request, ...) noexcept
{
	va_list arguments;
	va_start(arguments, request);
	void *argument = va_arg(arguments, void *);
	va_end(arguments);
	using namespace kernel;
	if (FramebufferDevice *device = deviceOf(framebuffers, file))
		return answer(*device, request, argument);
	if (const Remote *remote = deviceOf(remotes, file))
		return answer(*remote, request, argument);
	if (isConsole(file))
		return answer(file, request, reinterpret_cast<unsigned long>(argument));
	return static_cast<int>(syscall(SYS_ioctl, file, request, argument));
}
