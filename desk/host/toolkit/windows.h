#ifndef DESK_TOOLKIT_WINDOWS_H
#define DESK_TOOLKIT_WINDOWS_H

#include "ewidget.h"
#include "key.h"

#include <vector>

namespace desk
{

/// The top-level windows: which are visible, which run, and which widget has the focus.
class Windows
{
public:
	/// The visible windows, from bottom to top.
	const std::vector<eWidget *> &visible() const { return shown; }
	void show(eWidget &window);
	void hide(eWidget &window);

	/// A window is in exec() between start() and stop(), or its destruction. Runs nest.
	void start(eWidget &window);
	void stop(eWidget &window);
	bool runs(const eWidget &window) const;

	/// Forgets a widget of any kind that is being destroyed.
	void forget(eWidget &widget);
	/// Forgets all windows, because those left by a plugin are destroyed with its code.
	void forgetAll();

	/// The widget with the focus, in the innermost running window; null when none runs.
	eWidget *focus() const { return focused; }
	/// Determines the focus after a change of anything that it depends on, and notifies the widgets.
	void updateFocus();

	/// Sends a key to the widget with the focus, then to its window. A window must be running.
	void dispatch(Key key);

	/// The keys that act like a click at this position of the screen; none where a click has no meaning.
	std::vector<Key> keysAt(int x, int y) const;

private:
	std::vector<eWidget *> shown;
	std::vector<eWidget *> running; ///< the innermost last
	eWidget *focused = nullptr;
};

} // namespace desk

#endif
