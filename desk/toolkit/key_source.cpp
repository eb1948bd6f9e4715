#include "key_source.h"

#include "trace.h"

namespace desk
{

void KeySource::restart()
{
	leaving = restarting = false;
	exits = 0;
	history.clear();
	harmless.reset();
}

std::optional<Key> KeySource::pressAgain()
{
	const size_t count = harmless.value_or(history.size());
	script.assign(history.begin(), history.begin() + static_cast<std::ptrdiff_t>(count));
	again = true;
	return count < history.size() ? std::optional(history[count]) : std::nullopt;
}

bool KeySource::permitsHarm()
{
	if (!again && !restarting) {
		if (!harmless)
			harmless = history.empty() ? 0 : history.size() - 1;
		return true;
	}
	script.clear();
	return false;
}

std::optional<KeySource::Press> KeySource::next(Screen &screen)
{
	if (screen.closed())
		script.clear();
	if (!script.empty()) {
		const Key key = script.front();
		script.pop_front();
		remember(key);
		return Press{key, true};
	}
	again = false;
	if (!leaving) {
		const Trace::Quiet waiting;
		if (const std::optional<Key> key = screen.waitKey()) {
			remember(*key);
			return Press{*key, true};
		}
		leaving = true;
		restarting = restartAsked && restartAsked();
	}
	constexpr int mostExits = 1000;
	if (++exits > mostExits)
		return std::nullopt;
	return Press{Key::exit, false};
}

void KeySource::remember(Key key)
{
	if (restartAsked) // nothing else presses keys again
		history.push_back(key);
}

std::string KeySource::takeRest()
{
	std::string names;
	for (const Key key : script)
		names += std::string(" ") + keyName(key);
	script.clear();
	return names;
}

} // namespace desk
