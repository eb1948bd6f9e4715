#ifndef VEXLO_TESTS_DESK_VIEWER_FAKE_HALF_H
#define VEXLO_TESTS_DESK_VIEWER_FAKE_HALF_H

#include "pipe_peer.h"

#include <optional>
#include <string>

/// Stands for the plugin's half in a test's program that --through starts.
class FakeHalf
{
public:
	/// Takes standard input and output as the plugin's half does, and reports a loaded plugin.
	FakeHalf();

	void note(const std::string &line);
	void show(const desk::DisplayList &frame, bool waits = true);
	/// The next key. `clicked` answers a click with the keys that it means. nullopt: the viewer's half has ended.
	std::optional<desk::Key> key(desk::Meaning (*clicked)(const desk::Click &) = nullptr);
	/// Reports the end of the run.
	void returned(int result);

private:
	desk::PipePeer peer;
	desk::DisplayList before;
};

#endif
