#ifndef DESK_TOOLKIT_KEY_SOURCE_H
#define DESK_TOOLKIT_KEY_SOURCE_H

#include "key.h"
#include "screen.h"

#include <deque>
#include <optional>
#include <string>
#include <vector>

namespace desk
{

/// Where the keys of a run come from: a script, then the screen, and then, when nobody presses any more or the
/// screen is closed, exit until the plugin returns.
class KeySource
{
public:
	struct Press
	{
		Key key;
		bool viewers; ///< by the script or on the screen
	};

	/// Adds to the script.
	void press(const std::vector<Key> &keys) { script.insert(script.end(), keys.begin(), keys.end()); }

	/// A run begins: the screen is asked again.
	void restart();

	/// The next key; sleeps in the screen. Nothing: exit has been pressed a thousand times in vain.
	std::optional<Press> next(Screen &screen);

	/// Empties the script, and returns the names of the keys that were left in it, a blank before each.
	std::string takeRest();

private:
	std::deque<Key> script;
	bool leaving = false; ///< nobody presses keys any more
	int exits = 0;        ///< pressed because of that
};

} // namespace desk

#endif
