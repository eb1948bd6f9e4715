#ifndef DESK_TOOLKIT_DESK_H
#define DESK_TOOLKIT_DESK_H

#include "display_list.h"
#include "peer.h"
#include "skin.h"
#include "windows.h"

#include <set>
#include <string>

namespace desk
{

/// The simulated receiver: its skin, its windows and its viewer.
///
/// A singleton, because the toolkit's operations name no host. Used by one thread only.
class Desk
{
public:
	static Desk &get();

	// Settings for runs, to be made before a plugin is loaded.
	void setSkin(Skin skin) { activeSkin = std::move(skin); }
	/// Sets who presses keys, and whether he wants frames and descriptions. Null: nobody; notes then go to standard
	/// error.
	void setViewer(Peer *peer, bool draws = false, bool describes = false);

	const Skin &skin() const { return activeSkin; }
	Windows &windows() { return openWindows; }
	const Windows &windows() const { return openWindows; }

	/// Called before a plugin's _exit(); may be null.
	void (*onExit)(int status) = nullptr;

	/// Translates the host's own words, which are English by default.
	const char *(*word)(const char *id) = [](const char *id) { return id; };

	/// Shows one line to the person at the desk: debug output, a command's output, a kill that was only reported.
	/// `urgent`: must not be missed.
	void note(const std::string &line, bool urgent = false);
	/// A command's output on standard error precedes later notes.
	void commandEnded();

	/// Reports a likely mistake of the plugin with that widget, and the remedy, once.
	void reportMistake(const eWidget &widget, const std::string &what);

	/// To be called before the plugin kills or deletes. False when it must not, because keys are replayed without a
	/// person.
	bool permits(const std::string &what);

	/// Begins or ends one run of the plugin. The end shows the result of the last key. `again`: see Run.
	void beginRun(bool again = false) { pressedAgain = again; }
	void endRun();

	/// The height in pixels of one row of text.
	int fontSize() const { return activeSkin.value("fontsize").value_or(20); }

	/// Runs a window's modal loop; false: the window was destroyed.
	bool run(eWidget &window);
	/// Ends the window's run, if it still runs, because the viewer left it.
	void leave(eWidget &window);

	void paint(Canvas &canvas) const;

private:
	Key nextKey();
	void showFrame(bool waits);

	Skin activeSkin;
	Peer *viewer = nullptr;
	bool draws = false, describes = false;
	Windows openWindows;
	DisplayList frame;                    ///< on the screen
	unsigned question = 0, questions = 0; ///< the open one, and the number of all so far
	bool pressedAgain = false;
	std::set<std::string> reported;
};

} // namespace desk

#endif
