#ifndef DESK_TOOLKIT_KEY_SOURCE_H
#define DESK_TOOLKIT_KEY_SOURCE_H

#include "key.h"
#include "screen.h"

#include <deque>
#include <functional>
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

	/// Adds the keys of the run before, up to the first one that did harm, and returns that one. Until they are
	/// pressed nobody answers for what they do.
	std::optional<Key> pressAgain();

	/// To be asked before the last key does harm. False, and an empty script: nobody pressed it.
	bool permitsHarm();

	/// What is asked when the screen's wait ends without a key: whether the run is to end for another one.
	/// Null: never.
	void setRestart(std::function<bool()> asked) { restartAsked = std::move(asked); }
	bool restarts() const { return restarting; }

	/// The next key; sleeps in the screen. Nothing: exit has been pressed a thousand times in vain.
	std::optional<Press> next(Screen &screen);

	/// Empties the script, and returns the names of the keys that were left in it, a blank before each.
	std::string takeRest();

private:
	void remember(Key key);

	std::deque<Key> script;
	bool leaving = false; ///< nobody presses keys any more
	int exits = 0;        ///< pressed because of that

	std::vector<Key> history;       ///< the keys of this run
	std::optional<size_t> harmless; ///< how many of them came before the one that did harm
	bool again = false;             ///< the script is not pressed by anybody
	bool restarting = false;
	std::function<bool()> restartAsked;
};

} // namespace desk

#endif
