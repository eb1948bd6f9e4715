#ifndef DESK_LOADER_PLUGIN_H
#define DESK_LOADER_PLUGIN_H

#include <memory>
#include <string>

namespace desk
{

/// A plugin, loaded as on a receiver: all its symbols are resolved at once, from this program.
class Plugin
{
public:
	/// Throws an Error when `path` cannot be loaded or has no plugin_exec.
	static std::unique_ptr<Plugin> load(const std::string &path);

	~Plugin();
	Plugin(const Plugin &) = delete;
	Plugin &operator=(const Plugin &) = delete;

	int exec();

private:
	Plugin(void *loaded, int (*start)()) : handle(loaded), entry(start) {}

	void *handle;
	int (*entry)();
};

} // namespace desk

#endif
