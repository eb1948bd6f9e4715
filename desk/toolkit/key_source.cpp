#include "key_source.h"

#include "trace.h"

namespace desk
{

void KeySource::restart()
{
	leaving = false;
	exits = 0;
}

std::optional<KeySource::Press> KeySource::next(Screen &screen)
{
	if (screen.closed())
		script.clear();
	if (!script.empty()) {
		const Key key = script.front();
		script.pop_front();
		return Press{key, true};
	}
	if (!leaving) {
		const Trace::Quiet waiting;
		if (const std::optional<Key> key = screen.waitKey())
			return Press{*key, true};
		leaving = true;
	}
	constexpr int mostExits = 1000;
	if (++exits > mostExits)
		return std::nullopt;
	return Press{Key::exit, false};
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
