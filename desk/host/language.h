#ifndef DESK_HOST_LANGUAGE_H
#define DESK_HOST_LANGUAGE_H

#include <string>

namespace desk
{

/// Shows the plugin's texts, and the host's own words, in `lang`. `catalogue` is DOMAIN[:FOLDER], the folder being by default the one that comes with this program. On failure returns false and
/// leaves one line in `error`.
bool setLanguage(const std::string &lang, const std::string &catalogue, std::string &error);

} // namespace desk

#endif
