#ifndef DESK_INTERPOSE_CATALOGUE_H
#define DESK_INTERPOSE_CATALOGUE_H

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace desk
{

/// The translations of one language and domain: a file that msgfmt has made, in UTF-8.
///
/// It is checked as a whole when it is read, because it may come from anywhere: what is taken has no text
/// that lies outside of it, or that formats values which its original does not have.
class Catalogue
{
public:
	/// Reads the file, or throws an Error.
	static Catalogue load(const std::string &path);

	/// Takes the bytes of such a file; `path` is what an error calls it.
	static Catalogue parse(const std::string &bytes, const std::string &path);

	Catalogue(Catalogue &&) = default;
	Catalogue &operator=(Catalogue &&) = default;

	/// The translation of `id`, of "" the catalogue's header; null when there is none. It belongs to the
	/// catalogue.
	const char *find(const char *id) const;

	/// The same in the form that is for `n` things.
	const char *find(const char *id, unsigned long n) const;

private:
	Catalogue() = default;

	/// Returns what is wrong, "" for nothing.
	std::string read();
	std::string readHeader();

	std::vector<char> bytes; ///< the file, which the rest is a view of
	/// Each with a NUL behind it. A text that has forms holds them one after another, with a NUL between two.
	std::unordered_map<std::string_view, std::string_view> texts;
	std::string_view pluralRule = "n != 1";
};

} // namespace desk

#endif
