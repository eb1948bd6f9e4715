#ifndef DESK_INTERPOSE_TEXTS_H
#define DESK_INTERPOSE_TEXTS_H

#include "catalogue.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace desk
{

/// The plugin's texts in the language that is asked for. The C library's own look-up is not used: some
/// versions of it translate nothing unless a locale is installed.
class Texts
{
public:
	static Texts &get();

	/// Takes the texts of `domain` from `folder`/LANG/LC_MESSAGES/`domain`.mo. "de_AT.UTF-8" may do with "de";
	/// English needs no catalogue. Throws an Error when there is none, or none that can be used.
	void setLanguage(const std::string &lang, const std::string &folder, const std::string &domain);

	/// Takes the host's own words from there as well, of its own domain. A language that is not there leaves them in English.
	void setWords(const std::string &folder);
	/// One of them, or `id` itself. Whatever the plugin's catalogues say.
	const char *word(const char *id) const;

	/// Whether texts are looked up here at all.
	bool translates() const { return !languages.empty(); }

	/// As dcgettext() and dcngettext(), of which it is the whole: the translation, else the text itself. It
	/// stays valid. A catalogue that cannot be used is noted once.
	const char *find(const char *domain, const char *id);
	const char *find(const char *domain, const char *id, const char *plural, unsigned long n);

	/// As textdomain() and bindtextdomain(): which domain is meant by null, and where a domain's catalogues are.
	const char *setDomain(const char *domain);
	const char *setFolder(const char *domain, const char *folder);

private:
	const std::vector<Catalogue> &cataloguesOf(const char *domain);
	std::string folderOf(const std::string &domain) const;
	std::vector<Catalogue> load(const std::string &folder, const std::string &domain) const;

	std::vector<std::string> languages; ///< names of folders, the one that says most first
	std::string current;                ///< the domain that null means
	std::string folder;
	std::map<std::string, std::string> folders; ///< of domains that have another
	std::map<std::pair<std::string, std::string>, std::vector<Catalogue>> loaded; ///< by folder and domain
	std::vector<Catalogue> words;
};

} // namespace desk

#endif
