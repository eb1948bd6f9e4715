#ifndef VEXLO_TESTS_DESK_VIEWER_FAKE_HALF_H
#define VEXLO_TESTS_DESK_VIEWER_FAKE_HALF_H

#include "pipe_peer.h"

#include <optional>
#include <string>

/// What the viewer's half takes for the half of a plugin: a test's program, started by --through.
class FakeHalf
{
public:
	/// Takes standard input and output as that half does, and says that a plugin is loaded.
	FakeHalf();

	void note(const std::string &line);
	/// Shows a frame.
	void show(const desk::DisplayList &frame, bool waits = true);
	/// The next key; of a click `clicked` says what it means. Nothing: the viewer's half has ended.
	std::optional<desk::Key> key(desk::Meaning (*clicked)(const desk::Click &) = nullptr);
	/// The end of the run.
	void returned(int result);

private:
	desk::PipePeer peer;
	desk::DisplayList before;
};

#endif
