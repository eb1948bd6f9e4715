#include "plugin.h"

#include "caller.h"
#include "contract.h"
#include "desk_error.h"

#include <dlfcn.h>
#include <elf.h>
#include <link.h>

#include <algorithm>
#include <cstdlib>
#include <cxxabi.h>
#include <filesystem>

namespace desk
{

namespace
{

namespace fs = std::filesystem;

Error failure(const std::string &path, std::string reason, const char *advice)
{
	std::replace(reason.begin(), reason.end(), '\n', ' ');
	return Error("cannot load the plugin '" + path + "': " + reason + "; " + advice, statusNotToItsEnd);
}

/// The loader's error with C++ names demangled.
std::string inClear(std::string reason)
{
	const std::string before = "undefined symbol: ";
	const size_t at = reason.find(before);
	if (at == std::string::npos)
		return reason;
	const size_t begin = at + before.size();
	const size_t end = std::min(reason.find_first_of(", \t", begin), reason.size());
	int status = 0;
	char *text = abi::__cxa_demangle(reason.substr(begin, end - begin).c_str(), nullptr, nullptr, &status);
	if (text)
		reason.replace(begin, end - begin, text);
	std::free(text);
	return reason;
}

const char *adviceFor(const std::string &reason)
{
	if (reason.find("undefined symbol") != std::string::npos)
		return "link what defines it into the plugin, or, if it is the toolkit's, build against this host's "
			   "headers";
	return "name a plugin built for this computer with --plugin";
}

void requireFile(const std::string &path)
{
	std::error_code failed;
	const fs::file_status status = fs::status(path, failed);
	if (!fs::exists(status))
		throw failure(path, "there is no such file", "build it, or name another one with --plugin");
	if (!fs::is_regular_file(status))
		throw failure(path, "it is no file", "name the plugin itself with --plugin");
}

bool isFunction(const void *symbol)
{
	Dl_info info;
	void *found = nullptr;
	if (dladdr1(symbol, &info, &found, RTLD_DL_SYMENT) == 0 || !found)
		return true;
	return ELF32_ST_TYPE(static_cast<const ElfW(Sym) *>(found)->st_info) != STT_OBJECT; // as for ELF64
}

} // namespace

std::unique_ptr<Plugin> Plugin::load(const std::string &path)
{
	requireFile(path);
	// dlopen would search for a name without a slash among the system's libraries.
	const std::string place = path.find('/') == std::string::npos ? "./" + path : path;
	if (isCutOff(place))
		throw failure(path, "the file is not complete", "build it again, or copy all of it");
	// Checked before any of its code runs, because with other classes its behaviour is undefined.
	if (const std::string difference = differenceOfContract(place); !difference.empty())
		throw failure(path, "it was built against another contract: " + difference,
		              "build it against this host's headers");
	const PluginRuns constructors;
	void *handle = dlopen(place.c_str(), RTLD_NOW | RTLD_LOCAL);
	if (!handle) {
		const char *message = dlerror();
		std::string reason = message ? message : "the loader does not say why";
		if (reason.rfind(place + ": ", 0) == 0)
			reason.erase(0, place.size() + 2);
		throw failure(path, inClear(reason), adviceFor(reason));
	}
	void *symbol = dlsym(handle, "plugin_exec");
	if (!symbol || !isFunction(symbol)) {
		dlclose(handle);
		throw symbol
			? failure(path, "its plugin_exec is no function", "make it one: int plugin_exec()")
			: failure(path, "it has no plugin_exec", "name a plugin of this host's kind with --plugin");
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
