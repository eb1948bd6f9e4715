#include "plugin.h"

#include "caller.h"

#include <dlfcn.h>
#include <sys/stat.h>

#include <algorithm>

namespace desk
{

namespace
{

std::string failure(const std::string &path, std::string reason, const char *advice)
{
	std::replace(reason.begin(), reason.end(), '\n', ' ');
	return "cannot load the plugin '" + path + "': " + reason + "; " + advice;
}

const char *adviceFor(const std::string &reason)
{
	if (reason.find("undefined symbol") != std::string::npos)
		return "it was built for another toolkit: build it against this host's";
	return "name a plugin built for this computer with --plugin";
}

} // namespace

std::unique_ptr<Plugin> Plugin::load(const std::string &path, std::string &error)
{
	// A bare name would be searched for among the system's libraries.
	const std::string place = path.find('/') == std::string::npos ? "./" + path : path;
	struct stat status;
	if (stat(place.c_str(), &status) != 0) {
		error = failure(path, "there is no such file", "build it, or name another one with --plugin");
		return nullptr;
	}
	if (!S_ISREG(status.st_mode)) {
		error = failure(path, "it is no file", "name the plugin itself with --plugin");
		return nullptr;
	}
	const PluginRuns constructors;
	void *handle = dlopen(place.c_str(), RTLD_NOW | RTLD_LOCAL);
	if (!handle) {
		const char *said = dlerror();
		const std::string reason = said ? said : "the loader does not say why";
		error = failure(path, reason, adviceFor(reason));
		return nullptr;
	}
	void *symbol = dlsym(handle, "plugin_exec");
	if (!symbol) {
		error = failure(path, "it has no plugin_exec", "name a plugin of this host's kind with --plugin");
		dlclose(handle);
		return nullptr;
	}
	return std::unique_ptr<Plugin>(new Plugin(handle, reinterpret_cast<int (*)()>(symbol)));
}

Plugin::~Plugin()
{
	const PluginRuns destructors;
	dlclose(handle);
}

int Plugin::exec()
{
	const PluginRuns runs;
	return entry();
}

} // namespace desk
