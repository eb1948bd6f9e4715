#include "framebuffer_screen.h"

#include "console.h"
#include "framebuffer.h"
#include "note_log.h"
#include "pixel_canvas.h"
#include "remote_control.h"

#include <utility>

namespace desk
{
namespace
{

/// Moves what is shown instead of its own pixels: those of a moved part are not used before they are painted again.
class FrameCanvas : public PixelCanvas
{
public:
	explicit FrameCanvas(Framebuffer &framebuffer) : memory(framebuffer) {}

	bool move(const Rect &area, int down) override { return memory.move(area, down); }

private:
	Framebuffer &memory;
};

class FramebufferScreen : public Screen
{
public:
	explicit FramebufferScreen(FramebufferDevices devices)
	{
		if (devices.framebuffer.empty())
			devices.framebuffer = findFramebuffer("/dev");
		if (devices.remote.empty())
			devices.remote = findRemoteControl("/dev/input");
		remoteName = devices.remote;
		remote = RemoteControl::open(devices.remote);
		memory = Framebuffer::open(devices.framebuffer);
		// Last, so that a failure changes nothing.
		taken = Console::take(devices.console);
		memory->blacken();
		painted.emplace(*memory);
	}

	Canvas *canvas() override { return &*painted; }

	void present(const Rect &changed) override
	{
		memory->show(painted->pixels(), painted->stride(), changed);
	}

	int descriptor() const override { return remote->descriptor(); }

	void readInput() override
	{
		remote->readInput();
		if (remote->descriptor() < 0 && !std::exchange(goneNoted, true))
			NoteLog::get().add("deskhost: the remote control '" + remoteName +
			                   "' is gone; was it unplugged?");
	}

	std::optional<Input> take() override
	{
		const std::optional<RemoteControl::Press> press = remote->take();
		return press ? std::optional(Input{press->key, press->repeat}) : std::nullopt;
	}

	bool hasKeys() const override { return !remote->gone(); }

	ConsoleModes console() const override { return taken ? taken->originalModes() : ConsoleModes(); }

private:
	std::string remoteName;
	bool goneNoted = false;
	std::unique_ptr<RemoteControl> remote;
	std::unique_ptr<Console> taken;
	std::unique_ptr<Framebuffer> memory;
	std::optional<FrameCanvas> painted;
};

} // namespace

std::unique_ptr<Screen> makeFramebufferScreen(const FramebufferDevices &devices)
{
	return std::make_unique<FramebufferScreen>(devices);
}

} // namespace desk
