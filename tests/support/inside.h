#ifndef VEXLO_TESTS_INSIDE_H
#define VEXLO_TESTS_INSIDE_H

#include "peer.h"

#include <deque>
#include <optional>
#include <string>

namespace support
{

/// Who presses the keys of a run in the test's own program: those of a script, then those of next(), and then exit.
class Viewer : public desk::Peer
{
public:
	explicit Viewer(const std::string &keys = "");

	/// A frame has come that waits for a key.
	virtual void look(const desk::Frame &) {}

	/// The key after the script; nothing: exit from now on.
	virtual std::optional<desk::Key> next() { return std::nullopt; }

	void send(const desk::ToViewer &message) override;
	std::optional<desk::ToHost> receive() override;

private:
	std::deque<desk::Key> script;
};

/// One run of the plugin in the test's own program, which is then the plugin's half itself: see vexlo_host_test.
/// Returns what plugin_exec returned. `draws`: the viewer looks at frames.
int runInside(Viewer &viewer, const std::string &plugin, bool draws = false);
/// The same of the service menu.
int runInside(const std::string &keys = "");

} // namespace support

#endif
