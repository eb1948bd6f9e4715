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

/// The receiver that is not there: its skin, its windows, and who looks at them.
///
/// One for the process, because the toolkit's operations name none. Everything runs on one thread.
class Desk
{
public:
	static Desk &get();

	// What a run is made of; set before the plugin is loaded.
	void setSkin(Skin skin) { activeSkin = std::move(skin); }
	/// Who presses the keys, and whether he wants frames to draw and descriptions of them. Null: nobody;
	/// notes then go to standard error.
	void setViewer(Peer *peer, bool draws = false, bool describes = false);

	const Skin &skin() const { return activeSkin; }
	Windows &windows() { return openWindows; }
	const Windows &windows() const { return openWindows; }

	/// What a plugin's _exit() is told to before; null: nobody.
	void (*onExit)(int status) = nullptr;

	/// The translation of one of the host's own words; null: they are English.
	const char *(*word)(const char *id) = nullptr;

	/// Shows one line to the person at the desk: debug output, what a command printed, a kill that was only
	/// reported. `urgent`: it must not be missed.
	void note(const std::string &line, bool urgent = false);
	/// What a command has printed on standard error comes before the notes that follow.
	void said();

	/// Says once that the plugin does with that widget what can hardly be meant, and what to do.
	void notice(const eWidget &widget, const std::string &what);

	/// To be asked before the plugin does harm: kills or deletes. False when it must not be done, because
	/// nobody presses the keys.
	bool permits(const std::string &what);

	/// Begins or ends one run of the plugin. The end shows what the last key has left. `again`: see Run.
	void beginRun(bool again = false) { pressedAgain = again; }
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
	void showFrame(bool waits);

	Skin activeSkin;
	Peer *viewer = nullptr;
	bool draws = false, describes = false;
	Windows openWindows;
	DisplayList frame;                    ///< what the screen shows
	unsigned question = 0, questions = 0; ///< the one that is asked, and how many have been
	bool pressedAgain = false;
	std::set<std::string> noticed;
};

} // namespace desk

#endif
