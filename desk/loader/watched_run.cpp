#include "watched_run.h"

#include "desk.h"
#include "plugin.h"
#include "watch.h"

namespace desk
{

namespace
{

/// The plugin as it is now, or as soon as it can be loaded; null when the viewer leaves before.
std::unique_ptr<Plugin> loadAgain(const std::string &path, Watch &watch)
{
	Screen &screen = Desk::get().screen();
	for (;;) {
		std::string error;
		if (auto plugin = Plugin::loadCopy(path, error)) {
			screen.notify({});
			return plugin;
		}
		screen.notify("deskhost: " + error);
		for (bool changed = false; !changed;) {
			const std::optional<Key> key = screen.waitKey();
			changed = !key && watch.changed();
			if (!changed && (!key || *key == Key::exit))
				return nullptr;
		}
	}
}

} // namespace

bool runWatched(const std::string &path, const std::vector<Key> &keys, int &result, std::string &error)
{
	Desk &desk = Desk::get();
	std::unique_ptr<Plugin> plugin = Plugin::loadCopy(path, error);
	if (!plugin)
		return false;
	const auto watch = Watch::start(
		path, [&desk] { desk.screen().wake(); }, error);
	if (!watch)
		return false;

	desk.setRestart([&watch] { return watch->changed(); });
	desk.press(keys);
	while (plugin) {
		desk.beginRun();
		result = plugin->exec();
		desk.endRun();
		plugin.reset();
		if (desk.restarts() && (plugin = loadAgain(path, *watch)))
			desk.pressAgain();
	}
	desk.setRestart(nullptr);
	return true;
}

} // namespace desk
