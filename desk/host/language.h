#ifndef DESK_HOST_LANGUAGE_H
#define DESK_HOST_LANGUAGE_H

#include <string>

namespace desk
{

/// Shows the texts of the plugin and of the host in `lang`. `catalogue` is DOMAIN[:FOLDER], by default this program's
/// folder. Throws an Error when there is no usable catalogue.
void setLanguage(const std::string &lang, const std::string &catalogue);

} // namespace desk

#endif
