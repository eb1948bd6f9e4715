#ifndef DESK_VIEWER_SESSION_H
#define DESK_VIEWER_SESSION_H

#include "crash_report.h"
#include "desk_error.h"
#include "note_log.h"
#include "options.h"
#include "other_half.h"
#include "recorder.h"
#include "screen.h"
#include "signals.h"
#include "skin.h"
#include "watch.h"

#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace desk
{

/// A session's parameters besides the command line.
struct Stage
{
	std::string half;     ///< the program of the plugin's half
	std::string skinText; ///< content of the skin file
	Skin skin;
	int rowHeight = 0;            ///< required by the screen; 0: any
	bool draws = false;           ///< the screen shows pictures
	bool holdsErrorsBack = false; ///< output on standard error would damage the screen
	std::string note;             ///< the first note for the person
	std::function<std::unique_ptr<Screen>()> openScreen;
};

/// Connects a person and a plugin: one loop waits for keys, messages and the end of the plugin's half, signals, and
/// changes of the plugin's file. It survives any end of the plugin.
class Session
{
public:
	Session(const Options &options, Stage stage);

	/// Throws an Error when the plugin did not run to its end, or a recording could not be written.
	void run();

private:
	using Clock = std::chrono::steady_clock;

	/// The state of the plugin's half.
	enum class State
	{
		busy,      ///< not waiting for a key
		waiting,   ///< for a key
		gone,      ///< ended; the person decides
		finishing, ///< the connection is closed, and it is about to end
		over,
	};

	void startHalf();
	std::vector<std::string> sandboxFor(const std::vector<std::string> &served);
	void listen();
	void openScreen();
	void openRecordings();
	void handle(Loaded &);
	void handle(Failed &message);
	void handle(Frame &message);
	void handle(Meaning &message);
	void handle(Note &message);
	void handle(CommandEnded &);
	void handle(Call &message);
	void handle(Harm &message);
	void handle(Returned &message);
	void handle(Crash &message);
	void lookForEnd();
	void reportEnd(const CrashReport &report);
	void startAgain(bool pressesAgain);
	bool expectLoaded();
	void letHalfEnd(std::chrono::seconds patience);
	void giveUp(const std::string &why);

	void pressNext();
	void press(Key key, bool isSomebodys);
	std::optional<Input> takeInput();
	std::optional<Input> fromScreen();
	void decide();
	void watchBusy();
	void savePicture();

	void show(const Rect &changes);
	void showPanel(const std::string &title, const std::vector<std::string> &lines);
	void hidePanel();
	void say(const std::string &line);

	void wait();
	int patience() const;
	void readErrors();
	void handleSignals();
	void close();

	const Options &options;
	const Stage stage;
	Recorder recorder;
	bool isRecording = false; ///< the recordings are open
	Signals signals;
	/// A pipe for the output of the other half and its commands, which must not get standard error itself: it may be
	/// a file.
	int errors[2] = {-1, -1};

	std::unique_ptr<Watch> watch;
	std::unique_ptr<OtherHalf> half;
	std::unique_ptr<Screen> screen;
	State state = State::busy;
	std::optional<bool> contains; ///< whether sandboxes work; nullopt: not tested yet
	std::optional<Crash> crash;   ///< from the half
	std::string whyEnded;         ///< why this half ended it; empty: it ended by itself
	bool crashed = false;         ///< gone after a crash, not after a failure to load

	DisplayList picture, panel;
	std::optional<std::string> nextRecord; ///< to record with the next frame: "start" or a key's name

	std::deque<Key> script;
	bool replays = false;       ///< the script is pressed again without a person
	std::deque<Key> meant;      ///< by the last click
	std::deque<Input> typed;    ///< while the plugin was busy
	unsigned question = 0;      ///< on the picture; see Frame
	std::optional<Key> lastKey; ///< pressed by the person
	Clock::time_point lastKeyAt;
	bool leaving = false;           ///< there are no more keys, so exit is pressed
	int exits = 0;                  ///< pressed because of `leaving`
	std::vector<Key> history;       ///< keys of this run
	std::optional<size_t> harmless; ///< number of keys before the one that did harm
	std::string afterLoading;       ///< a note for after loading

	Clock::time_point busySince = Clock::now();
	int secondsShown = 0, exitsWhileBusy = 0;
	std::optional<Clock::time_point> deadline; ///< for the end of the half

	int mistakes = 0; ///< reported mistakes of the plugin
	int plays;
	std::string returned;         ///< the line to print at the end
	std::optional<Error> failure; ///< ends the session
	int endingSignal = 0;
};

} // namespace desk

#endif
