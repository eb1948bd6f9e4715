#ifndef DESK_INTERPOSE_TEXTS_H
#define DESK_INTERPOSE_TEXTS_H

#include "catalogue.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace desk
{

/// The plugin's texts in the requested language. Replaces libc's look-up, which in some versions translates nothing
/// unless a locale is installed.
class Texts
{
public:
	static Texts &get();

	/// Takes the texts of `domain` from `folder`/LANG/LC_MESSAGES/`domain`.mo. For "de_AT.UTF-8" it also tries "de";
	/// English needs no catalogue. Throws an Error when there is no usable catalogue.
	void setLanguage(const std::string &lang, const std::string &folder, const std::string &domain);

	/// Takes the host's own words from `folder` as well. Without that language they stay English.
	void setWords(const std::string &folder);
	/// The translation of a host's word, else `id`; independent of the plugin's catalogues.
	const char *word(const char *id) const;

	/// Whether a language is set.
	bool translates() const { return !languages.empty(); }

	/// Like dcgettext() and dcngettext(): the translation, else the text itself. The result stays valid. A note
	/// reports an unusable catalogue once.
	const char *find(const char *domain, const char *id);
	const char *find(const char *domain, const char *id, const char *plural, unsigned long n);

	/// Like textdomain() and bindtextdomain(): set the default domain, and the folder of a domain's catalogues.
	const char *setDomain(const char *domain);
	const char *setFolder(const char *domain, const char *folder);

private:
	const std::vector<Catalogue> &cataloguesOf(const char *domain);
	std::string folderOf(const std::string &domain) const;
	std::vector<Catalogue> load(const std::string &folder, const std::string &domain) const;

	std::vector<std::string> languages; ///< names of folders, the most specific first
	std::string current;                ///< the default domain
	std::string folder;
	std::map<std::string, std::string> folders; ///< of domains with a folder of their own
	std::map<std::pair<std::string, std::string>, std::vector<Catalogue>> loaded; ///< by folder and domain
	std::vector<Catalogue> words;
};

} // namespace desk

#endif
