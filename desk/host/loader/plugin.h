#ifndef DESK_LOADER_PLUGIN_H
#define DESK_LOADER_PLUGIN_H

#include <memory>
#include <string>

namespace desk
{

/// A plugin, loaded as a receiver loads it: all of its symbols resolved at once, from this program.
class Plugin
{
public:
	/// Throws an Error when `path` cannot be loaded or has no plugin_exec.
	static std::unique_ptr<Plugin> load(const std::string &path);

	/// Unloads it.
	~Plugin();
	Plugin(const Plugin &) = delete;
	Plugin &operator=(const Plugin &) = delete;

	/// Calls plugin_exec and returns its result.
	int exec();

private:
	Plugin(void *loaded, int (*start)()) : handle(loaded), entry(start) {}

	void *handle;
	int (*entry)();
};

} // namespace desk

#endif
