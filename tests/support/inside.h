#ifndef VEXLO_TESTS_INSIDE_H
#define VEXLO_TESTS_INSIDE_H

#include "peer.h"

#include <deque>
#include <optional>
#include <string>

namespace support
{

/// Presses the keys of a script, then those of next(), and then exit, for a run in the test's own program.
class Viewer : public desk::Peer
{
public:
	explicit Viewer(const std::string &keys = "");

	/// Called for each frame that waits for a key.
	virtual void onFrame(const desk::Frame &) {}

	/// The next key after the script; nullopt: exit from now on.
	virtual std::optional<desk::Key> next() { return std::nullopt; }

	void send(const desk::ToViewer &message) override;
	std::optional<desk::ToHost> receive() override;

private:
	std::deque<desk::Key> script;
};

/// Runs the plugin once in the test's own program, which is the plugin's half itself (vexlo_host_test). Returns the
/// result of plugin_exec. With `draws`, the viewer receives frames.
int runInside(Viewer &viewer, const std::string &plugin, bool draws = false);

} // namespace support

#endif
