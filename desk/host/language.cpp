#include "language.h"

#include "desk.h"
#include "texts.h"

#include <algorithm>
#include <filesystem>

namespace desk
{

namespace
{

/// The folder of this program's own catalogues, in the build tree or installed.
std::string ownCatalogues()
{
	namespace fs = std::filesystem;
	std::error_code failed;
	const fs::path folder = fs::read_symlink("/proc/self/exe", failed).parent_path();
	for (const char *place : {"../po", DESK_INSTALLED_CATALOGUES})
		if (fs::exists(folder / place, failed))
			return (folder / place).lexically_normal();
	return (folder / "../po").lexically_normal();
}

} // namespace

void setLanguage(const std::string &lang, const std::string &catalogue)
{
	const size_t colon = std::min(catalogue.find(':'), catalogue.size());
	const std::string folder = colon < catalogue.size() ? catalogue.substr(colon + 1) : ownCatalogues();
	Desk::get().word = [](const char *id) { return Texts::get().word(id); };
	Texts::get().setLanguage(lang, folder, catalogue.substr(0, colon));
	Texts::get().setWords(ownCatalogues());
}

} // namespace desk
