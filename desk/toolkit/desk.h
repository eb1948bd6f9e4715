#ifndef DESK_TOOLKIT_DESK_H
#define DESK_TOOLKIT_DESK_H

#include "display_list.h"
#include "key_source.h"
#include "recorder.h"
#include "screen.h"
#include "skin.h"
#include "windows.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace desk
{

/// What hosts differ in; tests imitate others.
struct HostHabits
{
	std::optional<int> answer; ///< what every message box returns at once, without a key; nothing: its answer
	int left = -1;             ///< what exec() returns for a window that the viewer has left
};

/// The receiver that is not there: its skin, its screen, its windows and its keys.
///
/// One for the process, because the toolkit's operations name none. Everything runs on one thread.
class Desk
{
public:
	static Desk &get();

	// What a run is made of; set before the plugin is loaded.
	void setSkin(Skin skin) { activeSkin = std::move(skin); }
	void setScreen(std::unique_ptr<Screen> screen);
	void setRecorder(Recorder *recorder) { activeRecorder = recorder; }

	const Skin &skin() const { return activeSkin; }
	Screen &screen();
	Windows &windows() { return openWindows; }
	const Windows &windows() const { return openWindows; }

	HostHabits habits;

	/// Presses these keys before any of the screen's.
	void press(const std::vector<Key> &script) { keys.press(script); }

	/// Presses those keys again that were pressed before, up to the first one that did harm.
	void pressAgain();

	/// What is asked when the screen's wait ends without a key: whether the run is to end for another one,
	/// with the picture left as it is. Null: never.
	void setRestart(std::function<bool()> asked) { keys.setRestart(std::move(asked)); }
	bool restarts() const { return keys.restarts(); }

	/// To be asked before the plugin does harm: kills or deletes. False when it must not be done, because
	/// nobody presses the keys.
	bool permits(const std::string &what);

	/// Begins or ends one run of the plugin. The end shows and records what the last key has left.
	void beginRun();
	void endRun();

	/// The height in pixels of one row of text.
	int fontSize() const { return activeSkin.value("fontsize").value_or(20); }

	/// The modal loop of a window, to the end of its run; false: the window is destroyed.
	bool run(eWidget &window);
	/// Ends the window's run, if it still runs: the viewer has left it.
	void leave(eWidget &window);

	void paint(Canvas &canvas) const;

private:
	Key nextKey();
	void showFrame();

	Skin activeSkin;
	std::unique_ptr<Screen> activeScreen;
	Recorder *activeRecorder = nullptr;
	Windows openWindows;
	KeySource keys;
	DisplayList frame;              ///< what the screen shows
	std::optional<std::string> due; ///< what is to be recorded with the next frame: "start" or a key's name
};

} // namespace desk

#endif
