#include "texts.h"

#include "desk.h"
#include "desk_error.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <set>

namespace desk
{

namespace
{

namespace fs = std::filesystem;

fs::path fileOf(const fs::path &folder, const std::string &language, const std::string &domain)
{
	return folder / language / "LC_MESSAGES" / (domain + ".mo");
}

} // namespace

Texts &Texts::get()
{
	static Texts texts;
	return texts;
}

void Texts::setLanguage(const std::string &lang, const std::string &in, const std::string &domain)
{
	const std::string territory = lang.substr(0, lang.find_first_of(".@"));
	const std::string language = territory.substr(0, territory.find('_'));
	if (language == "en") // the original texts are English
		return;
	const auto isThere = [&](const std::string &name) {
		std::error_code failed;
		return fs::exists(fileOf(in, name, domain), failed);
	};
	const bool plain = lang.find('/') == std::string::npos && !language.empty();
	if (!plain || (!isThere(territory) && !isThere(language))) {
		std::error_code failed;
		std::set<std::string> known = {"en"};
		for (fs::directory_iterator entry(in, failed); !failed && entry != fs::end(entry);
		     entry.increment(failed))
			if (const std::string name = entry->path().filename(); isThere(name))
				known.insert(name);
		std::string line = "there is no message catalogue '" + domain + "' for '" + lang + "' in '" +
		                   fs::path(in).lexically_normal().string() + "'; --lang knows:";
		for (const std::string &name : known)
			line += ' ' + name;
		throw Error(line + "; --catalogue names another folder");
	}
	const std::string modifier = lang.substr(std::min(lang.find('@'), lang.size()));
	languages = {lang, territory + modifier, language + modifier, territory, language};
	current = domain;
	std::error_code failed;
	folder = fs::absolute(in, failed); // the plugin may change the working folder
	loaded[{folder, current}] = load(folder, current);
}

void Texts::setWords(const std::string &from)
{
	words = load(from, "vexlomenu");
}

const char *Texts::word(const char *id) const
{
	for (const Catalogue &catalogue : words)
		if (const char *translation = catalogue.find(id))
			return translation;
	return id;
}

std::vector<Catalogue> Texts::load(const std::string &from, const std::string &domain) const
{
	std::vector<Catalogue> catalogues;
	std::set<std::string> seen;
	for (const std::string &language : languages) {
		const fs::path path = fileOf(from, language, domain);
		std::error_code failed;
		if (seen.insert(language).second && fs::exists(path, failed))
			catalogues.push_back(Catalogue::load(path));
	}
	return catalogues;
}

const std::vector<Catalogue> &Texts::cataloguesOf(const char *domain)
{
	const std::string name = domain ? domain : current;
	const std::string from = folderOf(name);
	const auto known = loaded.find({from, name});
	if (known != loaded.end())
		return known->second;
	const int reason = errno;
	std::vector<Catalogue> &added = loaded[{from, name}];
	try {
		added = load(from, name);
	} catch (const Error &error) { // the plugin goes on without translations
		Desk::get().note("deskhost: " + error.line);
	}
	errno = reason;
	return added;
}

const char *Texts::find(const char *domain, const char *id)
{
	for (const Catalogue &catalogue : cataloguesOf(domain))
		if (const char *translation = catalogue.find(id))
			return translation;
	return id;
}

const char *Texts::find(const char *domain, const char *id, const char *plural, unsigned long n)
{
	for (const Catalogue &catalogue : cataloguesOf(domain))
		if (const char *translation = catalogue.find(id, n))
			return translation;
	return n == 1 ? id : plural;
}

const char *Texts::setDomain(const char *domain)
{
	if (domain)
		current = *domain ? domain : "messages";
	return current.c_str();
}

const char *Texts::setFolder(const char *domain, const char *to)
{
	if (!domain || !*domain)
		return nullptr;
	std::string &its = folders.emplace(domain, folder).first->second;
	std::error_code failed;
	if (to)
		its = fs::absolute(to, failed);
	return its.c_str();
}

std::string Texts::folderOf(const std::string &domain) const
{
	const auto found = folders.find(domain);
	return found == folders.end() ? folder : found->second;
}

} // namespace desk
