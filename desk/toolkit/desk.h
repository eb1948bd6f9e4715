#ifndef DESK_TOOLKIT_DESK_H
#define DESK_TOOLKIT_DESK_H

#include "display_list.h"
#include "ewidget.h"
#include "key.h"
#include "recorder.h"
#include "screen.h"
#include "skin.h"

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace desk
{

/// The receiver that is not there: the windows that are open, the screen they are on, and the keys.
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

	/// Presses these keys before any of the screen's.
	void press(const std::vector<Key> &keys) { script.insert(script.end(), keys.begin(), keys.end()); }

	/// Begins or ends one play of the plugin. The end shows and records what the last key has left.
	void beginPlay();
	void endPlay();

	/// Makes every message box return `answer` at once, without a key; nothing: as usual.
	/// Hosts differ in their answers; this is how they are imitated.
	void setAnswer(std::optional<int> answer) { forcedAnswer = answer; }
	std::optional<int> answer() const { return forcedAnswer; }

	/// What exec() returns for a window that the viewer has left; hosts differ in that as well.
	void setLeft(int value) { leftResult = value; }

	/// The height in pixels of one row of text.
	int fontSize() const { return activeSkin.value("fontsize").value_or(20); }

	// Called by the widgets.
	void shown(eWidget &window);
	void hidden(eWidget &window);
	void gone(eWidget &widget);
	bool run(eWidget &window);   ///< the modal loop, to the end of the window's run; false: it is destroyed
	void leave(eWidget &window); ///< ends the window's run, if it still runs: the viewer has left it
	void updateFocus();
	eWidget *focus() const { return focused; }

	void paint(Canvas &canvas) const;
	nlohmann::ordered_json describe() const;

private:
	Key nextKey();
	void settle();
	void dispatch(Key key);
	bool runs(const eWidget &window) const;

	Skin activeSkin;
	std::unique_ptr<Screen> activeScreen;
	Recorder *activeRecorder = nullptr;
	std::optional<int> forcedAnswer;
	int leftResult = -1;

	DisplayList frame; ///< what the screen shows

	std::vector<eWidget *> visible; ///< top-level windows, from bottom to top
	std::vector<eWidget *> running; ///< windows in exec(), the innermost last
	eWidget *focused = nullptr;     ///< the one widget that has the focus

	std::deque<Key> script;
	bool leaving = false;           ///< nobody presses keys any more: exit until the plugin returns
	int exits = 0;                  ///< pressed because of that, in this play
	std::optional<std::string> due; ///< the moment that is not recorded yet
};

} // namespace desk

#endif
