#ifndef DESK_VIEWER_SESSION_H
#define DESK_VIEWER_SESSION_H

#include "crash_report.h"
#include "desk_error.h"
#include "held_output.h"
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

/// What a session is made of besides the command line.
struct Stage
{
	std::string half;     ///< the program of the plugin's half
	std::string skinText; ///< the skin's file
	Skin skin;
	int rowHeight = 0;            ///< that the screen's rows of text must have; 0: any
	bool draws = false;           ///< the screen shows something
	bool holdsErrorsBack = false; ///< what is written to standard error would tear the screen
	std::string note;             ///< for the person, first of all
	std::function<std::unique_ptr<Screen>()> openScreen;
};

/// A person and a plugin: one loop that waits for keys, for what the plugin's half says, for its end, for signals and
/// for the plugin's file. It lives on whatever the plugin does.
class Session
{
public:
	Session(const Options &options, Stage stage);

	/// Throws an Error when the plugin has not run to its end, or not everything could be written.
	void run();

private:
	using Clock = std::chrono::steady_clock;

	/// What the plugin's half is doing.
	enum class State
	{
		busy,      ///< something else than waiting for a key
		waiting,   ///< for a key
		gone,      ///< it has ended, and the person is to decide
		finishing, ///< it has nothing more to do and is ending
		over,
	};

	// The other half.
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
	void handle(Said &);
	void handle(Call &message);
	void handle(Harm &message);
	void handle(Returned &message);
	void handle(Crash &message);
	void lookForEnd();
	void reportEnd(const CrashReport &report);
	void startAgain(bool pressesAgain);
	void letHalfEnd();
	void giveUp(const std::string &why);

	// The person.
	void pressNext();
	void press(Key key, bool isSomebodys);
	std::optional<Input> takeInput();
	std::optional<Input> fromScreen();
	void decide();
	void watchBusy();
	void savePicture();

	// The screen.
	void show(const Rect &changes);
	void showPanel(const std::string &title, const std::vector<std::string> &lines);
	void hidePanel();
	void say(const std::string &line);

	// The loop.
	void wait();
	int patience() const;
	void readErrors();
	void handleSignals();
	void close();

	const Options &options;
	const Stage stage;
	Recorder recorder;
	bool isRecording = false; ///< what is to be recorded is open
	Signals signals;
	HeldOutput held;
	/// A pipe of what the other half and its commands print. They do not get standard error itself: it may be a file.
	int errors[2] = {-1, -1};

	std::unique_ptr<Watch> watch;
	std::unique_ptr<OtherHalf> half;
	std::unique_ptr<Screen> screen;
	State state = State::busy;
	std::optional<bool> contains; ///< whether there are sandboxes; nothing: has not been tried out
	std::optional<Crash> crash;   ///< the half's last words
	std::string whyEnded;         ///< by this half; empty: by itself
	bool crashed = false;         ///< gone by a crash, not because it cannot be loaded

	DisplayList picture, panel;
	std::optional<std::string>
		nextRecord; ///< what is to be recorded with the next frame: "start" or a key's name

	std::deque<Key> script;
	bool replays = false;           ///< the script is pressed again, by nobody
	std::deque<Key> meant;          ///< by the last click
	std::deque<Input> typed;        ///< while the plugin was busy
	unsigned question = 0;          ///< that the picture asks; see Frame
	std::optional<Key> lastKey;     ///< of the person's ...
	Clock::time_point lastKeyAt;    ///< ... and when it came
	bool leaving = false;           ///< nobody presses keys any more
	int exits = 0;                  ///< that were pressed because of that
	std::vector<Key> history;       ///< the keys of this run
	std::optional<size_t> harmless; ///< how many of them came before the one that did harm
	std::string afterLoading;       ///< what to say then

	Clock::time_point busySince = Clock::now();
	int secondsShown = 0, exitsWhileBusy = 0;
	std::optional<Clock::time_point> deadline; ///< of the half that is to end

	int notices = 0; ///< of mistakes in the plugin
	int plays;
	std::string returned;         ///< what is to be printed in the end
	std::optional<Error> failure; ///< what ends it
	int endingSignal = 0;
};

} // namespace desk

#endif
