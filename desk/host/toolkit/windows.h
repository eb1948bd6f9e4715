#ifndef DESK_TOOLKIT_WINDOWS_H
#define DESK_TOOLKIT_WINDOWS_H

#include "ewidget.h"
#include "key.h"

#include <vector>

namespace desk
{

/// The top-level windows: which are visible, which run, and which widget has the keys.
class Windows
{
public:
	/// The visible windows, from bottom to top.
	const std::vector<eWidget *> &visible() const { return shown; }
	void show(eWidget &window);
	void hide(eWidget &window);

	/// A window is in exec(): from its start to its stop, or to its destruction. Runs nest.
	void start(eWidget &window);
	void stop(eWidget &window);
	bool runs(const eWidget &window) const;

	/// Forgets a widget of any kind that is being destroyed.
	void forget(eWidget &widget);
	/// Forgets all windows: what a plugin has left behind goes with its code.
	void forgetAll();

	/// The one widget that has the focus, in the innermost window that runs; null when none runs.
	eWidget *focus() const { return focused; }
	/// Determines it again, after anything it depends on has changed, and notifies the widgets.
	void updateFocus();

	/// Hands a key to the widget that has the focus, then to its window. A window must be running.
	void dispatch(Key key);

	/// The keys that do what a click at this place of the screen means; none: there is nothing to click.
	std::vector<Key> keysAt(int x, int y) const;

private:
	std::vector<eWidget *> shown;
	std::vector<eWidget *> running; ///< the innermost last
	eWidget *focused = nullptr;
};

} // namespace desk

#endif
