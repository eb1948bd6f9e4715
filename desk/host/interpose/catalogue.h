#ifndef DESK_INTERPOSE_CATALOGUE_H
#define DESK_INTERPOSE_CATALOGUE_H

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace desk
{

/// The translations of one language and domain: a UTF-8 file made by msgfmt.
///
/// Files may come from anywhere, so reading one checks all of it: every text lies within the file, and every format
/// takes the values of its original.
class Catalogue
{
public:
	/// Reads the file, or throws an Error.
	static Catalogue load(const std::string &path);

	/// Parses the bytes of such a file; errors call it `path`.
	static Catalogue parse(const std::string &bytes, const std::string &path);

	Catalogue(Catalogue &&) = default;
	Catalogue &operator=(Catalogue &&) = default;

	/// The translation of `id` (the header for ""), or null. It belongs to the catalogue.
	const char *find(const char *id) const;

	/// The translation in the plural form for `n`.
	const char *find(const char *id, unsigned long n) const;

private:
	Catalogue() = default;

	/// Returns the error, or "".
	std::string read();
	std::string readHeader();

	std::vector<char> bytes; ///< the file; texts refer to it
	/// NUL-terminated. The forms of a text follow each other, with a NUL between them.
	std::unordered_map<std::string_view, std::string_view> texts;
	std::string_view pluralRule = "n != 1";
};

} // namespace desk

#endif
